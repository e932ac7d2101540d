#include "core/link/Command.h"

#include "tests/core/link/FarEnd.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <map>
#include <string_view>

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
    const std::map<char, ScriptedEnd::Answer> answers{
        {'g', {good}},
        {'b', {Damaged(good)}},
        {'a', {Bytes{0x06}}},
        {'n', {Bytes{0x15}}},
        {'f', {Bytes{0x41}}},
        {'-', {}},
        {'p', {Bytes(good.begin(), good.begin() + 3), Bytes(good.begin() + 3, good.end())}}};
    struct Row
    {
        std::string_view fault;
        CCommand::Answer expected;
        std::string_view answers; ///< good, bad, ACK, NAK, foreign byte, silence, good in pieces
        int result;
        std::size_t sends;
        CommandFault reason;
    };
    constexpr Row kRows[] = {
        {"good reply refused", Reply, "g", 1, 1, None},
        {"reply in pieces refused", Reply, "p", 1, 1, None},
        {"damaged reply not asked for again", Reply, "bg", 1, 2, None},
        {"damaged reply asked for a third time", Reply, "bbg", 0, 2, BadChecksum},
        {"silence not asked again", Reply, "-g", 1, 2, None},
        {"silence asked a third time", Reply, "--g", 0, 2, TimedOut},
        {"NAK asked again", Reply, "ng", 0, 1, Refused},
        {"ACK taken for a reply", Reply, "ag", 0, 1, WrongAnswer},
        {"foreign byte not asked again", Reply, "fg", 1, 2, None},
        {"foreign bytes twice asked a third time", Reply, "ffg", 0, 2, Malformed},
        {"ACK refused", Ack, "a", 1, 1, None},
        {"NAK to a command sent again", Ack, "na", 0, 1, Refused},
        {"frame taken for an ACK", Ack, "ga", 0, 1, WrongAnswer},
        {"foreign byte to a command not sent again", Ack, "fa", 1, 2, None},
        {"silence to a command not sent again", Ack, "-a", 1, 2, None},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.fault);
        std::vector<ScriptedEnd::Answer> script;
        for (const char answer : row.answers) {
            script.push_back(answers.at(answer));
        }
        const ScriptedEnd receiver(line, script);
        Open();
        Build(0x08);
        EXPECT_EQ(command.Exchange(row.expected), row.result);
        EXPECT_EQ(command.GetLastResult(), row.result);
        EXPECT_EQ(command.Fault(), row.reason) << command.LastError();
        EXPECT_EQ(command.LastError().empty(), row.result == 1);
        const char first = row.answers.front();
        EXPECT_EQ(command.TakeLinkError(), first == 'n'   ? LinkError::Nak
                                           : first == 'f' ? LinkError::Malformed
                                           : first == '-' ? LinkError::TimedOut
                                                          : LinkError::None);
        EXPECT_EQ(command.TakeLinkError(), LinkError::None) << "reading the code must clear it";
        EXPECT_EQ(receiver.Requests(), std::vector<Bytes>(row.sends, Frame(0x08)));
    }
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
    struct Row
    {
        std::string_view what;
        bool isHeld; ///< nobody reads at the far end, as behind flow control
        bool identifies;
        int breaths;
        Bytes sent;
    };
    const Row rows[] = {
        {"for an answer", false, false, 3, Frame(0x08)},
        {"in the pause between two attempts", false, false, 25, Frame(0x08)},
        {"for a line that takes nothing", true, false, 2, {}},
        {"the same before a BREAK", true, true, 2, {}},
        {"in a BREAK of six breaths", false, true, 2, {0x00}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Open();
        line.TakeNothing(row.isHeld);
        host.breaths = 0;
        host.inBreath = [&] { return host.breaths < row.breaths; };
        StatusReply status;
        IdentificationRecord record;
        EXPECT_EQ(row.identifies ? command.RequestIdentity(record) : command.RequestStatus(status),
                  0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        EXPECT_EQ(host.breaths, row.breaths);
        EXPECT_EQ(line.TakeReceived(), row.sent);
    }
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
    command.ShowLabel(1, 2, std::wstring(251, L'x'));
    EXPECT_EQ(line.TakeReceived().size(), 261U) << "as long as it may be";
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
