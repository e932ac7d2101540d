#pragma once

#include "simulator/Scenario.h"

#include <optional>
#include <string>
#include <string_view>

namespace fieldcore::simulator {

/// Which file commands a receiver knows.
enum class Family
{
    Oldest, ///< none
    Pica,   ///< by index
    Lark    ///< by name
};

[[nodiscard]] Family FamilyOf(int typeNumber);

/// The extension of this Lark receiver's files, with its dot: ".Q01".
[[nodiscard]] std::string_view Extension(const Scenario& scenario, bool deleted);

/// The name up to its first dot.
[[nodiscard]] std::string_view BaseName(std::string_view name);

/// What a live file is called in the recycle bin: "A.Q01" is "A.Q1D" there.
/// @return nothing if the name has no such form; then there is no way back for the file
[[nodiscard]] std::optional<std::string> NameInBin(std::string_view name);
/// What a file of the recycle bin is called when it is live again; as it is if it was never
/// renamed.
[[nodiscard]] std::string NameOutOfBin(std::string_view name);

/// Whether a name fits a pattern, in which `*` stands for any characters.
[[nodiscard]] bool FitsPattern(std::string_view name, std::string_view pattern);

} // namespace fieldcore::simulator
