#include "core/link/PortOutput.h"

#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::string_view_literals;

TEST(PortOutput, IsToldFromDamage)
{
    struct Row
    {
        const char* course;
        std::string_view bytes;
        bool isOutput;
    };
    const Row rows[] = {
        {"nothing", ""sv, false},
        {"a sentence", "$GPGGA,120000.00,3541.1,N,13945.2,E,4,12,0.8,45.2,M,,M,,*5C\r\n"sv, true},
        {"in the middle of others", "1,N,13945.2*5C\r\n$GNRMC,12"sv, true},
        {"a maker's own", "$PXYZA,QA,1"sv, true},
        {"a wrapped one of ships", "!AIVDM,1,1,,A,"sv, true},
        {"cut before its comma", "$GPGGA"sv, false},
        {"a short name", "$GP,1"sv, false},
        {"small letters", "$gpgga,12"sv, false},
        {"a price", "costs $12, or more"sv, false},
        {"station coordinates (1005)", "\x00\xD3\x00\x13\x3E\xD0\x00\x03"sv, true},
        {"a long observation message (1077)", "\xD3\x01\x00\x43\x50\x00"sv, true},
        {"a maker's own (4072)", "\xD3\x00\x40\xFE\x80\x00"sv, true},
        {"the bits of zero are set", "\xD3\x40\x13\x3E\xD0\x00"sv, false},
        {"no assigned number (1000)", "\xD3\x00\x13\x3E\x80\x00"sv, false},
        {"cut before its number", "\xD3\x00\x13\x3E"sv, false},
        {"an answer at another rate", "\xF8\x00\x80\xD3\xE0\xD3\x78\x06\xFF\x24\x18"sv, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        const std::vector<std::uint8_t> bytes(row.bytes.begin(), row.bytes.end());
        EXPECT_EQ(LooksLikeOutput(bytes), row.isOutput);
    }
}

} // namespace
} // namespace fieldcore
