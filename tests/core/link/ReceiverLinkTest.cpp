#include "core/link/ReceiverLink.h"

#include "core/link/Command.h"
#include "simulator/Simulator.h"
#include "tests/core/link/QuickConnect.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using enum LinkState;
using simulator::Simulator;

/// Time stands still until the test moves it, so that no answer comes too late.
class HandClock : public Clock
{
public:
    Duration now{};
    [[nodiscard]] Duration Steady() const override { return now; }
    [[nodiscard]] UtcTime Utc() const override { return {}; }
    [[nodiscard]] bool SetUtc(UtcTime) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }
};

/// Agrees to everything, and does something in a breath.
class AgreeingHost : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view, BoxStyle) override
    {
        said.emplace_back(text);
        return answer;
    }
    bool Breathe() override
    {
        if (onBreath) {
            onBreath();
        }
        return !cancels;
    }
    std::function<void()> onBreath;
    bool cancels = false;
    BoxAnswer answer = BoxAnswer::Ok;
    std::vector<std::wstring> said;
};

class ReceiverLinkTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(receiver.Start(error)) << error;
        target.devicePath = receiver.PortPath();
        link.SetObserver([this] {
            if (seen.empty() || seen.back() != link.State()) {
                seen.push_back(link.State());
            }
        });
    }
    int Connect()
    {
        testing::QuickConnect connect(command, target);
        return link.Connect(connect, target);
    }
    /// @return how many requests the receiver got
    std::size_t TickAfter(Clock::Duration time)
    {
        const std::size_t before = receiver.RequestCount();
        clock.now += time;
        link.Tick();
        return receiver.RequestCount() - before;
    }
    void AddFault(const char* text)
    {
        simulator::FaultRule rule;
        std::string error;
        ASSERT_TRUE(ParseFaultRule(text, rule, error)) << error;
        receiver.AddFault(rule);
    }

    HandClock clock;
    AgreeingHost host;
    Simulator receiver{simulator::Scenario{}};
    CCommand command{{&host, &clock, nullptr, nullptr}};
    ReceiverLink link{command};
    ConnectTarget target;
    std::vector<LinkState> seen;
};

TEST_F(ReceiverLinkTest, AsksTheStatusEveryTwoSecondsAndKnowsItsAge)
{
    EXPECT_EQ(TickAfter(10s), 0U) << "asked without a connection";
    ASSERT_EQ(Connect(), 1);
    EXPECT_FALSE(link.Heard().status);
    EXPECT_EQ(TickAfter(0s), 1U);
    ASSERT_TRUE(link.Heard().status);
    EXPECT_GT(link.Heard().status->value.batteryPercent, 0);
    const Clock::Duration first = link.Heard().status->at;
    EXPECT_EQ(first, clock.Steady());
    EXPECT_EQ(TickAfter(1999ms), 0U);
    EXPECT_EQ(link.Heard().status->at, first);
    EXPECT_EQ(TickAfter(1ms), 1U);
    EXPECT_EQ(link.Heard().status->at, clock.Steady());
    EXPECT_EQ(seen, (std::vector{Connecting, Connected}));
}

TEST_F(ReceiverLinkTest, KeepsOffTheChannelWhileOthersUseIt)
{
    ASSERT_EQ(Connect(), 1);
    {
        const ReceiverLink::Hold dialog(link);
        const ReceiverLink::Hold question(link);
        EXPECT_EQ(TickAfter(2s), 0U) << "asked over a dialog";
    }
    EXPECT_EQ(TickAfter(0s), 1U);
    // A tick in a breath of somebody else's exchange, and of its own.
    clock.now += 2s;
    int breaths = 0;
    host.onBreath = [&] {
        ++breaths;
        link.Tick();
        EXPECT_EQ(link.Disconnect(), 0);
        EXPECT_EQ(Connect(), 0);
    };
    AddFault("delay 120 count 2"); // longer than a breath
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
    EXPECT_EQ(TickAfter(0s), 1U);
    EXPECT_GT(breaths, 0);
    EXPECT_EQ(link.State(), Connected);
}

TEST_F(ReceiverLinkTest, ComesBackWhenTheCableDoes)
{
    ASSERT_EQ(Connect(), 1);
    TickAfter(0s);
    receiver.HangUp();
    TickAfter(2s);
    EXPECT_EQ(link.State(), Lost);
    EXPECT_EQ(command.IsPortOpen(), 0);
    ASSERT_TRUE(link.Heard().status) << "the last values are still worth showing";
    TickAfter(60s);
    EXPECT_EQ(link.State(), Lost) << "tried a port that is not there";
    EXPECT_EQ(link.UntilNextAttempt(), 0s);
    ASSERT_TRUE(receiver.Plug());
    {
        const ReceiverLink::Hold dialog(link);
        EXPECT_EQ(TickAfter(60s), 0U);
    }
    EXPECT_EQ(TickAfter(0s), 2U) << "status and serial number; must not wait once it is back";
    EXPECT_EQ(link.State(), Connected);
    EXPECT_EQ(link.Heard().status->at, clock.Steady());
    EXPECT_EQ(link.Receivers(), 1U);
    EXPECT_EQ(seen, (std::vector{Connecting, Connected, Lost, Reconnecting, Connected}));
}

TEST_F(ReceiverLinkTest, TriesWithGrowingPausesWhileThePortIsThere)
{
    ASSERT_EQ(Connect(), 1);
    AddFault("nak on 08");
    // Missed questions come ever more slowly, until the link counts as lost.
    EXPECT_EQ(TickAfter(0s), 1U);
    EXPECT_EQ(TickAfter(3999ms), 0U);
    EXPECT_EQ(TickAfter(1ms), 1U);
    EXPECT_EQ(link.State(), Connected);
    EXPECT_EQ(TickAfter(6s), 1U);
    EXPECT_EQ(link.State(), Lost);
    for (const auto pause : {2s, 4s, 6s, 8s, 10s, 10s}) {
        EXPECT_EQ(link.UntilNextAttempt(), pause);
        EXPECT_EQ(TickAfter(pause - 1ms), 0U) << pause.count();
        EXPECT_EQ(TickAfter(1ms), 1U) << pause.count();
    }
    receiver.ClearFaults();
    EXPECT_EQ(TickAfter(10s), 2U);
    EXPECT_EQ(link.State(), Connected);
    // One missed question is no loss, and is forgiven.
    AddFault("nak on 08 count 1");
    TickAfter(2s);
    TickAfter(4s);
    EXPECT_EQ(link.State(), Connected);
    EXPECT_EQ(TickAfter(2s), 1U) << "the pauses stay long";
}

TEST_F(ReceiverLinkTest, OnlyALossBringsAttempts)
{
    ASSERT_EQ(Connect(), 1);
    command.ClosePort(); // as a dialog does at its end
    EXPECT_EQ(TickAfter(60s), 0U);
    EXPECT_EQ(link.State(), NotConnected);

    ASSERT_EQ(Connect(), 1);
    EXPECT_EQ(link.Disconnect(), 1);
    EXPECT_FALSE(link.Heard().status) << "of nobody";
    EXPECT_EQ(command.IsPortOpen(), 0);
    EXPECT_EQ(TickAfter(60s), 0U);

    // Who cancels an attempt wants no more of them.
    ASSERT_EQ(Connect(), 1);
    receiver.HangUp();
    TickAfter(2s);
    ASSERT_EQ(link.State(), Lost);
    ASSERT_TRUE(receiver.Plug());
    AddFault("drop");
    host.cancels = true;
    TickAfter(2s);
    EXPECT_EQ(link.State(), NotConnected);
    EXPECT_EQ(command.IsPortOpen(), 0);
}

/// Behind the same name stands another receiver when the cable is back.
TEST_F(ReceiverLinkTest, TellsWhenAnotherReceiverComesBack)
{
    struct Row
    {
        const char* course;
        const char* change; ///< lines of the second receiver's scenario
        std::vector<std::wstring> said;
        LinkState state;
        std::wstring name; ///< of the receiver that is known at the end
    };
    const std::wstring first = L"Corvane VX1（S/N 5017000001）";
    const auto other = [&](const std::wstring& now) {
        return L"別の受信機が接続されました。\n前の受信機: " + first + L"\n今の受信機: " + now;
    };
    const Row rows[] = {
        {"the same", "", {}, Connected, first},
        {"another antenna", "antenna-serial A0002", {}, Connected, first},
        {"its firmware was renewed", "firmware 4.99", {}, Connected, first},
        {"one of the same model",
         "long-serial 5017000002",
         {other(L"Corvane VX1（S/N 5017000002）")},
         Connected,
         L"Corvane VX1（S/N 5017000002）"},
        {"another model with that number",
         "model 3024\nfirmware 4.99",
         {other(L"Corvane VX4（S/N 5017000001）")},
         Connected,
         L"Corvane VX4（S/N 5017000001）"},
        {"one that is not supported",
         "model 2040\nserial 7\nlong-serial none",
         {other(L"2040（S/N 7）"), L"本ソフトウェアでは[ 2040 ]受信機をサポートしておりません。"},
         NotConnected,
         first},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        const TemporaryFolder folder;
        const auto cable = folder.Path() / "cable";
        std::filesystem::create_symlink(receiver.PortPath(), cable);
        target.devicePath = cable;
        ASSERT_EQ(Connect(), 1);
        EXPECT_EQ(link.Heard().identity.Name(), first);
        TickAfter(0s);
        std::string error;
        const auto scenario = simulator::ParseScenario(row.change, error);
        ASSERT_TRUE(scenario.has_value()) << error;
        Simulator second(*scenario);
        ASSERT_TRUE(second.Start(error)) << error;
        receiver.HangUp();
        TickAfter(2s);
        ASSERT_EQ(link.State(), Lost);
        std::filesystem::remove(cable);
        std::filesystem::create_symlink(second.PortPath(), cable);
        host.said.clear();
        host.onBreath = [&] { link.Tick(); }; // as the program's timer does
        TickAfter(2s);
        const bool isOther = !row.said.empty();
        EXPECT_EQ(link.Question() == LinkQuestion::OtherReceiver, isOther);
        EXPECT_TRUE(host.said.empty()) << "a tick has asked the user";
        TickAfter(1min);
        EXPECT_EQ(link.State(), isOther ? Reconnecting : Connected) << "did not wait for the user";
        testing::QuickConnect check(command, target);
        EXPECT_EQ(link.AskUser(check), isOther && row.state == Connected ? 1 : 0);
        host.onBreath = {};
        EXPECT_EQ(host.said, row.said);
        EXPECT_EQ(link.State(), row.state);
        EXPECT_EQ(command.IsPortOpen() == 1, row.state == Connected);
        EXPECT_EQ(link.Heard().identity.Name(), row.name);
        ASSERT_TRUE(receiver.Plug());
    }
}

/// A lost Bluetooth link is asked about, once, and not tried behind the user's back.
TEST_F(ReceiverLinkTest, AsksWhetherToReconnectBluetooth)
{
    target.port = 5;
    for (const bool retries : {true, false}) {
        SCOPED_TRACE(retries ? "Retry" : "Cancel");
        ASSERT_EQ(Connect(), 1);
        EXPECT_EQ(command.GetPortNumber(), 5) << "the number that the path counts as";
        receiver.HangUp();
        TickAfter(2s);
        ASSERT_EQ(link.State(), Lost);
        ASSERT_TRUE(receiver.Plug());
        EXPECT_EQ(TickAfter(1min), 0U);
        EXPECT_EQ(link.State(), Lost);
        EXPECT_FALSE(link.UntilNextAttempt().has_value());
        testing::QuickConnect connect(command, target, 1);
        {
            const ReceiverLink::Hold page(link);
            EXPECT_EQ(link.AskUser(connect), 0);
            EXPECT_EQ(link.Question(), LinkQuestion::Reconnect) << "asked over a dialog's head";
        }
        host.said.clear();
        host.answer = retries ? BoxAnswer::Retry : BoxAnswer::Cancel;
        EXPECT_EQ(link.AskUser(connect), retries ? 1 : 0);
        EXPECT_EQ(host.said, std::vector<std::wstring>{L"Bluetooth通信が行えません。\n"
                                                       L"Bluetooth通信接続を復帰しますか？"});
        EXPECT_EQ(link.State(), retries ? Connected : NotConnected);
        EXPECT_EQ(link.Question(), LinkQuestion::None);
        EXPECT_EQ(link.AskUser(connect), 0) << "asked twice";
        host.answer = BoxAnswer::Ok;
    }
}

TEST_F(ReceiverLinkTest, AReceiverThatIsNotAcceptableIsNotKept)
{
    AddFault("nak on 06");
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(link.State(), NotConnected);
    EXPECT_EQ(command.IsPortOpen(), 0);
}

} // namespace
} // namespace fieldcore
