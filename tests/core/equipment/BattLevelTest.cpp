#include "core/equipment/BattLevel.h"

#include "core/host/Host.h"
#include "core/host/ProgressBar.h"
#include "core/link/Command.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <array>
#include <cstdio>
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

/// Types of the requests that came.
std::string Types(const ScriptedEnd& receiver)
{
    std::string types;
    for (const Bytes& request : receiver.Requests()) {
        std::array<char, 8> type{};
        std::snprintf(type.data(), type.size(), "%02X ", request.size() > 2 ? request[2] : 0U);
        types += type.data();
    }
    return types;
}

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
    EXPECT_EQ(Types(receiver), "08 41 08 08 41 ") << "without a window no source is asked for";
}

TEST(BattLevel, ShowsTheUpperEdgeOfTheBand)
{
    const std::pair<const char*, int> rows[] = {
        {"000", 0},   {"004", 0},   {"005", 10}, {"009", 10}, {"010", 20},
        {"019", 20},  {"020", 30},  {"059", 60}, {"089", 90}, {"090", 100},
        {"095", 100}, {"109", 100}, {"110", 0},  {"999", 0},  {"-05", 0},
    };
    std::vector<ScriptedEnd::Answer> answers;
    for (const auto& [charge, level] : rows) {
        answers.push_back(Charge(charge));
    }
    answers.push_back({Bytes{0x15}});
    VirtualChannel channel;
    const ScriptedEnd receiver(channel.line, std::move(answers));
    channel.Open();
    CBattLevel battery(&channel.command);
    for (const auto& [charge, level] : rows) {
        EXPECT_EQ(battery.GetBattLevel(), level) << charge;
    }
    EXPECT_EQ(battery.GetBattLevel(), 0) << "refused";
}

TEST(BattLevel, NamesThePowerSourceByFamily)
{
    struct Row
    {
        std::uint32_t type;
        std::vector<std::wstring> names; ///< sources 1, 2, 3, 4, refused
    };
    const std::vector<std::wstring> numbers{L"電源1", L"電源2", L"電源3", L"電源1", L"電源1"};
    const std::vector<std::wstring> letters{L"電源A", L"電源B", L"電源A", L"電源A", L"電源A"};
    const Row rows[] = {
        {3020, {L"電源1", L"電源2", L"電源1", L"電源1", L"電源1"}},
        {3012, letters},
        {3015, letters},
        {3017, letters},
        {3022, letters},
        {3028, letters},
        {3011, numbers},
        {3044, numbers},
        {2010, numbers},
        {9999, numbers},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.type);
        VirtualChannel channel;
        const ScriptedEnd receiver(channel.line,
                                   {Source(1), Source(2), Source(3), Source(4), {Bytes{0x15}}});
        channel.Open();
        CBattLevel level(&channel.command);
        level.SetRecvTypeNum(row.type);
        for (const std::wstring& name : row.names) {
            EXPECT_EQ(level.GetBattPort(), name);
        }
    }
    VirtualChannel channel;
    const ScriptedEnd receiver(channel.line, {Source(2)});
    channel.Open();
    CBattLevel level(&channel.command);
    level.SetRecvTypeNum(3010);
    EXPECT_EQ(level.GetBattPort(), L"電源1");
    EXPECT_TRUE(receiver.Requests().empty())
        << "the oldest of its family does not know the request";
}

} // namespace
} // namespace fieldcore
