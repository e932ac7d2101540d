// docs/protocol.md is what both ends of the line are written from, so its examples are tested
// like code: each must be a good frame, and the receiver must give the answers that stand there.

#include "simulator/Receiver.h"
#include "tests/simulator/Support.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

namespace fieldcore::simulator::test {

namespace {

/// Bytes of the document and the line above them.
struct Fence
{
    std::string label;
    Bytes bytes;
};

struct Exchange
{
    std::string label;
    Request request;
    std::vector<Bytes> answer;
};

std::vector<std::string> DocLines()
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/docs/protocol.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Every fence; an answer of ACK, which is no frame, stands among them as one byte.
std::vector<Fence> AllFences()
{
    std::vector<Fence> fences;
    std::string label;
    bool inFence = false;
    for (const std::string& line : DocLines()) {
        if (line == "```hex") {
            inFence = true;
            fences.push_back({label, {}});
        } else if (line == "```") {
            inFence = false;
        } else if (inFence) {
            const Bytes more = Hex(line);
            fences.back().bytes.insert(fences.back().bytes.end(), more.begin(), more.end());
        } else if (line == "Reply ACK.") {
            fences.push_back({line, {kAck}});
        } else if (!line.empty()) {
            label = line;
        }
    }
    return fences;
}

std::vector<Exchange> AllExchanges()
{
    std::vector<Exchange> exchanges;
    for (const auto& [label, bytes] : AllFences()) {
        if (label.starts_with("Request 0x")) {
            exchanges.push_back({label, FrameRequest(bytes), {}});
        } else if (label.starts_with("Reply 0x") && label.ends_with(" to a BREAK:")) {
            exchanges.push_back({label, {Request::Kind::Break, {0x00}}, {bytes}});
        } else if (label.starts_with("Reply ")) {
            exchanges.back().answer.push_back(bytes);
        } else {
            EXPECT_TRUE(label.starts_with("Example 0x")) << "cannot be read: " << label;
        }
    }
    return exchanges;
}

/// A receiver that is in the state of which the document speaks.
Scenario ScenarioFor(const Request& request)
{
    const std::string files = "file GONE1 1 2026-01-01 00:00 hidden\n"
                              "file GONE2 1 2026-01-01 00:00 hidden\n"
                              "file GONE3 1 2026-01-01 00:00 deleted\n"
                              "file A0314A00 48213 2026-03-14 01:30";
    const std::map<int, std::string> states = {
        {0x60, "model 3010\nfirmware 3.7\n" + files},
        {0x68, "model 3010\n" + files + " deleted"},
        {0x79, "model 3010\nfirmware 3.7\n" + files},
        {0x96, "file A0314A00.Q01 12 2026-03-14 01:30 text Hello, field"},
        {0x9C, "file A0314A00 48213 2026-03-19 00:00"},
        {0xA0, "file A0314A00 1 2026-03-19 00:00"},
        {0xA1, "file A0314A00.Q01 1 2026-03-19 00:00 deleted"},
    };
    const int type = request.kind == Request::Kind::Frame ? request.Type() : -1;
    const auto state = states.find(type);
    return state != states.end() ? Parsed(state->second)
                                 : Shipped(type == 0xC8 ? "tilted" : "still-sky");
}

} // namespace

TEST(ProtocolDoc, EveryRequestOfTheTableHasAnExample)
{
    std::set<std::string> shown;
    for (const Exchange& exchange : AllExchanges()) {
        shown.insert(exchange.label.substr(exchange.label.find("0x"), 4));
    }
    int rows = 0;
    for (const std::string& line : DocLines()) {
        if (line.starts_with("| 0x") && line.find("| [") != std::string::npos) {
            EXPECT_TRUE(shown.contains(line.substr(2, 4))) << line;
            ++rows;
        }
    }
    EXPECT_GE(rows, 25);
}

TEST(ProtocolDoc, TheReceiverGivesTheDocumentedAnswers)
{
    for (const Exchange& exchange : AllExchanges()) {
        SCOPED_TRACE(exchange.label);
        ASSERT_FALSE(exchange.answer.empty()) << "no answer is documented";
        RequestParser parser;
        std::optional<Request> heard;
        for (const std::uint8_t byte : exchange.request.bytes) {
            heard = parser.Feed(byte);
        }
        ASSERT_TRUE(heard && heard->kind == exchange.request.kind) << "is no good request";
        Receiver receiver(ScenarioFor(exchange.request), kStill);
        // What another file leaves behind must not stand in a list.
        static_cast<void>(Ask(receiver, 0x60, "00 01"));
        static_cast<void>(Ask(receiver, 0x60, "00 02"));
        EXPECT_EQ(Ask(receiver, exchange.request), exchange.answer);
    }
}

TEST(ProtocolDoc, TheTextListExampleIsWhatTheReceiverSends)
{
    Receiver receiver(Parsed("list-form text2\n"
                             "satellite G2   41 63 48.0 42.5\n"
                             "satellite R4  334 62 47.2 43.0 # has no text form\n"
                             "satellite G12 203 71 49.5 44.0\n"
                             "satellite S129 181 48 39.2\n"),
                      SystemClock::Instance());
    const std::vector<Bytes> answer = Ask(receiver, 0x16);
    ASSERT_EQ(answer.size(), 1U);
    const std::vector<Fence> fences = AllFences();
    EXPECT_EQ(std::ranges::count_if(fences,
                                    [&](const Fence& fence) {
                                        return fence.label.starts_with("Example 0x17") &&
                                               fence.bytes == answer[0];
                                    }),
              1);
}

} // namespace fieldcore::simulator::test
