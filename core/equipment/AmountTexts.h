#pragma once

#include <cstdint>
#include <string>

namespace fieldcore {

// Amounts of bytes as every language writes them. No state; any thread.

/// "812 B", "47.1 KB", "3.06 MB": three digits, of units of 1024.
[[nodiscard]] std::wstring ByteCountText(std::uint64_t bytes);

/// "11.4 KB/s"; "--" for a rate that is not known: 0, less, or no number.
[[nodiscard]] std::wstring ByteRateText(double bytesPerSecond);

} // namespace fieldcore
