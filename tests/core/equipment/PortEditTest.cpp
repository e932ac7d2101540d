// The receiver's ports, on a simulated one that understands nothing but its own rate.

#include "core/equipment/PortEdit.h"

#include "core/equipment/LinkSearch.h"
#include "core/link/Command.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <deque>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class PortEditTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    PortEditTest()
    {
        host.inBreath = [this] { return static_cast<int>(m_rates.size()) < m_endAt; };
    }
    ~PortEditTest() override { command.ClosePort(); }

    std::optional<std::uint32_t> Search()
    {
        return SearchRate(command, m_target, [this](std::uint32_t rate, int done, int total) {
            EXPECT_EQ(done, static_cast<int>(m_rates.size()));
            EXPECT_EQ(total, 7);
            m_rates.push_back(rate);
        });
    }
    void Start(std::uint32_t rate, bool answers = true)
    {
        simulator::Scenario scenario;
        scenario.checksRate = true;
        scenario.baudRate = rate;
        scenario.answers = answers;
        command.ClosePort();
        m_receiver.reset();
        plugged = &m_lines.emplace_back(clock);
        m_receiver.emplace(scenario, clock, testing::On(plugged->FarPort()));
        std::string error;
        ASSERT_TRUE(m_receiver->Start(error)) << error;
        m_target.devicePath = "in memory";
        m_target.settings = LinkSettings(m_roots);
    }
    std::wstring Stored(int port)
    {
        CComPrmSet set(m_roots);
        set.ReadRegCommPrm(port);
        set.ConvData2Flag();
        return set.GetPrmString();
    }
    bool Answers()
    {
        StatusReply status;
        return command.RequestStatus(status) == 1;
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    std::deque<testing::VirtualLine> m_lines;
    std::optional<simulator::Simulator> m_receiver; // at the end of the last line
    std::vector<std::uint32_t> m_rates;             // that were tried
    int m_endAt = 100;                              // rates, then the user cancels
    ConnectTarget m_target;
};

TEST_F(PortEditTest, SetsAnotherPortAndLeavesTheLinkAlone)
{
    Start(38400);
    ASSERT_EQ(OpenTarget(command, m_target), 1);
    PortEdit edit(1, m_roots);
    EXPECT_EQ(edit.At(1).GetPrmString(), L"38400-8-None-1-None") << "the link's, not Com1's";
    ASSERT_EQ(edit.At(2).SetPrmString(L"115200-8-Even-2-CTS"), 1);
    EXPECT_EQ(edit.Set(2, &command), PortSet::Done);
    EXPECT_EQ(Stored(2), L"115200-8-Even-2-CTS");
    EXPECT_FALSE(edit.IsLinkChanged());
    const std::size_t before = m_receiver->RequestCount();
    EXPECT_EQ(edit.Set(1, &command), PortSet::Done);
    EXPECT_EQ(m_receiver->RequestCount(), before) << "nothing changes: nothing is sent";

    // A port that the receiver does not have is refused, and nothing is stored.
    ASSERT_EQ(edit.At(3).SetPrmString(L"4800"), 1);
    EXPECT_EQ(edit.Set(3, &command), PortSet::Refused);
    EXPECT_EQ(Stored(3), L"9600-8-None-1-None");
    EXPECT_TRUE(Answers());
}

TEST_F(PortEditTest, KnowsWhatItToldWhichReceiver)
{
    constexpr const wchar_t* kChosen = L"57600-8-Odd-1-None";
    using Set = const wchar_t*;
    // What is set with a receiver and without one, null being nothing; which one is connected then.
    const std::tuple<const char*, Set, Set, const wchar_t*, PortKnown> rows[] = {
        {"nothing was ever chosen", nullptr, nullptr, L"A", PortKnown::Default},
        {"the defaults, offline", nullptr, L"9600-8-None-1-None", L"A", PortKnown::Default},
        {"chosen offline", nullptr, kChosen, L"A", PortKnown::Waiting},
        {"told", kChosen, nullptr, L"A", PortKnown::Same},
        {"told the defaults", L"9600-8-None-1-None", nullptr, L"A", PortKnown::Same},
        {"told, then changed offline", kChosen, L"4800", L"A", PortKnown::Waiting},
        {"told to another receiver", kChosen, nullptr, L"B", PortKnown::Stored},
    };
    Start(38400);
    for (const auto& [course, connected, offline, receiver, known] : rows) {
        SCOPED_TRACE(course);
        HostReg(m_roots).DeleteKey(L"GPS", L"Com");
        for (const wchar_t* const parameters : {connected, offline}) {
            if (parameters != nullptr) {
                command.ClosePort();
                ASSERT_TRUE(parameters == offline || OpenTarget(command, m_target) == 1);
                PortEdit edit(1, m_roots, std::nullopt, L"A");
                ASSERT_EQ(edit.At(2).SetPrmString(parameters), 1);
                ASSERT_EQ(edit.Set(2, &command), PortSet::Done);
            }
        }
        PortEdit edit(1, m_roots, std::nullopt, receiver);
        EXPECT_EQ(edit.Known(1), PortKnown::Same) << "the controller's own";
        EXPECT_EQ(edit.Known(2), known);
        EXPECT_EQ(edit.IsDue(2), known == PortKnown::Waiting);
        ASSERT_EQ(edit.At(2).SetPrmString(L"115200-7"), 1);
        EXPECT_TRUE(edit.IsDue(2)) << "changed by the user";
    }
    ForgetPorts(m_roots); // it was reset
    EXPECT_EQ(PortEdit(1, m_roots, std::nullopt, L"A").Known(2), PortKnown::Waiting);
}

TEST_F(PortEditTest, FollowsTheReceiverToItsNewRate)
{
    // What goes wrong, empty being nothing, and at which rate it answers then.
    using Row = std::tuple<const char*, const char*, LinkFollowed, std::uint32_t>;
    for (const auto& [fault, rule, followed, answersAt] :
         {Row{"all is well", "", LinkFollowed::Moved, 115200},
          Row{"the answer is lost", "drop on 5E count 2", LinkFollowed::Moved, 115200},
          Row{"the request is lost", "drop-request", LinkFollowed::Stayed, 38400}}) {
        SCOPED_TRACE(fault);
        command.ClosePort();
        ASSERT_EQ(SetLinkRate(38400, m_roots), 1);
        Start(38400);
        ASSERT_EQ(OpenTarget(command, m_target), 1);
        if (rule == std::string("drop-request")) {
            m_receiver->SetScripted([](auto) { return std::vector<std::uint8_t>{}; });
        } else if (*rule != '\0') {
            m_receiver->AddFault(testing::ParsedRule(rule));
        }
        PortEdit edit(1, m_roots);
        ASSERT_EQ(edit.At(1).SetPrmString(L"115200"), 1);
        ASSERT_EQ(edit.Set(1, &command), PortSet::Done);
        EXPECT_TRUE(edit.IsLinkChanged());
        ASSERT_EQ(edit.KeepLink(), 1);
        EXPECT_FALSE(edit.IsLinkChanged());
        m_receiver->SetScripted(nullptr);
        m_target.settings = LinkSettings(m_roots);
        EXPECT_EQ(m_target.settings.baudRate, 115200U);
        EXPECT_EQ(FollowLink(command, m_target, edit.LinkBefore()), followed);
        EXPECT_TRUE(Answers());
        if (followed == LinkFollowed::Stayed) {
            ASSERT_EQ(edit.TakeLinkBack(), 1);
        }
        EXPECT_EQ(LinkSettings(m_roots).baudRate, answersAt);
    }
}

TEST_F(PortEditTest, SaysThatTheReceiverIsLost)
{
    Start(38400, false);
    EXPECT_EQ(FollowLink(command, m_target, m_target.settings), LinkFollowed::Lost);
    EXPECT_EQ(command.IsPortOpen(), 0);
    ASSERT_EQ(OpenTarget(command, m_target), 1);
    PortEdit edit(1, m_roots);
    EXPECT_EQ(edit.Set(2, &command), PortSet::NoAnswer);
    m_endAt = 0;
    EXPECT_EQ(FollowLink(command, m_target, m_target.settings), LinkFollowed::Cancelled);
    EXPECT_EQ(command.IsPortOpen(), 0);
}

TEST_F(PortEditTest, StoresWithoutAReceiver)
{
    PortEdit edit(2, m_roots);
    ASSERT_EQ(edit.At(2).SetPrmString(L"19200-7-Odd"), 1);
    EXPECT_EQ(edit.Set(2, &command), PortSet::Done);
    EXPECT_EQ(edit.KeepLink(), 1);
    EXPECT_EQ(Stored(0), L"19200-7-Odd-1-None");
    EXPECT_EQ(Stored(2), L"19200-7-Odd-1-None");
    PortEdit none(0, m_roots);
    EXPECT_EQ(none.KeepLink(), 0);
    EXPECT_FALSE(none.IsLinkChanged());
}

TEST_F(PortEditTest, FindsTheRateOfASilentReceiver)
{
    Start(9600);
    EXPECT_EQ(Search(), 9600U);
    EXPECT_EQ(m_rates, (std::vector<std::uint32_t>{38400, 9600})) << "the one it should be, first";
    EXPECT_EQ(command.IsPortOpen(), 0);
    Start(230400);
    m_rates.clear();
    m_target.settings.baudRate = 2400;
    EXPECT_EQ(Search(), std::nullopt);
    EXPECT_EQ(command.Fault(), CommandFault::TimedOut);
    EXPECT_EQ(m_rates, (std::vector<std::uint32_t>{2400, 38400, 9600, 115200, 57600, 19200, 4800}));
    m_rates.clear();
    m_endAt = 2;
    EXPECT_EQ(Search(), std::nullopt);
    EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
    EXPECT_EQ(m_rates.size(), 2U);
    m_lines.back().SetFailing([](const std::string& call) { return call == "Open"; });
    EXPECT_EQ(SearchRate(command, m_target), std::nullopt);
    EXPECT_EQ(command.Fault(), CommandFault::OpenFailed);
}

} // namespace
} // namespace fieldcore
