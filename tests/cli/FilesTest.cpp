// The receiver's files from the command line.

#include "cli/FileCatalogue.h"
#include "tests/cli/Runner.h"
#include "tests/core/settings/FileSizeLimit.h"

#include <csignal>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

namespace fs = std::filesystem;

/// Names below @p folder with what is in them, "a/b: N bytes".
std::set<std::string> FilesBelow(const fs::path& folder)
{
    std::set<std::string> names;
    std::error_code none;
    for (const auto& entry : fs::recursive_directory_iterator(folder, none)) {
        if (entry.is_regular_file()) {
            names.insert(entry.path().lexically_relative(folder).string());
        }
    }
    return names;
}

/// A small receiver with all kinds of files, and a recycle bin.
constexpr const char* kReceiver = "model 3017\nfirmware 3.20\noptions l2 rtk nmea glonass\n"
                                  "fix fixed\nbattery 80 9\n"
                                  "file ONE 1500 2026-03-14 01:30\n"
                                  "file TWO 700 2026-03-14 23:59\n"
                                  "file LOG 900 2026-03-15 00:00 open\n"
                                  "file TWO 600 2026-03-13 00:00 deleted\n"
                                  "file OLD 500 2026-03-12 00:00 deleted\n"
                                  "file HELD 400 2026-03-15 01:00 locked\n";

class FilesTest : public ::testing::Test
{
protected:
    FilesTest() { receiver = runner.Folder().Write("receiver.txt", kReceiver).string(); }

    Outcome Run(const std::string& arguments)
    {
        return runner.Run("files " + arguments + " --speed 20 --timeout 60 --port sim:" + receiver);
    }

    /// A receiver of that scenario from now on.
    void Plug(const std::string& scenario)
    {
        receiver = runner.Folder().Write("other.txt", scenario).string();
    }
    nlohmann::json Result(const std::string& arguments)
    {
        return Run(arguments + " --json").Json()["result"];
    }

    Runner runner;
    std::string receiver;
};

TEST(Wildcard, FitsWhatItShould)
{
    struct Row
    {
        const wchar_t* pattern;
        const wchar_t* text;
        bool fits;
    };
    const Row rows[] = {
        {L"A0314A00.Q01", L"A0314A00.Q01", true},
        {L"A0314A00", L"A0314A00.Q01", false}, // not only the beginning
        {L"0314A00.Q01", L"A0314A00.Q01", false},
        {L"*", L"", true},
        {L"?", L"", false},
        {L"*.Q01", L"A.Q01.Q01", true}, // the star has to go back
        {L"A*B*C", L"AxBxBxC", true},
        {L"A*B*C", L"AxBxBx", false},
        {L"A??", L"AB", false},
        {L"a*", L"A1", false},
        {L"**A", L"BA", true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(MatchesWildcard(row.pattern, row.text), row.fits)
            << fs::path(row.pattern) << " on " << fs::path(row.text);
    }
    // Many stars must not take for ever.
    const std::wstring stars = L"*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b";
    EXPECT_FALSE(MatchesWildcard(stars, std::wstring(5000, L'a')));
}

TEST_F(FilesTest, ListsBothPages)
{
    const nlohmann::json result = Result("ls");
    EXPECT_EQ(result["fileCount"], 4);
    EXPECT_EQ(result["totalBytes"], 3500);
    EXPECT_EQ(result["files"][0], nlohmann::json::parse(R"({"name":"ONE.Q01","sizeBytes":1500,
                                        "time":"2026-03-14T01:30:00","state":"live"})"));
    EXPECT_EQ(result["files"][2]["state"], "logging");
    const nlohmann::json deleted = Result("ls --deleted");
    EXPECT_EQ(deleted["fileCount"], 2);
    EXPECT_EQ(deleted["files"][1]["name"], "OLD.Q1D");
    EXPECT_EQ(Run("ls T*").out, "NAME     SIZE   TIME              STATE\n"
                                "TWO.Q01  700 B  2026-03-14 23:59  live\n"
                                "files   1\n"
                                "in all  700 B\n");
    receiver = "lark"; // whose firmware deletes for good
    EXPECT_EQ(Run("ls --deleted").code, 5);
    receiver = "logging"; // a type that never learnt the newer extension
    EXPECT_EQ(Result("ls *.Q01")["fileCount"], 3);
}

TEST_F(FilesTest, FetchesWhatWasAskedFor)
{
    struct Row
    {
        const char* fault;
        const char* arguments;
        int code;
        std::set<std::string> files;
    };
    const Row rows[] = {
        {"base name", "get ONE", 0, {"ONE.Q01"}},
        {"pattern and name of the same", "get O* ONE.Q01", 0, {"ONE.Q01"}},
        {"folder of the day", "get ?WO --by-date", 0, {"2026-03-14/TWO.Q01"}},
        {"no such file", "get ONE NONE", 1, {}},
        {"being logged, by name", "get ONE LOG", 1, {}},
        {"being logged, by pattern", "get *O*", 0, {"ONE.Q01", "TWO.Q01"}},
        {"only told", "get * --dry-run", 0, {}},
        {"no name", "get", 2, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = Run(std::string(row.arguments) + " --to @/there");
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_EQ(FilesBelow(runner.Path("there")), row.files);
        fs::remove_all(runner.Path("there"));
    }
    EXPECT_EQ(Run("get ONE --to @/receiver.txt").code, 8) << "no folder";
    receiver = "pica";
    EXPECT_EQ(Run("get * --to @/pica").code, 5);
}

TEST_F(FilesTest, DoesNotReplaceUnasked)
{
    runner.Folder().Write("there/ONE.Q01", "mine");
    const fs::path file = runner.Path("there/ONE.Q01");
    EXPECT_EQ(Run("get ONE --to @/there").code, 2);
    runner.world.inIsTerminal = runner.world.errIsTerminal = true;
    runner.input = "n\n";
    EXPECT_EQ(Run("get ONE --to @/there").code, 7);
    EXPECT_EQ(Run("get ONE --to @/there --dry-run").code, 0);
    EXPECT_EQ(Content(file), "mine");
    runner.input = "y\n";
    EXPECT_EQ(Run("get ONE --to @/there").code, 0);
    EXPECT_EQ(Content(file).size(), 1500U);
    runner.world.inIsTerminal = false;
    fs::resize_file(file, 1499); // is another one, then
    EXPECT_EQ(Run("get ONE --to @/there --new").code, 2);
    EXPECT_EQ(Run("get ONE --to @/there --new --yes").code, 0);
    const nlohmann::json again = Result("get ONE --to @/there --new");
    EXPECT_EQ(again["files"][0]["state"], "already-there");
    EXPECT_EQ(again["fetchedCount"], 0);
}

TEST_F(FilesTest, TellsWhyATransferFailed)
{
    struct Row
    {
        const char* fault;
        const char* more; ///< lines of the scenario
        int code;
        const char* error;
        std::string cause; ///< what a person reads begins so
        std::uintmax_t room = 0;
    };
    const Row rows[] = {
        {"shorter than listed", "file BAD 1000 2026-03-16 00:00 announces 5000\n", 1, "wrong-size",
         "BAD.Q01: It has not the size"},
        {"refused", "file BAD 1000 2026-03-16 00:00\nfault nak on 96\n", 6, "nak",
         "BAD.Q01: The receiver refused"},
        {"cable pulled", "file BAD 9000 2026-03-16 00:00\nfault hang-up of 95 skip 3\n", 3,
         "link-lost", "BAD.Q01: The port is gone"},
        {"full", "file BAD 99000 2026-03-16 00:00\n", 8, "local-file",
         "BAD.Q01: The medium is full", 20000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Plug(std::string(kReceiver) + row.more);
        std::optional<fieldcore::testing::FileSizeLimit> limit;
        if (row.room > 0) {
            limit.emplace(row.room);
        }
        const Outcome outcome = Run("get BAD --to @/there --json");
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        const nlohmann::json error = outcome.Json()["error"];
        EXPECT_EQ(error["code"], row.error) << outcome.err;
        EXPECT_TRUE(error["message"].get<std::string>().starts_with(row.cause)) << error;
        EXPECT_FALSE(fs::exists(runner.Path("there/BAD.Q01")));
    }
}

TEST_F(FilesTest, GoesOnWithAListThatIsNotWhole)
{
    Plug("model 3017\nfirmware 3.20\noptions l2\nfix fixed\n"
         "files 20 10 20\nfault drop of 9D skip 1 count 1\n");
    const Outcome list = Run("ls --json");
    EXPECT_EQ(list.code, 4) << "it looks whole";
    EXPECT_EQ(list.Json()["result"]["fileCount"], 12);
    EXPECT_EQ(Run("get * --to @/there").code, 4);
    EXPECT_EQ(FilesBelow(runner.Path("there")).size(), 12U);
    receiver = "many-files";
    const nlohmann::json many = Run("ls --json").Json();
    EXPECT_EQ(many["result"]["fileCount"], 512);
    EXPECT_EQ(many["result"]["more"], true);
}

TEST_F(FilesTest, SaysWhatItWouldDeleteForGood)
{
    runner.world.inIsTerminal = runner.world.errIsTerminal = true;
    runner.input = "n\n";
    receiver = "lark";
    const Outcome outcome = Run("rm A*");
    EXPECT_EQ(outcome.code, 7);
    const auto asked = outcome.err.find("Delete 6 files (A0314A00.Q02, A0314B00.Q02, A0317A00.Q02 "
                                        "and 3 more), ");
    EXPECT_NE(asked, std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("6 of them have not been fetched"), std::string::npos)
        << outcome.err;
}

TEST_F(FilesTest, LeavesOutNamesThatCouldLeaveTheFolder)
{
    Plug(std::string(kReceiver) + "file ../../evil.Q01 100 2026-03-14 01:30\n"
                                  "file a%5Cb.Q01 100 2026-03-14 01:32\n"
                                  "file %0A%1B[31m.Q01 100 2026-03-14 01:35\n");
    const Outcome outcome = Run("get * --to @/deep/down/there");
    EXPECT_EQ(outcome.code, 8);
    EXPECT_EQ(
        FilesBelow(runner.Path("deep")),
        (std::set<std::string>{"down/there/HELD.Q01", "down/there/ONE.Q01", "down/there/TWO.Q01"}));
    EXPECT_EQ(outcome.out.find('\x1b') + outcome.err.find('\x1b') + 2, 0U)
        << "control characters reach the terminal";
    EXPECT_EQ(outcome.err.find("\n?[31m"), std::string::npos) << "a name begins a line";
}

TEST_F(FilesTest, CtrlCEndsWithinABlockAndTheNextOneGoesOn)
{
    receiver = "slow-files";
    runner.world.errIsTerminal = true;
    std::uintmax_t atSignal = 0;
    const fs::path part = runner.Path("there/A0314B00.Q02.part");
    runner.world.stopSignal = [&] {
        std::error_code none;
        const auto size = fs::file_size(part, none);
        if (atSignal == 0 && !none && size >= 5000) {
            atSignal = size;
        }
        return atSignal > 0 ? SIGINT : 0;
    };
    const Outcome outcome = Run("get A0314B00 --to @/there");
    EXPECT_EQ(outcome.code, 7) << outcome.err;
    EXPECT_NE(outcome.err.find("A0314B00.Q02"), std::string::npos) << "no progress";
    ASSERT_GT(atSignal, 0U);
    EXPECT_LE(fs::file_size(part), atSignal + 1000);
    EXPECT_FALSE(fs::exists(runner.Path("there/A0314B00.Q02")));
    runner.world.stopSignal = [] { return 0; };
    const Outcome next = Run("get A0314B00 --to @/there");
    EXPECT_EQ(next.code, 0) << "what is left stands in the way";
    EXPECT_NE(next.err.find("A0314B00.Q02 continued at byte "), std::string::npos) << next.err;
    EXPECT_EQ(FilesBelow(runner.Path("there")), std::set<std::string>{"A0314B00.Q02"});
}

TEST_F(FilesTest, DeletesAndRecovers)
{
    struct Row
    {
        const char* fault;
        const char* scenario; ///< null: the small receiver
        const char* arguments;
        int code;
        std::string states;
    };
    const Row rows[] = {
        {"into the bin", nullptr, "rm ONE", 0, "deleted"},
        {"told only", nullptr, "rm * --dry-run", 0, "planned planned logging planned"},
        {"the bin has an older one", nullptr, "rm TWO", 0, "deleted"},
        {"refused", nullptr, "rm HELD ONE", 6, "deleted refused"},
        {"out of the bin, nobody to ask", nullptr, "rm OLD --deleted", 2, "not-reached"},
        {"out of the bin", nullptr, "rm OLD --deleted --yes", 0, "deleted"},
        {"out of the bin, not the live one", nullptr, "rm T* --deleted --yes", 0, "deleted"},
        {"for good, nobody to ask", "lark", "rm A0314A00", 2, "not-reached"},
        {"for good", "lark", "rm A0314* --yes", 0, "deleted deleted"},
        {"back", nullptr, "recover OLD", 0, "recovered"},
        {"not in the bin", nullptr, "recover ONE", 1, ""},
        {"by number", "pica", "rm A0314A00", 0, "deleted"},
        {"back by number", "pica", "recover *", 0, "recovered recovered"},
        {"a bin that is not emptied", "pica", "rm * --deleted --yes", 5, ""},
    };
    const std::string own = receiver;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        receiver = row.scenario != nullptr ? row.scenario : own;
        const Outcome outcome = Run(std::string(row.arguments) + " --json");
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        std::string states;
        const nlohmann::json result = outcome.Json()["result"];
        if (result.is_object()) {
            for (const nlohmann::json& file : result["files"]) {
                states += (states.empty() ? "" : " ") + file["state"].get<std::string>();
            }
        }
        EXPECT_EQ(states, row.states);
    }
}

} // namespace
} // namespace fieldcore::cli::test
