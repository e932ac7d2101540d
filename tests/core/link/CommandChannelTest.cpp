#include "core/link/Command.h"

#include "core/platform/FastClock.h"
#include "tests/core/link/FarEnd.h"

#include <string_view>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Ascii;
using testing::Bytes;
using testing::FarEnd;
using testing::Frame;
using testing::Joined;
using testing::ScriptedReceiver;

constexpr double kSpeed = 40.0; // a second passes in 25 ms

/// Counts the breaths and does what a test wants in them.
class BreathingHost : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view, std::wstring_view, BoxStyle) override
    {
        return BoxAnswer::Ok;
    }
    bool Breathe() override
    {
        ++breaths;
        return inBreath ? inBreath() : true;
    }

    int breaths = 0;
    std::function<bool()> inBreath;
};

Bytes Damaged(Bytes frame)
{
    frame[frame.size() - 2] ^= 0x01;
    return frame;
}

Bytes Status()
{
    return Frame(0x09, Ascii("1008000080 1.85    10"));
}

/// A channel with time running fast.
class CommandChannelTest : public ::testing::Test
{
protected:
    void Open(const std::string& path, std::chrono::milliseconds timeout = 1s)
    {
        PortSettings settings;
        settings.replyTimeout = timeout;
        ASSERT_EQ(command.OpenPort(path, settings), 1) << command.LastError();
    }
    void Build(std::uint8_t type)
    {
        command.BeginPacket(type, 0);
        command.EndPacket();
    }

    FastClock clock{kSpeed};
    BreathingHost host;
    CCommand command{{&host, &clock, nullptr, nullptr}};
};

TEST_F(CommandChannelTest, TriesAgainExactlyWhereThatHelps)
{
    using enum CCommand::Answer;
    using Answers = std::vector<ScriptedReceiver::Answer>;
    const Bytes good = Status();
    const Bytes bad = Damaged(Status());
    const Bytes ack{0x06};
    const Bytes nak{0x15};
    const Bytes foreign{0x41};
    struct Row
    {
        std::string_view fault;
        CCommand::Answer expected;
        Answers answers;
        int result;
        std::size_t sends;
        CommandFault reason;
    };
    const Row rows[] = {
        {"good reply refused", Reply, {{good}}, 1, 1, CommandFault::None},
        {"reply in pieces refused",
         Reply,
         {{{good.begin(), good.begin() + 3}, {good.begin() + 3, good.end()}}},
         1,
         1,
         CommandFault::None},
        {"damaged reply not asked for again", Reply, {{bad}, {good}}, 1, 2, CommandFault::None},
        {"damaged reply asked for a third time",
         Reply,
         {{bad}, {bad}, {good}},
         0,
         2,
         CommandFault::BadChecksum},
        {"silence not asked again", Reply, {{}, {good}}, 1, 2, CommandFault::None},
        {"silence asked a third time", Reply, {{}, {}, {good}}, 0, 2, CommandFault::TimedOut},
        {"NAK asked again", Reply, {{nak}, {good}}, 0, 1, CommandFault::Refused},
        {"ACK taken for a reply", Reply, {{ack}, {good}}, 0, 1, CommandFault::WrongAnswer},
        {"foreign byte not asked again", Reply, {{foreign}, {good}}, 1, 2, CommandFault::None},
        {"foreign bytes twice asked a third time",
         Reply,
         {{foreign}, {foreign}, {good}},
         0,
         2,
         CommandFault::Malformed},
        {"ACK refused", Ack, {{ack}}, 1, 1, CommandFault::None},
        {"NAK to a command sent again", Ack, {{nak}, {ack}}, 0, 1, CommandFault::Refused},
        {"frame taken for an ACK", Ack, {{good}, {ack}}, 0, 1, CommandFault::WrongAnswer},
        {"foreign byte to a command not sent again",
         Ack,
         {{foreign}, {ack}},
         1,
         2,
         CommandFault::None},
        {"silence to a command not sent again", Ack, {{}, {ack}}, 1, 2, CommandFault::None},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        ScriptedReceiver receiver(row.answers);
        Open(receiver.Path(), 4s); // 100 ms on a watch
        Build(0x08);
        EXPECT_EQ(command.Exchange(row.expected), row.result);
        EXPECT_EQ(command.GetLastResult(), row.result);
        EXPECT_EQ(command.Fault(), row.reason) << command.LastError();
        EXPECT_EQ(command.LastError().empty(), row.result == 1);
        command.ClosePort();
        EXPECT_EQ(receiver.Stop(), std::vector<Bytes>(row.sends, Frame(0x08)));
    }
}

TEST_F(CommandChannelTest, KeepsWhatCameLast)
{
    ScriptedReceiver receiver({{Status()}, {}, {}});
    Open(receiver.Path());
    Build(0x08);
    ASSERT_EQ(command.Exchange(CCommand::Answer::Reply), 1);
    EXPECT_EQ(command.GetReplyType(), 0x09);
    EXPECT_EQ(command.GetDataLength(), 21U);
    Build(0x08);
    ASSERT_EQ(command.Exchange(CCommand::Answer::Reply), 0);
    const auto left = command.Bytes();
    EXPECT_EQ(Bytes(left.begin(), left.end()), Bytes(kFrameBufferSize, 0))
        << "a time-out leaves zeros";
}

TEST_F(CommandChannelTest, AFailedExchangeKeepsItsTime)
{
    const FarEnd silent;
    Open(silent.Path());
    Build(0x08);
    const auto start = clock.Steady();
    EXPECT_EQ(command.Exchange(CCommand::Answer::Reply), 0);
    const auto took = clock.Steady() - start;
    EXPECT_GE(took, 2500ms) << "two time-outs and a pause were cut short";
    EXPECT_LT(took, 2600ms + kSpeed * 1s) << "it took longer than two time-outs and a pause";
    EXPECT_GT(host.breaths, 20) << "the host could not breathe";
}

TEST_F(CommandChannelTest, StaleAnswersAreTakenOnceAtMost)
{
    // The first answer comes after its time-out, while the channel pauses.
    ScriptedReceiver receiver({{}, {Status()}, {Status()}});
    Open(receiver.Path());
    bool late = false;
    host.inBreath = [&] {
        if (!late && host.breaths == 25) { // 1 s of waiting are 20 breaths; then comes the pause
            receiver.End().Send(Damaged(Status()));
            late = true;
        }
        return true;
    };
    Build(0x08);
    EXPECT_EQ(command.Exchange(CCommand::Answer::Reply), 1);
    EXPECT_TRUE(late);
    command.ClosePort();
    EXPECT_EQ(receiver.Stop().size(), 2U) << "what came in the pause was not purged";
}

TEST_F(CommandChannelTest, ARequestInsideABreathIsRefusedAndHarmless)
{
    ScriptedReceiver receiver({{}, {Status()}});
    Open(receiver.Path());
    int refusals = 0;
    host.inBreath = [&] {
        GpsTimeReply time;
        refusals += command.RequestGpsTime(time) == 0 && command.Fault() == CommandFault::Busy;
        command.ClosePort();
        return true;
    };
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
    EXPECT_EQ(command.Fault(), CommandFault::None);
    EXPECT_EQ(refusals, host.breaths);
    EXPECT_GT(refusals, 0);
    host.inBreath = nullptr;
    command.ClosePort();
    EXPECT_EQ(receiver.Stop(), std::vector<Bytes>(2, Frame(0x08)));
}

TEST_F(CommandChannelTest, TheUserCanEndAWait)
{
    const FarEnd silent;
    for (const int breath : {3, 25}) { // while it waits, and in the pause between two attempts
        Open(silent.Path());
        host.breaths = 0;
        host.inBreath = [&] { return host.breaths < breath; };
        Build(0x08);
        EXPECT_EQ(command.Exchange(CCommand::Answer::Reply), 0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        EXPECT_EQ(host.breaths, breath);
        command.ClosePort();
    }
}

/// Nobody reads at the far end, as behind flow control that a receiver without power holds.
TEST_F(CommandChannelTest, TheUserCanEndTheWaitForALineThatTakesNothing)
{
    const FarEnd deaf;
    Open(deaf.Path());
    const int line = open(deaf.Path().c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(line, 0);
    const std::vector<char> rubbish(4096, 'x');
    while (write(line, rubbish.data(), rubbish.size()) > 0) {
    }
    host.inBreath = [&] { return host.breaths < 2; };
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 0);
    EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
    EXPECT_EQ(host.breaths, 2);
    host.breaths = 0;
    IdentificationRecord record;
    EXPECT_EQ(command.RequestIdentity(record), 0);
    EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
    EXPECT_EQ(host.breaths, 2);
    close(line);
}

TEST_F(CommandChannelTest, TheUserCanEndABreak)
{
    const FarEnd silent;
    Open(silent.Path());
    host.inBreath = [&] { return host.breaths < 2; }; // 300 ms have six
    IdentificationRecord record;
    EXPECT_EQ(command.RequestIdentity(record), 0);
    EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
    EXPECT_EQ(host.breaths, 2);
    EXPECT_EQ(silent.Receive(1), Bytes{0x00});
}

TEST_F(CommandChannelTest, WithoutAPortNothingHappens)
{
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 0);
    EXPECT_EQ(command.Fault(), CommandFault::NotOpen);
    EXPECT_EQ(command.PurgePort(), 0);
    EXPECT_EQ(command.SendText(std::string_view("X")), 0);
    command.ClosePort();
    EXPECT_EQ(command.OpenPort("/dev/null"), 0);
    EXPECT_EQ(command.TakeLinkError(), LinkError::Open);
    EXPECT_EQ(command.IsPortOpen(), 0);
    EXPECT_NE(command.LastError().find("open"), std::string::npos) << command.LastError();
}

TEST_F(CommandChannelTest, ATooLongRequestIsNotSent)
{
    ScriptedReceiver receiver({});
    Open(receiver.Path());
    EXPECT_EQ(command.ShowLabel(1, 2, std::wstring(252, L'x')), 0);
    EXPECT_EQ(command.Fault(), CommandFault::TooLong);
    command.ClosePort();
    EXPECT_TRUE(receiver.Stop().empty());
}

TEST_F(CommandChannelTest, SendAndCollectKeepsWhateverComes)
{
    ScriptedReceiver receiver({{Damaged(Status())}, {}});
    Open(receiver.Path());
    Build(0x08);
    EXPECT_EQ(command.SendAndCollect(), 1);
    EXPECT_EQ(command.GetReplyType(), 0x09);
    Build(0x08);
    EXPECT_EQ(command.SendAndCollect(), 1) << "silence is no failure here";
    command.ClosePort();
    EXPECT_EQ(receiver.Stop().size(), 2U) << "it must not send again";
}

TEST_F(CommandChannelTest, SendsAndReadsLines)
{
    struct Row
    {
        std::string_view fault;
        std::wstring text;
        Bytes sent;
    };
    const Row rows[] = {
        {"no line end added", L"ID?", Ascii("ID?\r\n")},
        {"a second line end added", L"ID?\r\n", Ascii("ID?\r\n")},
        {"a long text not cut", std::wstring(300, L'x'), Joined({Bytes(256, 'x'), Ascii("\r\n")})},
        {"not converted", L"ｱ", {0xB1, '\r', '\n'}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        FarEnd far;
        Open(far.Path());
        EXPECT_EQ(command.SendLine(row.text), 0) << "frames are expected, not lines";
        command.SetFraming(SerialLink::Framing::Lines);
        std::jthread answer([&] {
            EXPECT_EQ(far.Receive(row.sent.size()), row.sent);
            far.Send(Ascii("OK\r\n"));
        });
        EXPECT_EQ(command.SendLine(row.text), 1) << command.LastError();
        EXPECT_EQ(command.GetDataLength(), 3U);
        EXPECT_EQ(command.Bytes()[0], 'O');
        command.ClosePort();
    }
}

TEST_F(CommandChannelTest, HangUpAtEveryByte)
{
    const Bytes reply = Status();
    for (std::size_t after = 0; after <= reply.size(); ++after) {
        SCOPED_TRACE(after);
        FarEnd far;
        Open(far.Path());
        std::jthread puller([&] {
            EXPECT_EQ(far.Receive(6).size(), 6U);
            far.Send(std::span(reply).first(after));
            far.HangUp();
        });
        StatusReply status;
        const int result = command.RequestStatus(status);
        if (after < reply.size()) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(command.Fault(), CommandFault::LinkLost) << command.LastError();
        }
        puller.join();
        const auto start = clock.Steady();
        EXPECT_EQ(command.RequestStatus(status), 0);
        EXPECT_LT(clock.Steady() - start, 1s + kSpeed * 1s) << "a lost link was waited for";
        command.ClosePort();
        EXPECT_EQ(command.IsPortOpen(), 0);
    }
}

} // namespace
} // namespace fieldcore
