#include "core/link/Command.h"

#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using namespace testing;

Bytes Damaged(Bytes frame)
{
    frame[frame.size() - 2] ^= 0x01;
    return frame;
}

Bytes Status()
{
    return Frame(0x09, Ascii("1008000080 1.85    10"));
}

/// A channel with a time-out of 1 s.
class CommandChannelTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    void Open() { VirtualChannel::Open(1s); }
    void Build(std::uint8_t type)
    {
        command.BeginPacket(type, 0);
        command.EndPacket();
    }
};

TEST_F(CommandChannelTest, TriesAgainExactlyWhereThatHelps)
{
    using enum fieldcore::Answer;
    using enum CommandFault;
    const Bytes good = Status();
    // Good, damaged, ACK, NAK, a foreign byte, silence.
    const std::map<char, ScriptedEnd::Answer> answers{{'g', {good}},        {'b', {Damaged(good)}},
                                                      {'a', {Bytes{0x06}}}, {'n', {Bytes{0x15}}},
                                                      {'f', {Bytes{0x41}}}, {'-', {}}};
    const auto tried = [&](CCommand::Answer expected, std::string_view script) {
        SCOPED_TRACE(script);
        std::vector<ScriptedEnd::Answer> sent;
        std::ranges::transform(script, std::back_inserter(sent),
                               [&](char c) { return answers.at(c); });
        const ScriptedEnd receiver(line, sent);
        Open();
        Build(0x08);
        const int result = command.Exchange(expected);
        EXPECT_EQ(command.GetLastResult(), result);
        EXPECT_EQ(command.LastError().empty(), result == 1) << command.LastError();
        EXPECT_EQ(command.Fault() == None, result == 1);
        const char first = script.front();
        EXPECT_EQ(command.TakeLinkError(), first == 'n'   ? LinkError::Nak
                                           : first == 'f' ? LinkError::Malformed
                                           : first == '-' ? LinkError::TimedOut
                                                          : LinkError::None);
        EXPECT_EQ(command.TakeLinkError(), LinkError::None) << "reading the code must clear it";
        const std::size_t sends = receiver.Requests().size();
        EXPECT_EQ(receiver.Requests(), std::vector<Bytes>(sends, Frame(0x08)));
        return std::pair(sends, command.Fault());
    };
    EXPECT_EQ(tried(Reply, "bbg"), std::pair(2UL, BadChecksum))
        << "damaged reply asked for a third time";
    EXPECT_EQ(tried(Reply, "--g"), std::pair(2UL, TimedOut)) << "silence asked a third time";
    EXPECT_EQ(tried(Reply, "ng"), std::pair(1UL, Refused)) << "NAK asked again";
    EXPECT_EQ(tried(Reply, "ffg"), std::pair(2UL, Malformed))
        << "foreign bytes twice asked a third time";
    EXPECT_EQ(tried(Ack, "fa"), std::pair(2UL, None)) << "foreign byte to a command not sent again";
    EXPECT_EQ(tried(Ack, "ga"), std::pair(1UL, WrongAnswer)) << "frame taken for an ACK";
}

TEST_F(CommandChannelTest, AFailedExchangeKeepsItsTime)
{
    Open();
    Build(0x08);
    const auto start = clock.Steady();
    EXPECT_EQ(command.Exchange(CCommand::Answer::Reply), 0);
    EXPECT_EQ(clock.Steady() - start, 2500ms) << "not two time-outs and a pause";
    EXPECT_EQ(host.breaths, 50) << "the host could not breathe";
}

TEST_F(CommandChannelTest, StaleAnswersAreTakenOnceAtMost)
{
    // The first answer, or half of it, comes after its time-out, while the channel pauses.
    Bytes half = Status();
    half.resize(half.size() / 2);
    for (const Bytes& late : {Damaged(Status()), half}) {
        SCOPED_TRACE(late.size());
        const ScriptedEnd receiver(line, {{{late, 1250ms}}, {Status()}, {Status()}});
        Open();
        Build(0x08);
        EXPECT_EQ(command.Exchange(CCommand::Answer::Reply), 1);
        EXPECT_EQ(receiver.Requests().size(), 2U) << "what came in the pause was not purged";
    }
}

TEST_F(CommandChannelTest, ARequestInsideABreathIsRefusedAndHarmless)
{
    const ScriptedEnd receiver(line, {{}, {Status()}});
    Open();
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
    EXPECT_EQ(receiver.Requests(), std::vector<Bytes>(2, Frame(0x08)));
}

TEST_F(CommandChannelTest, TheUserCanEndAWait)
{
    StatusReply status;
    IdentificationRecord record;
    const auto sentBefore = [this](int breaths, const std::function<int()>& ask) {
        Open();
        host.breaths = 0;
        host.inBreath = [&] { return host.breaths < breaths; };
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        EXPECT_EQ(host.breaths, breaths);
        return line.TakeReceived();
    };
    const auto asks = [&] { return command.RequestStatus(status); };
    const auto identifies = [&] { return command.RequestIdentity(record); };
    EXPECT_EQ(sentBefore(3, asks), Frame(0x08)) << "for an answer";
    EXPECT_EQ(sentBefore(25, asks), Frame(0x08)) << "in the pause between two attempts";
    EXPECT_EQ(sentBefore(2, identifies), Bytes{0x00}) << "in a BREAK, which has six";
    line.TakeNothing(); // as behind flow control that a receiver without power holds
    EXPECT_EQ(sentBefore(2, asks), Bytes());
    EXPECT_EQ(sentBefore(2, identifies), Bytes());
}

TEST_F(CommandChannelTest, WithoutAPortNothingHappens)
{
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 0);
    EXPECT_EQ(command.Fault(), CommandFault::NotOpen);
    EXPECT_EQ(command.PurgePort(), 0);
    EXPECT_EQ(command.SendText(std::string_view("X")), 0);
    command.ClosePort();
    line.HangUp();
    EXPECT_EQ(command.OpenPort("in memory"), 0);
    EXPECT_EQ(command.TakeLinkError(), LinkError::Open);
    EXPECT_EQ(command.IsPortOpen(), 0);
    EXPECT_NE(command.LastError().find("open"), std::string::npos) << command.LastError();
}

TEST_F(CommandChannelTest, ATooLongRequestIsNotSent)
{
    Open();
    EXPECT_EQ(command.ShowLabel(1, 2, std::wstring(252, L'x')), 0);
    EXPECT_EQ(command.Fault(), CommandFault::TooLong);
    EXPECT_TRUE(line.TakeReceived().empty());
    EXPECT_EQ(command.ShowLabel(1, 2, std::wstring(251, L'x')), 1) << "the longest that fits";
    EXPECT_EQ(line.TakeReceived().size(), 261U);
}

TEST_F(CommandChannelTest, SendAndCollectKeepsWhateverComes)
{
    const ScriptedEnd receiver(line, {{Damaged(Status())}, {}});
    Open();
    Build(0x08);
    EXPECT_EQ(command.SendAndCollect(), 1);
    EXPECT_EQ(command.GetReplyType(), 0x09);
    EXPECT_EQ(command.GetDataLength(), 21U);
    Build(0x08);
    EXPECT_EQ(command.SendAndCollect(), 1) << "silence is no failure here";
    EXPECT_TRUE(std::ranges::equal(command.Bytes(), Bytes(kFrameBufferSize, 0)))
        << "a time-out leaves zeros";
    EXPECT_EQ(receiver.Requests().size(), 2U) << "it must not send again";
}

TEST_F(CommandChannelTest, SendsAndReadsLines)
{
    const auto sent = [this](const std::wstring& text) {
        Bytes all;
        Open();
        EXPECT_EQ(command.SendLine(text), 0) << "frames are expected, not lines";
        command.SetFraming(SerialLink::Framing::Lines);
        line.SetListener([&](std::span<const std::uint8_t> bytes, Clock::Duration arrives) {
            all.insert(all.end(), bytes.begin(), bytes.end());
            line.Send(Ascii("OK\r\n"), arrives + 1ms);
        });
        EXPECT_EQ(command.SendLine(text), 1) << command.LastError();
        EXPECT_EQ(command.GetDataLength(), 3U);
        EXPECT_EQ(command.Bytes()[0], 'O');
        line.SetListener(nullptr);
        return all;
    };
    EXPECT_EQ(sent(L"ID?"), Ascii("ID?\r\n")) << "no line end added";
    EXPECT_EQ(sent(L"ID?\r\n"), Ascii("ID?\r\n")) << "a second line end added";
    EXPECT_EQ(sent(std::wstring(300, L'x')), Joined({Bytes(256, 'x'), Ascii("\r\n")})) << "not cut";
    EXPECT_EQ(sent(L"ｱ"), (Bytes{0xB1, '\r', '\n'})) << "not converted";
}

} // namespace
} // namespace fieldcore
