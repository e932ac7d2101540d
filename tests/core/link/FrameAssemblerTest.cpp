#include "core/link/FrameAssembler.h"

#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

/// What came of one delivery, and its bytes.
using Seen = std::pair<ExchangeState, Bytes>;

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
                seen.emplace_back(delivery->state, Bytes(buffer.begin(), buffer.end()));
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
    const auto seen = [](const Bytes& chunk) {
        Feed feed;
        feed.Push(chunk);
        return feed.seen;
    };
    EXPECT_EQ(seen(Joined({a, b})), (std::vector{FrameSeen(a), FrameSeen(b)}))
        << "two frames run together";
    EXPECT_EQ(seen({0x15}), std::vector{nak}) << "NAK not told";
    EXPECT_EQ(seen({0x41}), std::vector{bad}) << "a lone foreign byte is taken";
    EXPECT_EQ(seen({0x02}), std::vector<Seen>()) << "a lone STX is delivered";
    EXPECT_EQ(seen(Joined({a, {0x06}})), (std::vector{FrameSeen(a), ack}))
        << "a byte behind a frame is lost";
    EXPECT_EQ(seen(aside), std::vector<Seen>()) << "an unsolicited frame wakes somebody";
    EXPECT_EQ(seen(Joined({aside, a})), std::vector{FrameSeen(a)})
        << "a frame behind an unsolicited one is lost";
    EXPECT_EQ(seen({'G', 'P', 0, 0, 0}), std::vector{bad}) << "five foreign bytes wait for more";
    EXPECT_EQ(seen(big), std::vector{FrameSeen(big)}) << "a full-size long frame is refused";
    EXPECT_EQ(seen(Joined({big, big, a, b})),
              (std::vector{FrameSeen(big), FrameSeen(big), FrameSeen(a), FrameSeen(b)}))
        << "a queue of many frames starves";
    EXPECT_EQ(seen({0x02, 0, 0x95, 0x03, 0xFA}), std::vector{bad})
        << "an oversize length is believed";
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
    const auto read = [](const std::vector<Bytes>& chunks) {
        Feed feed;
        feed.isText = true;
        for (const Bytes& chunk : chunks) {
            feed.Push(chunk);
        }
        return feed.seen;
    };
    const Seen ok = FrameSeen(Ascii("OK\r"));
    EXPECT_EQ(read({Ascii("OK\r\n")}), std::vector{ok}) << "the LF is counted";
    EXPECT_EQ(read({Ascii("O"), Ascii("K"), Ascii("\r\n")}), std::vector{ok}) << "pieces are lost";
    EXPECT_EQ(read({Ascii("\n\nA\n")}), std::vector{FrameSeen(Ascii("\n\nA"))})
        << "an early LF ends it";
    EXPECT_EQ(read({Ascii("AB\nCD\n"), Ascii("EF\n")}),
              (std::vector{FrameSeen(Ascii("AB")), FrameSeen(Ascii("EF"))}))
        << "bytes behind the LF are kept";
    EXPECT_EQ(read({Bytes(300, 'x'), Ascii("\n")}), std::vector{FrameSeen(Bytes(255, 'x'))})
        << "more than 255 are taken";
    EXPECT_EQ(read(std::vector<Bytes>(5, Bytes(255, 'x'))),
              (std::vector<Seen>{{ExchangeState::Malformed, {}}}))
        << "the buffer overruns";
}

} // namespace
} // namespace fieldcore
