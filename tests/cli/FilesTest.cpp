// The receiver's files from the command line.

#include "cli/FileCatalogue.h"
#include "tests/cli/Runner.h"
#include "tests/core/settings/FileSizeLimit.h"

#include <csignal>
#include <set>

namespace fieldcore::cli::test {
namespace {

namespace fs = std::filesystem;

/// The files below @p folder.
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
    FilesTest() { Plug(kReceiver); }

    [[nodiscard]] std::string OnReceiver(const std::string& arguments) const
    {
        return OnSim("files " + arguments, receiver);
    }
    Outcome Run(const std::string& arguments) { return runner.Run(OnReceiver(arguments)); }
    void Expect(std::initializer_list<Told> rows)
    {
        for (Told row : rows) {
            row.arguments = OnReceiver(row.arguments);
            runner.Expect({row});
        }
    }
    /// A receiver of that scenario from now on.
    void Plug(const std::string& scenario)
    {
        receiver = runner.Folder().Write("receiver.txt", scenario).string();
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
        {L"A0314A00", L"A0314A00.Q01", false}, // not only the beginning
        {L"0314A00.Q01", L"A0314A00.Q01", false},
        {L"*", L"", true},
        {L"?", L"", false},
        {L"*.Q01", L"A.Q01.Q01", true}, // the star has to go back
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
    const nlohmann::json result = runner.Result(OnReceiver("ls"));
    EXPECT_EQ(result["fileCount"], 4);
    EXPECT_EQ(result["totalBytes"], 3500);
    EXPECT_EQ(result["files"][0], nlohmann::json::parse(R"({"name":"ONE.Q01","sizeBytes":1500,
                                        "time":"2026-03-14T01:30:00","state":"live"})"));
    EXPECT_EQ(result["files"][2]["state"], "logging");
    Expect({{"ls --deleted", 0, "", "/result/fileCount", 2},
            {"ls --deleted", 0, "", "/result/files/1/name", "OLD.Q1D"}});
    EXPECT_EQ(Run("ls T*").out, "NAME     SIZE   TIME              STATE\n"
                                "TWO.Q01  700 B  2026-03-14 23:59  live\n"
                                "files   1\n"
                                "in all  700 B\n");
    receiver = "lark"; // whose firmware deletes for good
    Expect({{"ls --deleted", 5}});
    receiver = "logging"; // a type that never learnt the newer extension
    Expect({{"ls *.Q01", 0, "", "/result/fileCount", 3}});
}

TEST_F(FilesTest, FetchesWhatWasAskedFor)
{
    const auto fetched = [this](const std::string& arguments, int code) {
        EXPECT_EQ(Run("get --to @/there " + arguments).code, code) << arguments;
        const std::set<std::string> files = FilesBelow(runner.Path("there"));
        fs::remove_all(runner.Path("there"));
        return files;
    };
    using Names = std::set<std::string>;
    EXPECT_EQ(fetched("ONE", 0), Names{"ONE.Q01"});
    EXPECT_EQ(fetched("O* ONE.Q01", 0), Names{"ONE.Q01"}) << "pattern and name of the same";
    EXPECT_EQ(fetched("?WO --by-date", 0), Names{"2026-03-14/TWO.Q01"});
    EXPECT_EQ(fetched("ONE NONE", 1), Names{});
    EXPECT_EQ(fetched("ONE LOG", 1), Names{}) << "it is being logged";
    EXPECT_EQ(fetched("*O*", 0), (Names{"ONE.Q01", "TWO.Q01"}));
    EXPECT_EQ(fetched("* --dry-run", 0), Names{});
    EXPECT_EQ(fetched("", 2), Names{});
    EXPECT_EQ(Run("get ONE --to @/receiver.txt").code, 8) << "no folder";
    receiver = "pica";
    Expect({{"get * --to @/pica", 5}});
}

TEST_F(FilesTest, DoesNotReplaceUnasked)
{
    runner.Folder().Write("there/ONE.Q01", "mine");
    const fs::path file = runner.Path("there/ONE.Q01");
    const std::string get = "get ONE --to @/there";
    EXPECT_EQ(Run(get).code, 2);
    runner.Type("n\n");
    EXPECT_EQ(Run(get).code, 7);
    EXPECT_EQ(Run(get + " --dry-run").code, 0);
    EXPECT_EQ(ContentOf(file), "mine");
    runner.Type("y\n");
    EXPECT_EQ(Run(get).code, 0);
    EXPECT_EQ(ContentOf(file).size(), 1500U);
    runner.world.inIsTerminal = runner.world.errIsTerminal = false;
    fs::resize_file(file, 1499); // is another one, then
    EXPECT_EQ(Run(get + " --new").code, 2);
    EXPECT_EQ(Run(get + " --new --yes").code, 0);
    Expect({{get + " --new", 0, "", "/result/files/0/state", "already-there"},
            {get + " --new", 0, "", "/result/fetchedCount", 0}});
}

TEST_F(FilesTest, TellsWhyATransferFailed)
{
    const auto expect = [this](const std::string& more, int code, const std::string& error,
                               const std::string& cause) {
        Plug(kReceiver + ("file BAD " + more));
        Expect({{"get BAD --to @/there", code, "BAD.Q01: " + cause, "/error/code", error}});
        EXPECT_FALSE(fs::exists(runner.Path("there/BAD.Q01")));
    };
    expect("1000 2026-03-16 00:00 announces 5000\n", 1, "wrong-size", "It has not the size");
    expect("1000 2026-03-16 00:00\nfault nak on 96\n", 6, "nak", "The receiver refused");
    expect("9000 2026-03-16 00:00\nfault hang-up of 95 skip 3\n", 3, "link-lost",
           "The port is gone");
    const fieldcore::testing::FileSizeLimit limit(20000);
    expect("99000 2026-03-16 00:00\n", 8, "local-file", "The medium is full");
}

TEST_F(FilesTest, GoesOnWithAListThatIsNotWhole)
{
    Plug("model 3017\nfirmware 3.20\noptions l2\nfix fixed\n"
         "files 20 10 20\nfault drop of 9D skip 1 count 1\n");
    Expect({{"ls", 4, "", "/result/fileCount", 12}});
    EXPECT_EQ(Run("get * --to @/there").code, 4);
    EXPECT_EQ(FilesBelow(runner.Path("there")).size(), 12U);
    receiver = "many-files";
    Expect({{"ls", 0, "512", "/result/more", true}});
}

TEST_F(FilesTest, SaysWhatItWouldDeleteForGood)
{
    receiver = "lark";
    runner.Type("n\n");
    const Outcome outcome = Run("rm A*");
    EXPECT_EQ(outcome.code, 7);
    for (const char* const part :
         {"Delete 6 files (A0314A00.Q02, A0314B00.Q02, A0317A00.Q02 and 3 more), ",
          "6 of them have not been fetched"}) {
        EXPECT_NE(outcome.err.find(part), std::string::npos) << outcome.err;
    }
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
    EXPECT_LE(fs::file_size(part), atSignal + 1000);
    EXPECT_FALSE(fs::exists(runner.Path("there/A0314B00.Q02")));
    runner.world.stopSignal = [] { return 0; };
    Expect({{"get A0314B00 --to @/there", 0, "A0314B00.Q02 continued at byte "}});
    EXPECT_EQ(FilesBelow(runner.Path("there")), std::set<std::string>{"A0314B00.Q02"});
}

TEST_F(FilesTest, DeletesAndRecovers)
{
    const std::string first = "/result/files/0/state";
    const std::string second = "/result/files/1/state";
    Expect({{"rm ONE", 0, "", first, "deleted"},
            {"rm * --dry-run", 0, "nothing was changed", first, "planned"},
            {"rm * --dry-run", 0, "nothing was changed", "/result/files/2/state", "logging"},
            {"rm HELD ONE", 6, "", first, "deleted"},
            {"rm HELD ONE", 6, "", second, "refused"},
            {"rm OLD --deleted", 2, "", first, "not-reached"}, // nobody to ask
            {"rm OLD --deleted --yes", 0, "", first, "deleted"},
            {"recover OLD", 0, "", first, "recovered"},
            {"recover ONE", 1}});
    receiver = "lark"; // deletes for good
    Expect({{"rm A0314A00", 2, "", first, "not-reached"},
            {"rm A0314* --yes", 0, "", second, "deleted"}});
    receiver = "pica"; // by number, and its bin is not emptied
    Expect({{"recover *", 0, "", second, "recovered"}, {"rm * --deleted --yes", 5}});
}

} // namespace
} // namespace fieldcore::cli::test
