#include "core/planning/AlmanacRecord.h"

#include "tests/support/Hex.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(AlmanacRecord, HasEveryFieldWhereTheFileHasIt)
{
    AlmanacRecord record;
    record.prn = 32;
    record.timeStamp = 0x89ABCDEF;
    record.week = -2;
    record.toaS = 405504; // 0x63000
    record.sqrtA = 1.5;   // 0x3FF8 and zeros
    record.eccentricity = -2.0;
    record.inclination = 2.5;
    record.omegaDot = 3.0;
    record.omega0 = 3.5;
    record.omega = 5.0;
    record.m0 = 6.0;
    record.health = 63;
    const auto bytes = testing::Hex("20000000 EFCDAB89 FEFF0000 00300600"
                                    "000000000000F83F 00000000000000C0"
                                    "0000000000000440 0000000000000840"
                                    "0000000000000C40 0000000000001440"
                                    "0000000000001840 3F00000000000000");
    AlmanacBytes expected{};
    ASSERT_EQ(bytes.size(), expected.size());
    std::copy(bytes.begin(), bytes.end(), expected.begin());
    EXPECT_EQ(EncodeAlmanac(record), expected);
    EXPECT_EQ(EncodeAlmanac(DecodeAlmanac(expected)), expected);
}

} // namespace
} // namespace fieldcore
