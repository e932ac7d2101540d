#include "core/link/ReceiverLink.h"

#include "core/link/Command.h"
#include "tests/core/link/QuickConnect.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using enum LinkState;

/// The port is there as long as a file of its name is.
class ReceiverLinkTest : public ::testing::Test, protected testing::VirtualReceiver
{
protected:
    ReceiverLinkTest()
    {
        target.devicePath = folder.Path() / "port";
        Plug();
        link.SetObserver([this] {
            if (seen.empty() || seen.back() != link.State()) {
                seen.push_back(link.State());
            }
        });
    }
    int Connect()
    {
        testing::QuickConnect connect(command, target);
        return link.Connect(connect);
    }
    /// @return how many requests the receiver got
    std::size_t TickAfter(Clock::Duration time)
    {
        const std::size_t before = simulator.RequestCount();
        clock.Sleep(time);
        link.Tick();
        return simulator.RequestCount() - before;
    }
    void HangUp()
    {
        simulator.HangUp();
        std::filesystem::remove(target.devicePath);
    }
    void Plug()
    {
        EXPECT_TRUE(simulator.Plug());
        std::ofstream(target.devicePath).put('\n');
    }

    std::vector<std::wstring> Said() const
    {
        std::vector<std::wstring> said;
        std::ranges::transform(host.boxes, std::back_inserter(said),
                               &testing::BoxKeepingHost::Box::text);
        return said;
    }

    const TemporaryFolder folder;
    ConnectTarget target;
    ReceiverLink link{command};
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
    // A tick in a breath of somebody else's exchange, and of its own.
    clock.Sleep(2s);
    int breaths = 0;
    host.inBreath = [&] {
        ++breaths;
        link.Tick();
        EXPECT_EQ(link.Disconnect(), 0);
        EXPECT_EQ(Connect(), 0);
        return true;
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
    HangUp();
    TickAfter(2s);
    EXPECT_EQ(link.State(), Lost);
    EXPECT_EQ(command.IsPortOpen(), 0);
    ASSERT_TRUE(link.Heard().status) << "the last values are still worth showing";
    TickAfter(60s);
    EXPECT_EQ(link.State(), Lost) << "tried a port that is not there";
    Plug();
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
        EXPECT_EQ(TickAfter(pause - 1ms), 0U) << pause.count();
        EXPECT_EQ(TickAfter(1ms), 1U) << pause.count();
    }
    simulator.ClearFaults();
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
    HangUp();
    TickAfter(2s);
    ASSERT_EQ(link.State(), Lost);
    Plug();
    AddFault("drop");
    host.inBreath = [] { return false; };
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
        const char* change;     ///< lines of the second receiver's scenario
        std::wstring other{};   ///< who it is; empty: the same
        std::wstring refused{}; ///< what is said of one that is not acceptable
    };
    const std::wstring first = L"Corvane VX1（S/N 5017000001）";
    const Row rows[] = {
        {"the same", ""},
        {"another antenna", "antenna-serial A0002"},
        {"its firmware was renewed", "firmware 4.99"},
        {"one of the same model", "long-serial 5017000002", L"Corvane VX1（S/N 5017000002）"},
        {"another model with that number", "model 3024\nfirmware 4.99",
         L"Corvane VX4（S/N 5017000001）"},
        {"one that is not supported", "model 2040\nserial 7\nlong-serial none", L"2040（S/N 7）",
         L"本ソフトウェアでは[ 2040 ]受信機をサポートしておりません。"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        ASSERT_EQ(Connect(), 1);
        EXPECT_EQ(link.Heard().identity.Name(), first);
        TickAfter(0s);
        testing::VirtualLine cable(clock);
        simulator::Simulator second(testing::ParsedScenario(row.change), clock,
                                    testing::On(cable.FarPort()));
        std::string error;
        ASSERT_TRUE(second.Start(error)) << error;
        HangUp();
        TickAfter(2s);
        ASSERT_EQ(link.State(), Lost);
        Plug();
        plugged = &cable;
        host.boxes.clear();
        host.inBreath = [&] { // as the program's timer does
            link.Tick();
            return true;
        };
        TickAfter(2s);
        const bool isOther = !row.other.empty();
        const bool isKept = row.refused.empty();
        EXPECT_EQ(link.Question() == LinkQuestion::OtherReceiver, isOther);
        EXPECT_TRUE(host.boxes.empty()) << "a tick has asked the user";
        TickAfter(1min);
        EXPECT_EQ(link.State(), isOther ? Reconnecting : Connected) << "did not wait for the user";
        testing::QuickConnect check(command, target);
        EXPECT_EQ(link.AskUser(check), isOther && isKept ? 1 : 0);
        host.inBreath = nullptr;
        std::vector<std::wstring> said;
        if (isOther) {
            said.push_back(L"別の受信機が接続されました。\n前の受信機: " + first +
                           L"\n今の受信機: " + row.other);
        }
        said.insert(said.end(), isKept ? 0 : 1, row.refused);
        EXPECT_EQ(Said(), said);
        EXPECT_EQ(link.State(), isKept ? Connected : NotConnected);
        EXPECT_EQ(command.IsPortOpen(), isKept ? 1 : 0);
        EXPECT_EQ(link.Heard().identity.Name(), isOther && isKept ? row.other : first);
        command.ClosePort();
        plugged = &line;
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
        HangUp();
        TickAfter(2s);
        ASSERT_EQ(link.State(), Lost);
        Plug();
        EXPECT_EQ(TickAfter(1min), 0U);
        EXPECT_EQ(link.State(), Lost);
        testing::QuickConnect connect(command, target, 1);
        host.boxes.clear();
        host.answers = {retries ? BoxAnswer::Retry : BoxAnswer::Cancel};
        EXPECT_EQ(link.AskUser(connect), retries ? 1 : 0);
        EXPECT_EQ(Said(), std::vector<std::wstring>{L"Bluetooth通信が行えません。\n"
                                                    L"Bluetooth通信接続を復帰しますか？"});
        EXPECT_EQ(link.State(), retries ? Connected : NotConnected);
        EXPECT_EQ(link.Question(), LinkQuestion::None);
        EXPECT_EQ(link.AskUser(connect), 0) << "asked twice";
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
