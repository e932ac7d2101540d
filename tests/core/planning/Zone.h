#pragma once

#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {

/// The time zone in which this test program runs; each of its zones is a process of its own, since
/// the GPS epoch is taken once.
inline std::string_view Zone()
{
    const char* const zone = std::getenv("TZ");
    return zone != nullptr ? zone : "";
}

inline constexpr std::string_view kTokyo = "Asia/Tokyo";
inline constexpr std::string_view kUtc = "UTC";
inline constexpr std::string_view kNewYork = "America/New_York";

/// The rows of a table that are for this zone, which stands first in them.
template <class Row, std::size_t count>
std::vector<Row> RowsOfThisZone(const Row (&rows)[count])
{
    std::vector<Row> mine;
    for (const Row& row : rows) {
        if (std::get<0>(row) == Zone()) {
            mine.push_back(row);
        }
    }
    EXPECT_FALSE(mine.empty()) << "ctest sets a zone that has rows";
    return mine;
}

} // namespace fieldcore
