#pragma once

// What the targets share. What is included here they do not include again.

#include "core/platform/TextError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace fieldcore {

/// What does not hold is a finding, and ends the program.
inline void Check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Temporary folders are in memory, where the system has that: thousands of files are made.
inline void KeepFilesInMemory()
{
    static const bool isThere = std::filesystem::is_directory("/dev/shm");
    static const int chosen = isThere ? setenv("TMPDIR", "/dev/shm", 1) : 0;
    Check(chosen == 0);
}

[[nodiscard]] inline std::string_view TextOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// What is refused is so with a message, and with a line of its text or 0 for all of it.
inline void CheckRefusal(const TextError& error, std::string_view text)
{
    Check(!error.message.empty() && error.line >= 0 &&
          error.line <= std::count(text.begin(), text.end(), '\n') + 1);
}

} // namespace fieldcore
