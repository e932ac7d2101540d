#pragma once

#include "cli/World.h"

#include <string>
#include <vector>

namespace fieldcore::cli {

enum class Health
{
    Ok,
    Attention, ///< works, but not all of it or not for long
    Bad,
};

/// One thing that was looked at.
struct Finding
{
    int check = 0;       ///< a text
    std::string subject; ///< stands in it; may be empty
    Health health = Health::Ok;
    std::string found;
    std::string advice; ///< what to do, as a command where there is one; empty if all is well
};

/// Looks at what a surveyor's machine must have: rights to the serial ports, the ports and who
/// holds them, a font, an almanac, and folders that can be written to. Changes nothing.
[[nodiscard]] std::vector<Finding> Examine(const World& world);

} // namespace fieldcore::cli
