// What can go wrong with the receiver's files, and what the user gets to know of it.

#include "core/equipment/FileManager.h"
#include "core/resources/StringTable.h"
#include "simulator/Scenario.h"
#include "tests/core/equipment/FilesFixture.h"
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

/// The file manager without a window, on a simulated receiver.
struct Engine : MessageTarget
{
    explicit Engine(const std::string& scenario) : receiver(scenario)
    {
        receiver.Open();
        files.SetRows(&rows);
        EXPECT_EQ(files.OpenConnected(), 1) << receiver.command.LastError();
        files.SetFetchedFolders({home.Path() / "Documents"});
        files.GetFileData(*this);
        receiver.roots.Use(testing::FoldersBelow(home.Path()));
        around.askDestination = [this](FileDestination& destination) {
            destination.onlyNew = onlyNew;
            return true;
        };
        around.running.freeBytes = [this](const auto&) { return free; };
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

    testing::VirtualReceiver receiver;
    TemporaryFolder home;
    std::optional<std::uint64_t> free = std::uint64_t{1} << 40U;
    std::optional<testing::FileSizeLimit> limit;
    testing::SelectableRows rows;
    ReceiverFiles files{receiver.command};
    FileManager::Surroundings around;
    bool onlyNew = false;
};

enum class Action
{
    List,
    Fetch,
    Delete,
};

/// Something that goes wrong with the receiver's files, and what the user gets to know of it.
struct FileFault
{
    const char* label;
    Action action;
    std::string files;                   ///< lines of the scenario
    std::string rule;                    ///< a fault that begins after the listing
    std::wstring cause;                  ///< in what is said; empty: nothing is said
    int left = 0;                        ///< rows afterwards
    std::vector<FileOutcome> outcomes{}; ///< of all rows, which are selected, in their order
    void (*spoil)(Engine&) = [](Engine&) {};
};

std::vector<FileFault> FileFaults()
{
    using enum Action;
    using enum FileOutcome;
    const std::string three = "file A 3500 2026-03-14 01:30\nfile B 40000 2026-03-14 02:30\n"
                              "file C 10 2026-03-15 00:00\n";
    const std::string twenty = "files 20 10 20\n";
    const std::wstring timedOut = CauseText(CommandFault::TimedOut);
    const std::wstring damaged = CauseText(CommandFault::BadChecksum);
    const std::wstring refused = CauseText(CommandFault::Refused);
    const std::wstring pulled = CauseText(CommandFault::LinkLost);
    const auto part = [](const std::wstring& cause) {
        return FormatText(text::kFilesPart, cause.c_str());
    };
    const auto are = [](auto... outcomes) { return std::vector<FileOutcome>{outcomes...}; };
    const auto first = are(RequestFailed, NotReached, NotReached);
    const auto lost = are(NotReached, RequestFailed, RequestFailed);
    const auto smallCard = [](Engine& engine) { engine.limit.emplace(20000); };
    const auto fullCard = [](Engine& engine) { engine.free = 48000; }; // 1.2 times 40000
    const auto silentCard = [](Engine& engine) { engine.free.reset(); };
    const auto noFolder = [](Engine& engine) { engine.home.Write("Documents/2026-03-14", ""); };
    std::vector<FileFault> faults{
        {"600 files", List, "files 600 10 20\n", "", FormatText(text::kFilesMore, 512), 512},
        {"pages backwards", List, twenty + "listing backwards\n", "", L"", 20},
        {"a page never comes", List, twenty + "fault drop of 9D skip 1 count 1\n", "",
         part(timedOut), 12},
        {"the listing is refused", List, twenty + "fault nak on 9C\n", "", refused, 0},
        {"cable out at the second page", List, twenty + "fault hang-up of 9D skip 1\n", "",
         part(pulled), 8},

        {"a block never comes", Fetch, three, "drop of 95 skip 1", timedOut, 3, first},
        {"every block is damaged", Fetch, three, "corrupt of 95", damaged, 3, first},
        {"the fetch is refused", Fetch, three, "nak on 96", refused, 3, first},
        {"it ends before its size", Fetch, "file A 1000 2026-03-14 01:30 announces 5000\n", "",
         Text(text::kFileCauseSize), 1, are(WrongSize)},
        {"a name that is a device's", Fetch, "file CON 10 2026-03-14 01:30\n", "",
         Text(text::kFileNameRefused), 1, are(NameRefused)},
        {"the card is full", Fetch, three, "", Text(text::kFileCauseFull), 3,
         are(Done, DiskFull, NotReached), smallCard},
        {"too little space", Fetch, three, "", Text(text::kFileCauseSpace), 3,
         are(Done, NoSpace, NotReached), fullCard},
        {"the card does not say", Fetch, three, "", Text(text::kFileCauseFolder), 3,
         are(NoSpace, NotReached, NotReached), silentCard},
        {"the folder cannot be made", Fetch, three, "", Text(text::kFileCauseFolder), 3,
         are(FolderRefused, NotReached, NotReached), noFolder},

        {"it deletes, and its answers are lost", Delete, three, "drop on A0", timedOut, 1, lost},
        {"silent at the deletion", Delete, three, "drop on any", timedOut, 3, lost},
        {"a deletion is refused", Delete,
         "file A 10 2026-03-14 01:30\nfile B 10 2026-03-14 02:30 locked\n", "", refused, 0,
         are(Done, RequestFailed)},
        {"cable out at the deletion", Delete, three, "hang-up on A0", pulled, 3,
         are(NotReached, NotReached, RequestFailed)},
    };
    for (const char* const cableOut : {"hang-up of 95", "hang-up 500 of 95 skip 3"}) {
        faults.push_back({cableOut, Fetch, three, cableOut, pulled, 3, first});
    }
    return faults;
}

TEST(FileFaultsTest, TheEngineSaysWhy)
{
    for (const FileFault& fault : FileFaults()) {
        SCOPED_TRACE(fault.label);
        Engine engine("model 3017\nfirmware 3.80\noptions l2 rtk otf nmea glonass\nfix fixed\n" +
                      fault.files); // it deletes for good
        fault.spoil(engine);
        if (!fault.rule.empty()) {
            engine.receiver.AddFault(fault.rule);
        }
        engine.rows.SelectAll();
        FileManager manager(engine.files, engine.around);
        const auto isOf = [&](FileOutcome outcome) {
            return std::count(fault.outcomes.begin(), fault.outcomes.end(), outcome) > 0;
        };
        std::wstring words = CauseText(engine.files.ListFault());
        if (fault.action == Action::Fetch) {
            manager.FileDownload();
            ASSERT_FALSE(engine.receiver.host.boxes.empty());
            words = engine.receiver.host.boxes.back().text;
            EXPECT_TRUE(words.starts_with(
                Text(isOf(FileOutcome::NoSpace) ? text::kNoSpace : text::kDownloadFailed)));
        } else if (fault.action == Action::Delete) {
            manager.FileDelete();
            if (!manager.Unanswered().empty()) {
                engine.files.ListAgain(engine, manager.Unanswered());
            }
            words = manager.Notice() + CauseText(engine.files.ListFault());
        } else {
            const bool isPart = engine.rows.Count() > 0 && !words.empty();
            words = isPart ? FormatText(text::kFilesPart, words.c_str()) : words;
            words +=
                engine.files.HasMore() ? FormatText(text::kFilesMore, engine.rows.Count()) : L"";
        }
        EXPECT_EQ(words.empty(), fault.cause.empty()) << ::testing::PrintToString(words);
        EXPECT_NE(words.find(fault.cause), std::wstring::npos) << ::testing::PrintToString(words);
        std::vector<FileOutcome> outcomes(manager.Plan().files.size());
        for (const PlannedFile& file : manager.Plan().files) {
            outcomes.at(file.index) = file.outcome;
        }
        EXPECT_EQ(outcomes, fault.outcomes);
        ASSERT_EQ(engine.rows.Count(), fault.left);
        for (int row = 0; row < fault.left && fault.action == Action::Delete; ++row) {
            EXPECT_EQ(engine.rows.At(row).mark == FileRow::Mark::Unanswered,
                      outcomes.at(static_cast<std::size_t>(row)) == FileOutcome::RequestFailed)
                << row;
        }
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
