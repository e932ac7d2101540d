// What can go wrong with the receiver's files, and what the user gets to know of it.

#include "core/equipment/FileManager.h"
#include "core/resources/StringTable.h"
#include "simulator/Scenario.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::FileSizeLimit;
using testing::VirtualReceiver;

/// Something that goes wrong with the receiver's files, and what the user gets to know of it.
struct FileFault
{
    enum Action
    {
        List,
        Fetch,
        Delete,
    };

    std::string label;
    Action action;
    std::string files;    ///< lines of the scenario
    std::string rule{};   ///< a fault that begins after the listing
    std::wstring cause{}; ///< behind the required words, or on the page; empty: nothing is said
    int left = 3;         ///< rows afterwards
    std::vector<FileOutcome> outcomes{}; ///< of all rows, which are selected, in their order
    int required = 0;                    ///< the text that the last box begins with; 0: none
    std::vector<int> marked{};           ///< rows that are marked as unanswered
    std::optional<std::uint64_t> free = std::uint64_t{1} << 40U;
    std::uintmax_t room = 0;    ///< bytes that a file can get; 0: no limit
    bool isFolderTaken = false; ///< a file lies where the folder of the day should be
};

/// A receiver that deletes for good.
std::string FaultyReceiver(const FileFault& fault)
{
    return "model 3017\nfirmware 3.80\noptions l2 rtk otf nmea glonass\nfix fixed\n" + fault.files;
}

std::vector<FileFault> FileFaults()
{
    using enum FileOutcome;
    const std::string three = "file A 3500 2026-03-14 01:30\nfile B 40000 2026-03-14 02:30\n"
                              "file C 10 2026-03-15 00:00\n";
    const std::string twenty = "files 20 10 20\n";
    const auto cause = [](CommandFault fault) { return std::wstring(CauseText(fault)); };
    const auto part = [&](CommandFault fault) {
        return FormatText(text::kFilesPart, CauseText(fault));
    };
    const std::vector<FileOutcome> first{RequestFailed, NotReached, NotReached};
    const auto fetched = [&](const char* label, const char* rule, CommandFault fault) {
        return FileFault{label, FileFault::Fetch,     three, rule, cause(fault), 3,
                         first, text::kDownloadFailed};
    };

    const auto left = [&](const char* label, const std::string& files, std::wstring why,
                          std::vector<FileOutcome> outcomes, int required = text::kDownloadFailed) {
        const int rows = static_cast<int>(outcomes.size());
        return FileFault{label, FileFault::Fetch, files, "", why, rows, outcomes, required};
    };
    const auto kept = [&](const char* label, const char* rule, CommandFault fault, int rows,
                          std::vector<FileOutcome> outcomes, std::vector<int> marked) {
        return FileFault{label, FileFault::Delete, three, rule,  cause(fault),
                         rows,  outcomes,          0,     marked};
    };
    const auto list = [](const char* label, const std::string& files, std::wstring why, int rows) {
        return FileFault{label, FileFault::List, files, "", why, rows};
    };
    const std::vector<FileOutcome> lost{NotReached, RequestFailed, RequestFailed};

    std::vector<FileFault> table{
        list("600 files", "files 600 10 20\n", FormatText(text::kFilesMore, 512), 512),
        list("pages backwards", twenty + "listing backwards\n", L"", 20),
        list("a page never comes", twenty + "fault drop of 9D skip 1 count 1\n",
             part(CommandFault::TimedOut), 12),
        list("a page arrives damaged", twenty + "fault corrupt of 9D skip 1 count 1\n",
             part(CommandFault::BadChecksum), 12),
        list("the listing is refused", twenty + "fault nak on 9C\n", cause(CommandFault::Refused),
             0),
        list("cable out at the second page", twenty + "fault hang-up of 9D skip 1\n",
             part(CommandFault::LinkLost), 8),

        fetched("a block never comes", "drop of 95 skip 1", CommandFault::TimedOut),
        fetched("every block is damaged", "corrupt of 95", CommandFault::BadChecksum),
        fetched("the fetch is refused", "nak on 96", CommandFault::Refused),
        left("it ends before its size", "file A 1000 2026-03-14 01:30 announces 5000\n",
             Text(text::kFileCauseSize), {WrongSize}),
        left("a name that is a device's", "file CON 10 2026-03-14 01:30\n",
             Text(text::kFileNameRefused), {NameRefused}),
        left("the card is full", three, Text(text::kFileCauseFull), {Done, DiskFull, NotReached}),
        left("too little space", three, Text(text::kFileCauseSpace), {Done, NoSpace, NotReached},
             text::kNoSpace),
        left("the card does not say", three, Text(text::kFileCauseFolder),
             {NoSpace, NotReached, NotReached}, text::kNoSpace),
        left("the folder cannot be made", three, Text(text::kFileCauseFolder),
             {FolderRefused, NotReached, NotReached}),

        kept("it deletes, and its answers are lost", "drop on A0", CommandFault::TimedOut, 1, lost,
             {}),
        kept("silent at the deletion", "drop on any", CommandFault::TimedOut, 3, lost, {1, 2}),
        {"a deletion is refused",
         FileFault::Delete,
         "file A 10 2026-03-14 01:30\nfile B 10 2026-03-14 02:30 locked\n",
         "",
         cause(CommandFault::Refused),
         0,
         {Done, RequestFailed}},
        kept("cable out at the deletion", "hang-up on A0", CommandFault::LinkLost, 3,
             {NotReached, NotReached, RequestFailed}, {2}),
    };
    for (FileFault& fault : table) {
        fault.room = fault.label == "the card is full" ? 20000 : 0;
        fault.isFolderTaken = fault.label == "the folder cannot be made";
        if (fault.label == "too little space") {
            fault.free = 48000; // 1.2 times 40000
        } else if (fault.label == "the card does not say") {
            fault.free.reset();
        }
    }
    for (int block = 0; block < 4; ++block) { // of the first file
        for (const char* const bytes : {"", " 500"}) {
            const std::string rule =
                std::string("hang-up") + bytes + " of 95 skip " + std::to_string(block);
            FileFault fault = fetched("", rule.c_str(), CommandFault::LinkLost);
            fault.label = "cable out: " + rule;
            table.push_back(fault);
        }
    }
    return table;
}

/// The file manager without a window, on a simulated receiver.
struct Engine : private MessageTarget
{
    explicit Engine(const std::string& scenario) : receiver(scenario)
    {
        receiver.Open();
        files.SetRows(&rows);
        EXPECT_EQ(files.OpenConnected(), 1) << receiver.command.LastError();
        files.SetFetchedFolders({home.Path() / "Documents"});
        files.GetFileData(*this);
        around.folders = testing::FoldersBelow(home.Path().string());
        around.askDestination = [this](FileDestination& destination) {
            destination.onlyNew = onlyNew;
            return true;
        };
    }
    void Post(unsigned /*message*/, std::intptr_t wParam, std::intptr_t lParam) override
    {
        files.OnRecvFileList(wParam, lParam);
    }
    /// How many frames are sent.
    template <typename Work>
    int Frames(Work work)
    {
        int count = 0;
        receiver.command.SetLineObserver(
            [&](Direction direction, LineUnit unit, std::span<const std::uint8_t> /*bytes*/) {
                count += direction == Direction::Sent && unit == LineUnit::Frame ? 1 : 0;
            });
        work();
        receiver.command.SetLineObserver({});
        return count;
    }
    void ListAgain(const FileManager& manager)
    {
        if (!manager.Unanswered().empty()) {
            files.ListAgain(*this, manager.Unanswered());
        }
    }

    VirtualReceiver receiver;
    TemporaryFolder home;
    FileRowList rows;
    ReceiverFiles files{receiver.command};
    FileManager::Surroundings around;
    bool onlyNew = false;
};

TEST(FileFaultsTest, TheEngineSaysWhy)
{
    for (const FileFault& fault : FileFaults()) {
        SCOPED_TRACE(fault.label);
        Engine engine(FaultyReceiver(fault));
        engine.around.running.freeBytes = [&](const auto&) { return fault.free; };
        if (fault.isFolderTaken) {
            engine.home.Write("Documents/2026-03-14", "");
        }
        if (!fault.rule.empty()) {
            engine.receiver.AddFault(fault.rule);
        }
        engine.rows.SelectAll();
        FileManager manager(engine.files, engine.around);
        if (fault.action == FileFault::Fetch) {
            std::optional<FileSizeLimit> limit;
            if (fault.room > 0) {
                limit.emplace(fault.room);
            }
            manager.FileDownload();
        } else if (fault.action == FileFault::Delete) {
            manager.FileDelete();
            engine.ListAgain(manager);
        }
        std::wstring words = manager.Notice() + CauseText(engine.files.ListFault());
        std::wstring box;
        if (fault.action == FileFault::Fetch && !engine.receiver.host.boxes.empty()) {
            words = box = engine.receiver.host.boxes.back().text;
        } else if (fault.action == FileFault::List) {
            const bool isPart = engine.rows.Count() > 0 && !words.empty();
            words = isPart ? FormatText(text::kFilesPart, words.c_str()) : words;
            words +=
                engine.files.HasMore() ? FormatText(text::kFilesMore, engine.rows.Count()) : L"";
        }
        EXPECT_EQ(engine.rows.Count(), fault.left);
        for (int row = 0; row < engine.rows.Count() && fault.action == FileFault::Delete; ++row) {
            const bool isMarked =
                std::find(fault.marked.begin(), fault.marked.end(), row) != fault.marked.end();
            EXPECT_EQ(engine.rows.At(row).mark == FileRow::Mark::Unanswered, isMarked) << row;
        }
        EXPECT_EQ(words.empty(), fault.cause.empty()) << ::testing::PrintToString(words);
        EXPECT_NE(words.find(fault.cause), std::wstring::npos) << ::testing::PrintToString(words);
        if (fault.action == FileFault::Fetch) {
            EXPECT_TRUE(box.starts_with(Text(fault.required))) << ::testing::PrintToString(box);
        }
        std::vector<FileOutcome> outcomes(manager.Plan().files.size());
        for (const PlannedFile& file : manager.Plan().files) {
            outcomes.at(file.index) = file.outcome;
        }
        EXPECT_EQ(outcomes, fault.outcomes);
    }
}

/// Six files: for each of them the options are read once before the destination is asked for and
/// once before it is fetched; three times for a deletion, with a look for a deleted one of its
/// name.
TEST(FileFaultsTest, SendsNoMoreThanTheRequiredFrames)
{
    constexpr int kOptions = 3; // frames to read them
    constexpr int kFiles = 6;
    Engine engine(
        "model 3017\nfirmware 4.43\noptions l2 rtk nmea glonass l5 file-naming\nfix fixed\n"
        "files 6 10 20\n");
    ASSERT_EQ(engine.rows.Count(), kFiles);
    engine.onlyNew = true;
    engine.rows.SelectAll();
    EXPECT_EQ(engine.Frames([&] { FileManager(engine.files, engine.around).FileDownload(); }),
              kFiles * (2 * kOptions + 1));
    EXPECT_EQ(engine.Frames([&] { FileManager(engine.files, engine.around).FileDownload(); }),
              kFiles * kOptions)
        << "nothing is new";
    EXPECT_EQ(engine.Frames([&] { FileManager(engine.files, engine.around).FileDelete(); }),
              kFiles * (3 * kOptions + 2));
    EXPECT_EQ(engine.rows.Count(), 0);
    FilePlan exact{FileAction::Recover};
    engine.files.AddTo(exact, 0);
    EXPECT_EQ(engine.Frames([&] { FileRunner(engine.files, exact, {}).Run(); }), 1)
        << "who means exactly one file asks nothing else";
}

} // namespace
} // namespace fieldcore
