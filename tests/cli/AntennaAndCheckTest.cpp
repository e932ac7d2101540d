// Antennas and typed texts from the command line. Which texts are valid is tested with the library.

#include "tests/cli/Runner.h"

#include <fstream>
#include <numbers>

namespace fieldcore::cli::test {
namespace {

TEST(Antenna, ReducesASlantHeight)
{
    Runner runner;
    EXPECT_EQ(runner.Run("antenna height --slant 1.5 --r 0.1 --v 0.05").out,
              "1.547   sqrt(1.5000^2 - 0.10000^2) + 0.05000 = 1.546663\n");
    runner.Expect({{"antenna height --slant 0.05 --r 0.1 --v 0.05", 0, "not longer",
                    "/result/verticalM", 0.1}});
}

TEST(Antenna, StoresWhatIsNamedAndKeepsTheRest)
{
    Runner runner;
    const std::string block("\x08\x0f"
                            "01AB12    \x01\x00\x00\x3c\x46",
                            17);
    runner.Folder().Write("logged", block);
    runner.Folder().Write("unknown", std::string(block).replace(2, 2, "??"));
    runner.Expect({
        {"antenna set --type 3", 2}, // no height yet
        {"antenna set --height -0.1", 2},
        {"antenna set --height 154.3", 2},
        {"antenna set --height 1e0", 2}, // nor at the screen
        {"antenna set --height 1 --type 7", 2},
        {"antenna set --height 1 --type -1", 2},
        {"antenna set --height 1 --type 6 --method 2", 2},
        {"antenna set --height 1 --serial a_b", 2},
        {"antenna set --height 1 --role base", 2},
        {"antenna set --from @/unknown", 1},
        {"antenna set --from @/none", 8},
        {"antenna set --height 1.543 --dry-run", 0, "nothing was changed"},
        {"antenna show", 0, "", "/result/isMeasured", false},
        {"antenna set --height 1.543 --type 3 --method 1 --serial A1", 0},
        {"antenna set --height 1.6", 0, "", "/result/verticalM", 1.647}, // sqrt(2.56 - 0.01) + 0.05
        {"antenna show", 0, "", "/result/type", 3},
        {"antenna show", 0, "", "/result/method", 1},
        {"antenna show", 0, "", "/result/serial", "A1"},
        {"antenna set --type 4", 0, "", "/result/method", 0}, // not that of the antenna before
        // What is named goes before the file.
        {"antenna set --role rover --from @/logged --serial C3", 0, "", "/result/serial", "C3"},
        {"antenna show --role rover", 0, "", "/result/measuredM", 1.543},
        {"antenna show --role reference", 0, "", "/result/isMeasured", false},
    });
}

TEST(Antenna, IsNotReplacedByItsNeighbour)
{
    Runner runner;
    ASSERT_EQ(runner.Run("antenna set --height 1.5 --type 6 --method 1").code, 0);
    const nlohmann::json list = runner.Result("antenna list");
    std::ofstream(list["file"].get<std::string>())
        << "[ANTENNATYPE]\nDATA0=A\n[A]\nMeasMethod0=0.1,0.05,0,\"m\"\n";
    runner.Expect({{"antenna show", 0, "no type 6", "/result/type", 6},
                   {"antenna show", 0, "no type 6", "/result/verticalM", 1.5},
                   {"antenna set --height 1.6", 1, "", "/error/code", "antenna-unknown"},
                   {"antenna set --type 0 --method 1", 0}});
}

TEST(Check, EndsWithTheVerdict)
{
    Runner runner;
    const std::pair<std::string, int> rows[] = {
        {"number -3.5", 0},
        {"number 11 --max 10", 1},   // limit not passed on
        {"number 1.5 --integer", 1}, // flag not passed on
        {"number ''", 0},
        {"number --text=-", 0}, // a lone minus is no option
        {"point A-1", 0},
        {"point 点", 1},
        {"point A\xFF", 1},       // bytes that are no UTF-8
        {"angle -10-30-00", 0},   // it begins with a minus
        {"angle 91 --max 90", 1}, // degrees not passed on
        {"number", 2},
        {"number 1 --decimals 10", 2},
    };
    for (const auto& [words, code] : rows) {
        EXPECT_EQ(runner.Run("check " + words).code, code) << words;
    }
}

TEST(Check, TellsTheValueOrTheMessage)
{
    const std::string refused = "check number 11 --min 1 --max 10";
    const std::string why = "The value must lie between [ 1.000 ] and [ 10.000 ].";
    const double right = std::numbers::pi / 2;
    Runner().Expect({{"check angle 90", 0, "", "/result/rad", right},
                     {"check angle 90-30 --decimals 1", 0, "", "/result/dms", "90-30-00.0"},
                     {"check number 1.2345 --decimals 2", 0, "", "/result/rounded", 1.23},
                     {refused, 1, why, "/error/code", "not-valid"},
                     {refused, 1, why, "/messages/0/text", why},
                     {refused, 1, why, "/result/value", nullptr},
                     {refused, 1, why, "/result/valid", false}});
}

TEST(Next, CountsOn)
{
    EXPECT_EQ(Runner().Result("next A-8 --count 2 --max 3")["names"],
              nlohmann::json::parse(R"([{"name":"A-9","changed":true},
                                        {"name":"A-9","changed":false}])"))
        << "there is no room for A-10";
}

} // namespace
} // namespace fieldcore::cli::test
