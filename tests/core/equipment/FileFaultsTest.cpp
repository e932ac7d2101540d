// The table of faults, against the engine alone.

#include "tests/core/equipment/FileFaults.h"

#include "core/equipment/FileManager.h"
#include "simulator/Scenario.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/support/VirtualReceiver.h"

namespace fieldcore {
namespace {

using testing::FileFault;
using testing::FileSizeLimit;
using testing::VirtualReceiver;

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
    for (const FileFault& fault : testing::FileFaults()) {
        SCOPED_TRACE(fault.label);
        Engine engine(testing::FaultyReceiver(fault));
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
        testing::ExpectSeen(fault, engine.rows, words, box);
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
