#include "core/link/PortOutput.h"

#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::string_view_literals;

TEST(PortOutput, IsToldFromDamage)
{
    const auto looks = [](std::string_view bytes) {
        return LooksLikeOutput(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
    };
    EXPECT_FALSE(looks(""sv)) << "nothing";
    EXPECT_TRUE(looks("$GPGGA,120000.00,3541.1,N,13945.2,E,4,12,0.8,45.2,M,,M,,*5C\r\n"sv))
        << "a sentence";
    EXPECT_TRUE(looks("1,N,13945.2*5C\r\n$GNRMC,12"sv)) << "in the middle of others";
    EXPECT_TRUE(looks("!AIVDM,1,1,,A,"sv)) << "a wrapped one of ships";
    EXPECT_FALSE(looks("$GPGGA"sv)) << "cut before its comma";
    EXPECT_FALSE(looks("$GP,1"sv)) << "a short name";
    EXPECT_FALSE(looks("$gpgga,12"sv)) << "small letters";
    EXPECT_FALSE(looks("costs $12, or more"sv)) << "a price";
    EXPECT_TRUE(looks("\x00\xD3\x00\x13\x3E\xD0\x00\x03"sv)) << "station coordinates (1005)";
    EXPECT_TRUE(looks("\xD3\x01\x00\x43\x50\x00"sv)) << "a long observation message (1077)";
    EXPECT_TRUE(looks("\xD3\x00\x40\xFE\x80\x00"sv)) << "a maker's own (4072)";
    EXPECT_FALSE(looks("\xD3\x40\x13\x3E\xD0\x00"sv)) << "the bits of zero are set";
    EXPECT_FALSE(looks("\xD3\x00\x13\x3E\x80\x00"sv)) << "no assigned number (1000)";
    EXPECT_FALSE(looks("\xD3\x00\x13\x3E"sv)) << "cut before its number";
    EXPECT_FALSE(looks("\xF8\x00\x80\xD3\xE0\xD3\x78\x06\xFF\x24\x18"sv))
        << "an answer at another rate";
}

} // namespace
} // namespace fieldcore
