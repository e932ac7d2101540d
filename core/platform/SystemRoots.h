#pragma once

#include <filesystem>

namespace fieldcore {

/// Where the system shows its devices and processes; a test puts a tree of its own there.
struct SystemRoots
{
    std::filesystem::path dev = "/dev";
    std::filesystem::path sys = "/sys";
    std::filesystem::path proc = "/proc";
};

} // namespace fieldcore
