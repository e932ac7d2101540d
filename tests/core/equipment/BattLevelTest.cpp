#include "core/equipment/BattLevel.h"

#include "core/host/Host.h"
#include "core/host/ProgressBar.h"
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

ScriptedEnd::Answer Source(std::uint8_t number)
{
    return {Frame(0x41, {number})};
}

class Bar final : public ProgressBar
{
public:
    void SetRange(int first, int last) override { range = {first, last}; }
    void SetPos(int position) override { positions.push_back(position); }
    std::pair<int, int> range;
    std::vector<int> positions;
};

class Window final : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view, std::wstring_view, BoxStyle style) override
    {
        return HarmlessAnswer(style.buttons);
    }
    [[nodiscard]] bool HasActiveWindow() const override { return isActive; }
    void SetControlText(int controlId, std::wstring_view text) override
    {
        texts.emplace_back(controlId, text);
    }
    bool isActive = true;
    std::vector<std::pair<int, std::wstring>> texts;
};

TEST(BattLevel, AsksAtEveryFifteenthCall)
{
    VirtualChannel channel;
    const ScriptedEnd receiver(channel.line, {Charge("085"), Source(2), Charge("004"),
                                              Charge("036"), Source(1), Charge("050")});
    Window window;
    channel.command.SetHost(window);
    channel.Open();
    CBattLevel level(&channel.command);
    level.SetRecvTypeNum(3017);
    Bar bar;
    level.SetInit(&bar);
    EXPECT_EQ(bar.range, (std::pair{0, 100}));
    level.SetBatteryStatus(1001, &bar);
    EXPECT_EQ(bar.positions, (std::vector{0, 90}));
    for (int call = 0; call < 14; ++call) {
        level.SetBatteryStatus(1001, &bar);
    }
    EXPECT_EQ(bar.positions.size(), 2U);
    window.isActive = false;
    level.SetBatteryStatus(1001, &bar);
    EXPECT_EQ(bar.positions, (std::vector{0, 90, 0})) << "the sixteenth asks again";
    window.isActive = true;
    level.SetInit(&bar);
    level.SetBatteryStatus(1001, &bar);
    EXPECT_EQ(bar.positions.back(), 40);
    EXPECT_EQ(window.texts,
              (std::vector<std::pair<int, std::wstring>>{{1001, L"電源B"}, {1001, L"電源A"}}));
    EXPECT_EQ(receiver.Requests(),
              (std::vector{Frame(0x08), Frame(0x41), Frame(0x08), Frame(0x08), Frame(0x41)}))
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
