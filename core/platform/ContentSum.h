#pragma once

#include <cstdint>
#include <ranges>

namespace fieldcore {

/// ContentSum() of no bytes.
inline constexpr std::uint64_t kSumOfNothing = 0xCBF29CE484222325;

/// Tells one content from another, and notices what a disk loses, not what someone forges: the sum
/// of Fowler, Noll and Vo (FNV-1a) of 64 bits.
/// @param bytes  8-bit values of any type
/// @param sum    of what stands before them
template <std::ranges::input_range Bytes>
[[nodiscard]] constexpr std::uint64_t ContentSum(const Bytes& bytes,
                                                 std::uint64_t sum = kSumOfNothing)
{
    constexpr std::uint64_t kPrime = 0x100000001B3;
    for (const auto byte : bytes) {
        sum = (sum ^ static_cast<std::uint8_t>(byte)) * kPrime;
    }
    return sum;
}

} // namespace fieldcore
