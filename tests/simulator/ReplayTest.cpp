#include "simulator/Replay.h"
#include "tests/simulator/Support.h"

namespace fieldcore::simulator::test {

namespace {

constexpr std::string_view kLog = "00:1.000 Rcvr Rx [55 ]\r\n" // before any request
                                  "00:1.000 Rcvr Tx [01 ]\r\n"
                                  "00:1.000 Rcvr Rx [0A ]\r\n"
                                  "00:1.000 Rcvr Tx [02 ]\r\n"
                                  "00:1.000 Rcvr Rx [0B ]\r\n"
                                  "00:1.000 Rcvr Rx [0C ]\r\n"
                                  "\n"
                                  "00:1.000 Rcvr Tx [01 ]\n"
                                  "00:1.000 Rcvr Rx [0D ]\n"
                                  "00:1.000 Rcvr Tx [03 ]";

} // namespace

TEST(Replay, AnswersInTheOrderOfTheLogAndElseByTheRequest)
{
    using Answer = std::vector<Bytes>;
    Replay replay;
    std::string error;
    ASSERT_TRUE(replay.Parse(kLog, error)) << error;
    const std::tuple<std::string_view, std::string_view, Answer> rows[] = {
        {"first request", "01", {Hex("0A")}},
        {"answer in several pieces", "02", {Hex("0B"), Hex("0C")}},
        {"equal request answered the same again", "01", {Hex("0D")}},
        {"request without an answer", "03", {}},
        {"log not begun again", "01", {Hex("0A")}},
        {"request out of turn not found", "01", {Hex("0D")}},
        {"search does not go around the end", "02", {Hex("0B"), Hex("0C")}},
        {"a request that is not in the log", "04", {}},
        {"the place lost by it", "01", {Hex("0D")}},
    };
    for (const auto& [fault, request, answer] : rows) {
        EXPECT_EQ(replay.Answer(Hex(request)), answer) << fault;
    }
}

TEST(Replay, ErrorsNameTheLineAndTheCause)
{
    constexpr std::pair<std::string_view, std::string_view> kRows[] = {
        {"", R"(there is no request ("Rcvr Tx") in it)"},
        {"00:1.000 Rcvr Rx [06 ]", R"(there is no request ("Rcvr Tx") in it)"},
        {"\nhello", R"(line 2: neither "Rcvr Tx [" nor "Rcvr Rx [" stands in it)"},
        {"00:1.000 Rcvr Tx [06 ", R"(line 1: the closing "]" is missing)"},
        {"00:1.000 Rcvr Tx []", "line 1: there are no bytes between the brackets"},
        {"00:1.000 Rcvr Tx [0G ]", R"(line 1: "0G " is not two hexadecimal digits and a blank)"},
        {"00:1.000 Rcvr Tx [06]", R"(line 1: "06" is not two hexadecimal digits and a blank)"},
        {"00:1.000 Rcvr Tx [6 07 ]", R"(line 1: "6 0" is not two hexadecimal digits and a blank)"},
    };
    for (const auto& [log, expected] : kRows) {
        Replay replay;
        std::string error;
        EXPECT_FALSE(replay.Parse(log, error)) << log;
        EXPECT_EQ(error, expected);
    }
}

} // namespace fieldcore::simulator::test
