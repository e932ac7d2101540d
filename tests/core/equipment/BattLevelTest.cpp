#include "core/equipment/BattLevel.h"

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Ascii;
using testing::Bytes;
using testing::Frame;
using testing::ScriptedEnd;
using testing::VirtualChannel;

ScriptedEnd::Answer Charge(const char* threeDigits)
{
    return {Frame(0x09, Ascii(std::string("1008000") + threeDigits + "01.85    09"))};
}

class Bar final : public ProgressBar
{
public:
    void SetRange(int first, int last) override { range = {first, last}; }
    void SetPos(int position) override { positions.push_back(position); }
    std::pair<int, int> range;
    std::vector<int> positions;
};

TEST(BattLevel, AsksAtEveryFifteenthCall)
{
    VirtualChannel channel;
    const ScriptedEnd receiver(channel.line, {Charge("085"), Charge("004"), Charge("036")});
    channel.Open();
    CBattLevel level(&channel.command);
    Bar bar;
    level.SetInit(&bar);
    EXPECT_EQ(bar.range, (std::pair{0, 100}));
    for (int call = 0; call < 15; ++call) {
        level.SetBatteryStatus(1001, &bar);
    }
    EXPECT_EQ(bar.positions, (std::vector{0, 90}));
    level.SetBatteryStatus(1001, &bar);
    EXPECT_EQ(bar.positions, (std::vector{0, 90, 0})) << "the sixteenth asks again";
    level.SetInit(&bar);
    level.SetBatteryStatus(1001, &bar);
    EXPECT_EQ(bar.positions.back(), 40);
    EXPECT_EQ(receiver.Requests(), std::vector(3, Frame(0x08)))
        << "without a window no source is asked for";
}

TEST(BattLevel, ShowsTheUpperEdgeOfTheBand)
{
    const std::pair<int, int> rows[] = {{4, 0},   {5, 10},   {9, 10},    {10, 20},
                                        {89, 90}, {90, 100}, {109, 100}, {110, 0}};
    for (const auto& [percent, edge] : rows) {
        EXPECT_EQ(BatteryBand(percent), edge) << percent;
    }
}

TEST(BattLevel, NamesThePowerSourceByFamily)
{
    struct Row
    {
        std::uint32_t type;
        const wchar_t* names; ///< signs of the sources 1, 2, 3 and 4
    };
    const Row rows[] = {
        {3020, L"1211"}, {3012, L"ABAA"}, {3015, L"ABAA"}, {3017, L"ABAA"}, {3022, L"ABAA"},
        {3028, L"ABAA"}, {3011, L"1231"}, {3044, L"1231"}, {2010, L"1231"}, {9999, L"1231"},
    };
    for (const Row& row : rows) {
        for (int source = 1; source <= 4; ++source) {
            EXPECT_EQ(PowerSourceName(row.type, source),
                      L"電源" + std::wstring(1, row.names[source - 1]))
                << row.type;
        }
    }
    VirtualChannel channel;
    const ScriptedEnd receiver(channel.line, {{Bytes{0x15}}, {Bytes{0x15}}});
    channel.Open();
    CBattLevel level(&channel.command);
    level.SetRecvTypeNum(3010);
    EXPECT_EQ(level.GetBattPort(), L"電源1");
    EXPECT_TRUE(receiver.Requests().empty())
        << "the oldest of its family does not know the request";
    level.SetRecvTypeNum(3017);
    EXPECT_EQ(level.GetBattPort(), L"電源A") << "refused";
    EXPECT_EQ(level.GetBattLevel(), 0) << "refused";
}

} // namespace
} // namespace fieldcore
