#pragma once

#include "core/platform/Folders.h"

#include <optional>
#include <string>

namespace fieldcore::testing {

/// Everything below a home of the test's own, which is the program's folder, too.
[[nodiscard]] inline Folders FoldersBelow(const std::string& home)
{
    FolderSources sources;
    sources.variable = [home](const std::string& name) {
        return name == "HOME" || name == "FIELDCORE_HOME" ? std::optional(home) : std::nullopt;
    };
    return Folders(sources);
}

} // namespace fieldcore::testing
