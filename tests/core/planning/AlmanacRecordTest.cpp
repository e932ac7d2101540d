#include "core/planning/AlmanacRecord.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(AlmanacRecord, HasEveryFieldWhereTheFileHasIt)
{
    struct Row
    {
        std::string_view field;
        AlmanacRecord record;
        std::size_t at;
        std::vector<std::uint8_t> bytes;
    };
    const auto with = [](auto member, auto value) {
        AlmanacRecord record;
        record.*member = value;
        return record;
    };
    using R = AlmanacRecord;
    // 1.5 is 0x3FF8000000000000 and -2.0 is 0xC000000000000000.
    const std::vector<std::uint8_t> real{0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
    const Row rows[] = {
        {"PRN", with(&R::prn, std::uint8_t{32}), 0, {32}},
        {"time stamp", with(&R::timeStamp, 0x89ABCDEFU), 4, {0xEF, 0xCD, 0xAB, 0x89}},
        {"week", with(&R::week, std::int16_t{2200}), 8, {0x98, 0x08}},
        {"negative week", with(&R::week, std::int16_t{-2}), 8, {0xFE, 0xFF}},
        {"toa", with(&R::toaS, 405504U), 12, {0x00, 0x30, 0x06, 0x00}},
        {"square root of A", with(&R::sqrtA, 1.5), 16, real},
        {"eccentricity", with(&R::eccentricity, 1.5), 24, real},
        {"inclination", with(&R::inclination, 1.5), 32, real},
        {"rate of the node", with(&R::omegaDot, -2.0), 40, {0, 0, 0, 0, 0, 0, 0, 0xC0}},
        {"node", with(&R::omega0, 1.5), 48, real},
        {"perigee", with(&R::omega, 1.5), 56, real},
        {"mean anomaly", with(&R::m0, 1.5), 64, real},
        {"health", with(&R::health, std::uint8_t{63}), 72, {63}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.field);
        AlmanacBytes expected{};
        std::copy(row.bytes.begin(), row.bytes.end(),
                  expected.begin() + static_cast<std::ptrdiff_t>(row.at));
        EXPECT_EQ(EncodeAlmanac(row.record), expected);
        EXPECT_EQ(EncodeAlmanac(DecodeAlmanac(expected)), expected);
    }
}

} // namespace
} // namespace fieldcore
