#pragma once

#include "cli/Command.h"
#include "cli/FileCatalogue.h"
#include "cli/PortOptions.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// What the files commands were given.
struct FilesOptions
{
    PortOptions port;
    std::vector<std::string> patterns;
    bool deleted = false;
    std::filesystem::path folder = "."; ///< where to
    bool byDate = false;
    bool onlyNew = false;
    bool yes = false;
    bool dryRun = false;

    /// Whether somebody has agreed, or can be asked.
    [[nodiscard]] bool CanAgree(const World& world) const
    {
        return yes || (world.inIsTerminal && world.errIsTerminal);
    }
};

/// Fetches files into a folder.
ExitCode FetchFiles(const Context& context, const FilesOptions& options);
/// Deletes files, or brings them back.
ExitCode DeleteFiles(const Context& context, const FilesOptions& options);
ExitCode RecoverFiles(const Context& context, const FilesOptions& options);

} // namespace fieldcore::cli
