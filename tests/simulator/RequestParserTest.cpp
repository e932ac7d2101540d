#include "simulator/RequestParser.h"
#include "tests/simulator/Support.h"

namespace fieldcore::simulator::test {

namespace {

std::string Describe(const Request& request)
{
    switch (request.kind) {
    case Request::Kind::Frame:
        return "frame " + std::to_string(request.Type()) + "/" +
               std::to_string(request.Data().size());
    case Request::Kind::Damaged:
        return "damaged " + std::to_string(request.bytes.size());
    default:
        return request.kind == Request::Kind::Break ? "break" : "line";
    }
}

std::string ParseAll(const Bytes& bytes)
{
    RequestParser parser;
    std::string all;
    const auto add = [&](const std::optional<Request>& request) {
        if (request) {
            all += (all.empty() ? "" : ", ") + Describe(*request);
        }
    };
    for (const std::uint8_t byte : bytes) {
        add(parser.Feed(byte));
    }
    add(parser.GiveUp());
    return all;
}

} // namespace

TEST(RequestParser, CutsTheStreamIntoRequests)
{
    constexpr std::tuple<std::string_view, std::string_view, std::string_view> kRows[] = {
        {"a frame without data", "02 00 08 00 08 03", "frame 8/0"},
        {"a frame with data", "02 00 54 03 02 07 00 60 03", "frame 84/3"},
        {"two frames in one piece", "02 00 08 00 08 03 02 00 06 00 06 03", "frame 8/0, frame 6/0"},
        {"check byte not compared", "02 00 08 00 09 03", "damaged 6"},
        {"status left out of the sum", "02 01 08 00 08 03", "damaged 6"},
        {"ETX not compared", "02 00 08 00 08 04", "damaged 6"},
        {"good frame behind a damaged one lost", "02 00 08 00 09 03 02 00 08 00 08 03",
         "damaged 6, frame 8/0"},
        {"BREAK between frames", "00 02 00 08 00 08 03 00", "break, frame 8/0, break"},
        {"0x00 in a frame taken for BREAK", "02 00 84 02 01 00 87 03", "frame 132/2"},
        {"two BREAKs taken for one", "00 00", "break, break"},
        {"STX in the data taken for a start", "02 00 32 02 02 02 38 03", "frame 50/2"},
        {"0x00 in a text taken for BREAK", "41 00 0D 0A", "line"},
        {"a line", "4F 4B 0D 0A", "line"},
        {"line without CR", "4F 4B 0A", "damaged 3"},
        {"a frame behind text without line end", "41 42 02 00 08 00 08 03", "damaged 2, frame 8/0"},
        {"a frame that stops in the middle", "02 00 08", "damaged 3"},
        {"nothing", "", ""},
    };
    for (const auto& [fault, bytes, requests] : kRows) {
        EXPECT_EQ(ParseAll(Hex(bytes)), requests) << fault;
    }
}

TEST(RequestParser, KeepsNoMoreThanTheLongestLine)
{
    Bytes longest(256, 'A');
    longest.insert(longest.end(), {'\r', '\n'});
    EXPECT_EQ(ParseAll(longest), "line");
    longest.insert(longest.begin(), 'A');
    EXPECT_EQ(ParseAll(longest), "damaged 258, damaged 1");
}

} // namespace fieldcore::simulator::test
