#include "core/link/FrameAssembler.h"

#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

/// What came of one delivery, as a test wants to see it.
struct Seen
{
    ExchangeState state;
    Bytes bytes;
    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& seen)
{
    return out << static_cast<int>(seen.state) << " with " << seen.bytes.size() << " bytes";
}

Seen FrameSeen(const Bytes& frame)
{
    return {ExchangeState::Frame, frame};
}

/// Feeds the chunks one port event after the other and collects all deliveries.
class Feed
{
public:
    void Push(const Bytes& chunk)
    {
        std::ranges::copy(chunk, m_queue.Free().begin());
        m_queue.Commit(chunk.size());
        while (m_queue.Size() > 0) {
            const auto delivery =
                isText ? assembler.AssembleLine(m_queue)
                       : assembler.AssembleFrame(m_queue, FrameAssembler::kLargestStep);
            if (delivery) {
                const auto buffer = assembler.Buffer().first(delivery->length);
                seen.push_back({delivery->state, {buffer.begin(), buffer.end()}});
            }
        }
    }

    bool isText = false;
    FrameAssembler assembler;
    std::vector<Seen> seen;

private:
    ByteQueue m_queue{5120};
};

TEST(FrameAssembler, AssemblesOverAnySplit)
{
    const Bytes frames[] = {Frame(0x07, Bytes(55, 0x20)), Frame(0x06), LongFrame(Bytes(600, 7))};
    for (const Bytes& frame : frames) {
        for (std::size_t split = 1; split < frame.size(); ++split) {
            Feed feed;
            const auto middle = frame.begin() + static_cast<std::ptrdiff_t>(split);
            feed.Push({frame.begin(), middle});
            feed.Push({middle, frame.end()});
            ASSERT_EQ(feed.seen, (std::vector{FrameSeen(frame)})) << "split at " << split;
        }
        Feed trickle;
        for (const std::uint8_t byte : frame) {
            trickle.Push({byte});
        }
        EXPECT_EQ(trickle.seen, (std::vector{FrameSeen(frame)}));
    }
}

TEST(FrameAssembler, TellsWhatArrivesTogether)
{
    const Bytes a = Frame(0x09, Bytes(21, '1'));
    const Bytes b = Frame(0x15, Bytes(13, '2'));
    const Bytes aside = Frame(0x40, {1, 2, 3});
    const Bytes big = LongFrame(Bytes(1017, 3)); // 1024 bytes: as large as the buffer
    const Seen ack{ExchangeState::Ack, {0x06}};
    const Seen nak{ExchangeState::Nak, {0x15}};
    const Seen bad{ExchangeState::Malformed, {}};
    struct Row
    {
        std::string_view fault;
        Bytes chunk;
        std::vector<Seen> seen;
    };
    const Row rows[] = {
        {"two frames run together", Joined({a, b}), {FrameSeen(a), FrameSeen(b)}},
        {"ACK not told", {0x06}, {ack}},
        {"NAK not told", {0x15}, {nak}},
        {"a lone foreign byte is taken", {0x41}, {bad}},
        {"a lone STX is delivered", {0x02}, {}},
        {"a byte behind a frame is lost", Joined({a, {0x06}}), {FrameSeen(a), ack}},
        {"an unsolicited frame wakes somebody", aside, {}},
        {"a frame behind an unsolicited one is lost", Joined({aside, a}), {FrameSeen(a)}},
        {"five foreign bytes wait for more", {'G', 'P', 0, 0, 0}, {bad}},
        {"four foreign bytes are taken", {'G', 'P', 'G', 'S'}, {}},
        {"a full-size long frame is refused", big, {FrameSeen(big)}},
        {"a queue of many frames starves",
         Joined({big, big, a, b}),
         {FrameSeen(big), FrameSeen(big), FrameSeen(a), FrameSeen(b)}},
        {"an oversize length is believed", {0x02, 0, 0x95, 0x03, 0xFA}, {bad}},
        {"the largest length is believed", {0x02, 0, 0x95, 0xFF, 0xFF}, {bad}},
        {"a frame without data waits", Frame(0x09), {FrameSeen(Frame(0x09))}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Feed feed;
        feed.Push(row.chunk);
        EXPECT_EQ(feed.seen, row.seen);
    }
}

TEST(FrameAssembler, KeepsTheLastUnsolicitedFrame)
{
    Feed feed;
    EXPECT_TRUE(feed.assembler.Unsolicited().empty());
    feed.Push(Joined({Frame(0x40, {1}), Frame(0x40, {2, 3}), Frame(0x09)}));
    EXPECT_TRUE(std::ranges::equal(feed.assembler.Unsolicited(), Frame(0x40, {2, 3})));
}

TEST(FrameAssembler, TakesNothingInAStepThatIsTooLarge)
{
    ByteQueue queue(5120);
    FrameAssembler assembler;
    const Bytes frame = LongFrame(Bytes(600, 1));
    std::ranges::copy(frame, queue.Free().begin());
    queue.Commit(frame.size());
    EXPECT_FALSE(assembler.AssembleFrame(queue, queue.Size()).has_value());
    EXPECT_EQ(queue.Size(), frame.size() - 5) << "only the header was to be taken";
}

TEST(FrameAssembler, ReadsLinesOfText)
{
    struct Row
    {
        std::string_view fault;
        std::vector<Bytes> chunks;
        std::vector<Seen> seen;
    };
    const Seen bad{ExchangeState::Malformed, {}};
    const Row rows[] = {
        {"the LF is counted", {Ascii("OK\r\n")}, {{ExchangeState::Frame, Ascii("OK\r")}}},
        {"a line in pieces is lost",
         {Ascii("O"), Ascii("K"), Ascii("\r\n")},
         {{ExchangeState::Frame, Ascii("OK\r")}}},
        {"an early LF ends the line", {Ascii("\n\nA\n")}, {{ExchangeState::Frame, Ascii("\n\nA")}}},
        {"bytes behind the LF are kept",
         {Ascii("AB\nCD\n"), Ascii("EF\n")},
         {{ExchangeState::Frame, Ascii("AB")}, {ExchangeState::Frame, Ascii("EF")}}},
        {"more than 255 bytes are taken at once",
         {Bytes(300, 'x'), Ascii("\n")},
         {{ExchangeState::Frame, Bytes(255, 'x')}}},
        {"an endless line overruns the buffer", std::vector<Bytes>(5, Bytes(255, 'x')), {bad}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Feed feed;
        feed.isText = true;
        for (const Bytes& chunk : row.chunks) {
            feed.Push(chunk);
        }
        EXPECT_EQ(feed.seen, row.seen);
    }
}

} // namespace
} // namespace fieldcore
