// docs/exchanges.log shows an exchange of each kind, and both ends of the line are written from it,
// so it is tested like code: the receiver must give the answers that stand there.

#include "simulator/ExchangeRecord.h"
#include "simulator/Receiver.h"
#include "tests/simulator/Support.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>

namespace fieldcore::simulator::test {

namespace {

struct Exchange
{
    std::string line; ///< of the request
    Request request;
    std::vector<Bytes> answer;
};

std::vector<std::string> Lines(const char* name)
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/docs/" + std::string(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<Exchange> AllExchanges()
{
    std::vector<Exchange> exchanges;
    for (const std::string& line : Lines("exchanges.log")) {
        RecordedBytes piece;
        std::string error;
        EXPECT_TRUE(ParseLogLine(line, piece, error)) << line << ": " << error;
        if (piece.direction == Direction::FromReceiver) {
            exchanges.back().answer.push_back(piece.bytes);
            continue;
        }
        RequestParser parser;
        std::optional<Request> heard;
        for (const std::uint8_t byte : piece.bytes) {
            heard = parser.Feed(byte);
        }
        EXPECT_TRUE(heard && heard->bytes == piece.bytes) << "is no good request: " << line;
        exchanges.push_back({line, heard.value_or(Request{}), {}});
    }
    return exchanges;
}

/// A receiver that is in the state from which the answer came.
Scenario ScenarioFor(const Exchange& exchange)
{
    const Request& request = exchange.request;
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
    if (type == 0x16 && exchange.answer.front()[6] == '2') { // a list of text records
        return Parsed("list-form text2\n"
                      "satellite G2   41 63 48.0 42.5\n"
                      "satellite R4  334 62 47.2 43.0 # has no text form\n"
                      "satellite G12 203 71 49.5 44.0\n"
                      "satellite S129 181 48 39.2\n");
    }
    const auto state = states.find(type);
    return state != states.end() ? Parsed(state->second)
                                 : Shipped(type == 0xC8 ? "tilted" : "still-sky");
}

} // namespace

TEST(ProtocolDoc, EveryRequestOfAHeadingHasAnExample)
{
    std::set<std::string> shown;
    for (const Exchange& exchange : AllExchanges()) {
        std::array<char, 8> type{};
        std::snprintf(type.data(), type.size(), "0x%02X",
                      exchange.request.bytes.size() > 1 ? exchange.request.Type() : 0);
        shown.insert(type.data());
    }
    std::set<std::string> told;
    for (const std::string& line : Lines("protocol.md")) {
        if (!line.starts_with("### ")) {
            continue;
        }
        for (std::size_t at = line.find("0x"); at != std::string::npos;
             at = line.find("0x", at + 1)) {
            told.insert(line.substr(at, 4));
            EXPECT_TRUE(shown.contains(line.substr(at, 4))) << line;
        }
    }
    EXPECT_GE(told.size(), 25U);
}

TEST(ProtocolDoc, TheReceiverGivesTheDocumentedAnswers)
{
    for (const Exchange& exchange : AllExchanges()) {
        SCOPED_TRACE(exchange.line);
        ASSERT_FALSE(exchange.answer.empty()) << "no answer is documented";
        Receiver receiver(ScenarioFor(exchange), kStill);
        // What another file leaves behind must not stand in a list.
        static_cast<void>(Ask(receiver, 0x60, "00 01"));
        static_cast<void>(Ask(receiver, 0x60, "00 02"));
        EXPECT_EQ(Ask(receiver, exchange.request), exchange.answer);
    }
}

} // namespace fieldcore::simulator::test
