#include "cli/CommandLine.h"
#include "core/link/FrameDescriber.h"
#include "tests/cli/Runner.h"

#include <array>
#include <cstdint>
#include <regex>

namespace fieldcore::cli::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

const std::string kTraceOfExamples = "trace '" FIELDCORE_SOURCE_DIR "/docs/exchanges.log'";

TEST(Trace, KnowsEveryExampleOfTheProtocol)
{
    const nlohmann::json result = Runner().Result(kTraceOfExamples);
    EXPECT_GT(result["exchanged"], 70);
    EXPECT_EQ(result["faults"], 0);
    EXPECT_EQ(result["damagedLines"], 0);
    for (const nlohmann::json& entry : result["entries"]) {
        EXPECT_TRUE(entry["kind"] == "frame" || entry["length"] == 1) << entry;
        EXPECT_NE(entry["name"], "unknown type") << entry;
        for (const nlohmann::json& field : entry["fields"]) {
            EXPECT_NE(field["name"], "more") << "bytes that no field stands for: " << entry;
            EXPECT_NE(field["meaning"], "not a number") << entry;
        }
    }
}

TEST(Trace, ReadsFieldsAsTheProtocolHasThem)
{
    const std::pair<std::string, std::string> rows[] = {
        {"Rx  0x07", "short serial number  00301701"},
        {"Rx  0x07", "navigation firmware  4.43"}, // hundredths
        {"Rx  0x09", "battery  85 %"},
        {"Rx  0x09", "PDOP  1.8"}, // digits with a point
        {"Rx  0x41", "power input  1"},
        {"Rx  0x09", "fix  5  (RTK fixed)"},
        {"Rx  0x09", "running survey  (blank)"},
        {"Rx  0x31", "longitude  2.426007660272118 rad  (139.00000000 deg)"},
        {"Rx  0x35", "HDOP  1"}, // single precision
        {"Tx  0x5E", "rate  115200 bit/s"},
        {"Rx  0x55", "PRN  7"}, // mask of satellites
        {"Rx  0x9D", "1. name  A0314A00.Q01"},
        {"Rx  0x95", "flags  1  (last block)"}, // long frame
        {"Tx  0x85", "text  POINT A1"},
        {"Rx  0xC8", "state  65  (measuring, sensor present)"}, // low bits and single bits
        {"Rx  0x17", "satellite  G2  (azimuth 41, elevation 63 deg; 48.00 42.50 dB-Hz)"},
    };
    const std::string trace =
        std::regex_replace(Runner().Run(kTraceOfExamples).out, std::regex("  +"), "  ");
    for (const auto& [frame, field] : rows) {
        const std::size_t at = trace.find("checksum", trace.find(frame));
        ASSERT_NE(at, std::string::npos) << frame;
        const std::string told = trace.substr(at, trace.find("checksum", at + 1) - at);
        EXPECT_NE(told.find("  " + field + "\n"), std::string::npos) << frame << ", " << told;
    }
}

/// The value of a field, as a person reads it.
std::string Field(const std::vector<DescribedBytes>& described, std::string_view name)
{
    for (const DescribedField& field : described.front().fields) {
        if (field.name == name) {
            return field.value.Words() + (field.meaning.empty() ? "" : "|" + field.meaning);
        }
    }
    return "(not there)";
}

TEST(FrameDescriber, ReadsSatellitesAsTheParserDoes)
{
    const std::string none = "(not there)";
    const std::string text = "0709045412"; // and what each form makes of it
    const std::string good = "G7|azimuth 90, elevation 45 deg; 41.20 dB-Hz";
    const std::array<std::string, 3> rows[] = {
        {"013" + text, good, none},    // any digit is a form
        {"01\x10" + text, good, none}, // one of the two bits is enough
        {"01\x01\x70\x5A\x2D\x08", "unknown 112|azimuth 90, elevation 45 deg; 2.00 dB-Hz", none},
        {"01\x01\x07\x5A\x5B\x08",
         "G7|azimuth 90, elevation 91 deg; 2.00 dB-Hz; dropped, that is no direction", "1"},
    };
    for (const auto& [data, satellite, dropped] : rows) {
        Bytes frame{0x02, 0x00, 0x17, static_cast<std::uint8_t>(data.size())};
        frame.insert(frame.end(), data.begin(), data.end());
        frame.insert(frame.end(), {0x00, 0x03});
        const std::vector<DescribedBytes> described = DescribeBytes(Direction::Received, frame);
        EXPECT_EQ(described.front().fault, "");
        EXPECT_EQ(Field(described, "satellite"), satellite);
        EXPECT_EQ(Field(described, "dropped satellites"), dropped);
    }
}

TEST(Trace, ShowsGoodAndDamagedLines)
{
    Runner runner;
    runner.world.outIsTerminal = false;
    runner.Folder().Write("log", "00:1.000 Rcvr Tx [02 00 14 00 14 03 ]\r\n"
                                 "00:1.000 Rcvr Rx [02 00 15 0D 30 33 34 35 36 30 30 32 34 31 30 "
                                 "31 38 B4 03 ]\r\n"
                                 "\r\n"
                                 "00:1.000 Rcvr Rx [06 ]\r\n"
                                 "00:1.000 Rcvr Rx [15 ]\n"
                                 "00:1.000 Rcvr Tx [00 ]\r\n"
                                 "00:1.000 Rcvr Rx [02 00 41 01 01 44 03 ]\r\n"
                                 "00:1.000 Rcvr Rx [02 00 EE 02 AA 55 EF 03 ]\r\n"
                                 "00:1.000 Rcvr Rx [02 00 41 01 0G 43 03 ]\r\n"
                                 "\x1b[2J nonsense\r\n"
                                 "00:1.000 Rcvr Rx [02 00 41 01 ]\r\n"
                                 "00:1.000 Rcvr Rx [99 98 02 00 41 01 02 44 03 ]\r\n"
                                 "00:1.000 Rcvr Rx [4F 4B 0D 0A ]\r\n"
                                 "59:9.250 Rcvr Tx [49 44 ]\r\n"
                                 "59:59.999 Rcvr Rx [4F 4B 0D 0A ]\r\n"
                                 "\t9:9.250 Rcvr Rx [99 98 ]\r\n");
    const Outcome outcome = runner.Run("trace @/log");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "    1  Tx  0x14 GPS time request, 6 bytes, checksum good\n"
              "    2  Rx  0x15 GPS time, 19 bytes, checksum good\n"
              "      0  seconds of the GPS week  345600 s\n"
              "      7  GPS week                 2410\n"
              "     11  GPS time minus UTC       18 s\n"
              "    4  Rx  ACK, 1 byte\n"
              "    5  Rx  NAK, 1 byte\n"
              "    6  Tx  BREAK, 1 byte\n"
              "    7  Rx  0x41 power source, 7 bytes, checksum BAD: 0x44, should be 0x43\n"
              "      0  power input  1\n"
              "    8  Rx  0xEE unknown type, 8 bytes, checksum good\n"
              "      0  data  AA 55\n"
              "    9  damaged line: \"0G \" is not two hexadecimal digits and a blank\n"
              "   10  damaged line: neither \"Rcvr Tx [\" nor \"Rcvr Rx [\" stands in it\n"
              "   11  Rx  piece of a frame, 0x41 power source, 4 bytes; only 4 of 7 bytes of it "
              "are there\n"
              "   12  Rx  bytes that are no frame, 2 bytes\n"
              "      0  bytes  99 98\n"
              "   12  Rx  0x41 power source, 7 bytes, checksum good\n"
              "      0  power input  2\n"
              "   13  Rx  line of text, 4 bytes; no line of text was sent before it\n"
              "      0  text  OK\n"
              "   14  59:9.250   Tx  line of text, 2 bytes\n"
              "      0  text  ID\n"
              "   15  59:59.999  Rx  line of text, 4 bytes\n"
              "      0  text  OK\n"
              "   16  Rx  bytes that are no frame, 2 bytes\n"
              "      0  bytes  99 98\n");
    EXPECT_EQ(outcome.err, "Exchanged: 14, with a fault: 5, damaged lines: 2.\n");

    const nlohmann::json result = runner.Result("trace @/log");
    EXPECT_EQ(result["damagedLines"], 2);
    ASSERT_EQ(result["entries"].size(), 16U);
    EXPECT_EQ(result["entries"][12]["time"], nullptr);
    EXPECT_EQ(result["entries"][13]["time"], "59:9.250");
    EXPECT_EQ(result["entries"][1]["fields"][1],
              nlohmann::json::parse(R"({"offset":7,"name":"GPS week","value":2410.0,
                                        "unit":null,"meaning":null})"));
    EXPECT_EQ(result["entries"][5]["checksum"], "bad");
}

TEST(Trace, ReadsWhatLogAndRecordWrite)
{
    Runner runner;
    ASSERT_EQ(runner.Run("info --port sim:noisy-line --speed 20 --timeout 40 --log @/log").code, 0);
    const nlohmann::json result = runner.Result("trace @/log");
    EXPECT_EQ(result["damagedLines"], 0);
    EXPECT_GT(result["faults"], 0) << "that line damages every fifth answer";
    EXPECT_TRUE(result["entries"].front()["time"].is_string() ||
                result["entries"].back()["time"].is_string());
    // A record, which the command does not inherit.
    ASSERT_EQ(runner
                  .Run(std::string("sim run --record @/record -- sh -c 'ls -l /proc/self/fd | grep "
                                   "-q record && exit 9; \"$0\" identify >/dev/null' ") +
                       FIELDCORE_CLI)
                  .code,
              0);
    const std::string record = runner.Run("trace --brief @/record").out;
    EXPECT_NE(record.find("Tx  BREAK"), std::string::npos) << record;
    EXPECT_NE(record.find("0x6E identification"), std::string::npos) << record;
}

TEST(Trace, ALogThatCannotBeWrittenIsToldOnce)
{
    const nlohmann::json told =
        Runner().Run("info --port sim: --log /dev/full --json").Json()["messages"];
    ASSERT_EQ(told.size(), 1U) << told;
    EXPECT_EQ(told[0]["text"], "The log /dev/full can no longer be written.");
}

TEST(Trace, SaysWhereALogCannotBeReadOn)
{
    const std::string good = "00:1.000 Rcvr Tx [02 00 14 00 14 03 ]\r\n";
    Runner runner;
    runner.Folder().Write("long", good + std::string(65536, ' ') + good + good);
    runner.Folder().Write("wide", std::string(65536 - good.size() + 1, ' ') + good + good);
    const std::string isLonger = "is longer than any of a log.";
    runner.Expect({{"trace @/wide --brief", 0, "Exchanged: 2"},
                   {"trace /dev/zero", 8, "line 1 " + isLonger},
                   {"trace @/", 8, "cannot be read"},
                   {"trace @/long", 8, "line 2 " + isLonger, "/result/exchanged", 1}});

    // A folder as stdin, and one of which every read fails.
    EXPECT_EQ(runner.RunInShell(std::string(FIELDCORE_CLI) + " trace - </").code, 8);
    std::istream failing(nullptr);
    std::ostringstream err;
    runner.world.in = &failing;
    runner.world.out = runner.world.err = &err;
    EXPECT_EQ(RunCommandLine(runner.world, {"trace", "-"}), 8);
    EXPECT_NE(err.str().find("stdin cannot be read from line 1 on."), std::string::npos);
}

} // namespace
} // namespace fieldcore::cli::test
