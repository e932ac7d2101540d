// The steps that the window of the receiver's files demands, word by word and frame by frame.

#include "core/equipment/FileManager.h"

#include "core/resources/StringTable.h"
#include "tests/core/equipment/FilesFixture.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/HandClock.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::Content;
using testing::FilesTest;
using testing::LarkRecord;
using testing::PicaRecord;
using testing::ReceiverScript;

using Box = testing::BoxKeepingHost::Box;
using Strings = std::vector<std::string>;

Box Warning(const wchar_t* text)
{
    return {text, L"データ選択警告", {BoxButtons::Ok, BoxIcon::Exclamation}};
}

const Box kDone{L"すべてのデータの取得が完了しました。",
                L"データ取得完了",
                {BoxButtons::Ok, BoxIcon::Information}};
const Box kOverwrite{L"保存先のフォルダには既に、選択したデータと同じ名称のファイルが存在します。"
                     L"\n\n既存のファイルはすべて新しいファイルで上書きされますが、続行しますか？",
                     L"ファイルの上書き確認",
                     {BoxButtons::YesNo, BoxIcon::Question}};
const Box kNothing = Warning(L"取得データを選択してください。");
const Box kLogging = Warning(L"選択したデータは、現在ロギング中のため取得できません。");

const Box kForGood{L"選択されたファイルを受信機から完全に削除します。\nよろしいですか？"
                   L"\n\n1 件　合計 1 KB未満\nA\n取得していないデータが 1 件あります。",
                   L"データ削除確認",
                   {BoxButtons::YesNo, BoxIcon::Question}};
const Box kRecycled{L"ゴミ箱内のデータを削除すると、元に復帰できませせん。\n"
                    L"データを完全に削除してもよろしいですか？"
                    L"\n\n1 件　合計 1 KB未満\nC\n取得していないデータが 1 件あります。",
                    L"データ削除確認",
                    {BoxButtons::YesNo, BoxIcon::Question}};
class FileManagerTest : public FilesTest
{
protected:
    /// A Lark with the files A, B and C.
    void StartLark(ReceiverScript script, int mode, std::uint8_t attributesOfB)
    {
        extension = mode == ReceiverFiles::Live ? ".Q01" : ".Q1D";
        script.records = {LarkRecord("A" + extension, 1),
                          LarkRecord("B" + extension, 1, attributesOfB),
                          LarkRecord("C" + extension, 1)};
        Start(script, mode);
    }
    /// All of the rows, one behind the other.
    std::wstring Names() const
    {
        std::wstring names;
        for (int row = 0; row < rows.Count(); ++row) {
            names += rows.At(row).name;
        }
        return names;
    }

    std::string extension;
};

TEST_F(FileManagerTest, AsksAndWarnsBefore)
{
    struct Row
    {
        const char* label;
        const char* version;
        int mode;
        std::vector<int> selected; ///< 0 plain, 1 being logged, 2 plain
        BoxAnswer answer;
        std::vector<Box> boxes;
        const wchar_t* left;
    };
    using enum BoxAnswer;
    const Box none = Warning(L"削除データを選択してください。");
    const Box logged = Warning(L"指定ファイルは、現在ロギング中のため削除を行えません。");
    const Box among = Warning(L"削除選択データ中にロギングデータが含まれて居ます。\n"
                              L"ロギングデータの削除は行えません。");
    const Row table[] = {
        {"nothing selected", "00369", 1, {}, Ok, {none}, L"ABC"},
        {"3.69, live: no question", "00369", 1, {0}, No, {}, L"BC"},
        {"3.7: question", "00370", 1, {0}, Yes, {kForGood}, L"BC"},
        {"3.7: no", "00370", 1, {0}, No, {kForGood}, L"ABC"},
        {"recycle bin: question", "00369", 0, {2}, Yes, {kRecycled}, L"AB"},
        {"recycle bin: no", "00369", 0, {2}, No, {kRecycled}, L"ABC"},
        {"only the logged one", "00369", 1, {1}, Ok, {logged}, L"ABC"},
        {"the logged one among others", "00369", 1, {0, 1, 2}, Ok, {among}, L"B"},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        StartLark({.version = row.version}, row.mode, 1);
        for (const int selected : row.selected) {
            rows.Select(selected);
        }
        host.answers = {row.answer};
        FileManager(*files).FileDelete();
        EXPECT_EQ(host.boxes, row.boxes);
        EXPECT_EQ(Names(), row.left);
        EXPECT_EQ(host.waitCursors, 0);
    }
    Start(ReceiverScript{}, ReceiverFiles::Recycled);
    FileManager(*files).FileRecover();
    EXPECT_EQ(host.boxes, std::vector<Box>{Warning(L"復帰データを選択してください。")});
}

TEST_F(FileManagerTest, SendsALarkTheseCommands)
{
    struct Row
    {
        const char* label;
        int mode;
        bool recover;
        std::string inReceiver; ///< recycled ones of these letters
        std::string refused;    ///< its name, or the question for it
        std::string sent;       ///< for the rows B and A, after the listing; "?" looks for a name
    };
    const Row table[] = {
        {"live", 1, false, "", "", "?B.Q1D B.Q01 ?A.Q1D A.Q01 "},
        {"live, with a recycled one of that name", 1, false, "B", "", "?B.Q1D B.Q1D ?A.Q1D A.Q01 "},
        {"live, the recycled one is refused", 1, false, "B", "B.Q1D", "?B.Q1D B.Q1D ?A.Q1D A.Q01 "},
        {"live, the question for a recycled one is refused", 1, false, "", "list B.Q1D",
         "?B.Q1D B.Q01 ?A.Q1D A.Q01 "},
        {"recycled", 0, false, "AB", "", "?B.Q1D B.Q1D B.Q01 ?A.Q1D A.Q1D A.Q01 "},
        {"recycled, refused", 0, false, "AB", "B.Q1D", "?B.Q1D B.Q1D ?A.Q1D A.Q1D A.Q01 "},
        {"recovered, one refused", 0, true, "B", "B.Q1D", "B.Q1D A.Q1D "},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        ReceiverScript script;
        for (const char letter : row.inReceiver) {
            script.files[std::string(1, letter) + ".Q1D"] = {};
        }
        script.refused = {row.refused};
        StartLark(script, row.mode, 0);
        rows.Select(0);
        rows.Select(1);
        host.answers = {BoxAnswer::Yes};
        if (row.recover) {
            FileManager(*files).FileRecover();
        } else {
            FileManager(*files).FileDelete();
        }
        EXPECT_EQ(Names(), L"C") << "refused ones leave the list, too";
        std::string sent;
        for (const std::string& asked : Sent()) {
            EXPECT_TRUE(asked.starts_with("9C ") || asked.starts_with(row.recover ? "A1 " : "A0 "));
            sent += (asked.starts_with("9C ") ? "?" : "") + asked.substr(3) + ' ';
        }
        EXPECT_EQ(sent, "?*" + extension + ' ' + row.sent);
    }
}

TEST_F(FileManagerTest, SendsAPicaTheseCommands)
{
    const testing::Bytes day{0x07, 0xEA, 3, 14, 1, 30};
    for (const bool recover : {false, true}) {
        SCOPED_TRACE(recover);
        const std::uint8_t deleted = recover ? 0x80 : 0x00;
        const auto logged = static_cast<std::uint8_t>(deleted | 0x20);
        Start({.typeCode = 27,
               .records = {PicaRecord(4, "A", deleted, day), PicaRecord(0x0102, "B", deleted, day),
                           PicaRecord(6, "C", logged, day), PicaRecord(7, "D.E", deleted, day)}},
              recover ? ReceiverFiles::Recycled : ReceiverFiles::Live);
        rows.SelectAll();
        if (recover) {
            FileManager(*files).FileRecover();
        } else {
            FileManager(*files).FileDelete();
        }
        EXPECT_EQ(Names(), L"C");
        // The row of "D.E" is "D", which no record is called.
        EXPECT_EQ(Sent(), recover ? (Strings{"68 255", "68 258", "68 4"})
                                  : (Strings{"60 255", "60 258", "60 4"}));
    }
}

TEST_F(FileManagerTest, DoesNotGuessANameWhenItIsCancelled)
{
    Start({.records = {LarkRecord("A.Q01", 1), LarkRecord("B.Q01", 1)}});
    // A cancelled look at the options is no reason to guess a name and delete it.
    rows.SelectAll();
    isSilent = true;
    cancel = true;
    FileManager(*files).FileDelete();
    EXPECT_EQ(rows.Count(), 2);
    // Nor to list under one.
    cancel = true;
    EXPECT_EQ(files->GetFileData(*this), 0);
    EXPECT_FALSE(files->IsListing());
    EXPECT_EQ(Sent(), Strings{"9C *.Q01"});
}

/// Three files of a Lark, of two days, and a fourth one that is being logged.
class FileFetchingTest : public FilesTest
{
protected:
    FileFetchingTest()
    {
        script.files = {{"A.Q01", Content(1500)}, {"B.Q01", Content(10)}, {"C.Q01", Content(2000)}};
        script.records = {LarkRecord("A.Q01", 1500, 0, 86400), LarkRecord("B.Q01", 10, 0, 86400),
                          LarkRecord("C.Q01", 2000, 0, 2 * 86400), LarkRecord("D.Q01", 5, 1)};
        roots.Use(testing::FoldersBelow(home.Path()));
        around.askDestination = [this](FileDestination& destination) {
            destination.dateFolders = 0;
            return starts;
        };
    }
    void Run(const std::vector<int>& selected)
    {
        Start(script);
        for (const int row : selected) {
            rows.Select(row);
        }
        FileManager(*files, around).FileDownload();
    }
    [[nodiscard]] fs::path Documents() const { return home.Path() / "Documents"; }

    TemporaryFolder home;
    ReceiverScript script;
    FileManager::Surroundings around;
    bool starts = true;
};

TEST_F(FileFetchingTest, AsksAndEndsAsItMust)
{
    struct Row
    {
        const char* label;
        std::vector<int> selected;
        bool starts;
        const char* there; ///< a file that is in the folder before
        BoxAnswer answer;
        std::vector<Box> boxes;
        std::string arrived; ///< first letters
    };
    using enum BoxAnswer;
    const Row table[] = {
        {"nothing selected", {}, true, "", Ok, {kNothing}, ""},
        {"one is being logged", {0, 3}, true, "", Ok, {kLogging}, ""},
        {"left at the destination", {0}, false, "", Ok, {}, ""},
        {"all of them", {0, 1, 2}, true, "", Ok, {kDone}, "ABC"},
        {"asked once, yes", {0, 1, 2}, true, "A.Q01", Yes, {kOverwrite, kDone}, "ABC"},
        {"asked, no", {1, 2}, true, "C.Q01", No, {kOverwrite}, "B"},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        fs::remove_all(Documents());
        if (*row.there != '\0') {
            home.Write(std::string("Documents/") + row.there, "old");
            home.Write("Documents/C.Q01", "old");
        }
        starts = row.starts;
        host.answers = {row.answer};
        Run(row.selected);
        EXPECT_EQ(host.boxes, row.boxes);
        EXPECT_EQ(host.waitCursors, 0);
        for (const auto& [name, content] : script.files) {
            const bool arrived = row.arrived.find(name[0]) != std::string::npos;
            const std::string here = ContentOf(Documents() / name);
            EXPECT_EQ(here == std::string(content.begin(), content.end()), arrived) << name;
            EXPECT_TRUE(arrived || here.empty() || here == "old") << name;
        }
    }
}

TEST_F(FileFetchingTest, FetchesOnlyWhatIsNew)
{
    home.Write("Documents/1980-01-07/A.Q01", std::string(1500, 'x'));
    home.Write("Documents/C.Q01", "of another size");
    around.askDestination = [&](FileDestination& destination) {
        EXPECT_EQ(destination.TotalBytes(), 3510U);
        destination.dateFolders = 0;
        destination.onlyNew = true;
        EXPECT_EQ(destination.TotalBytes(), 2010U) << "the summary counts what stays away";
        return true;
    };
    around.running.watch = [&](const TransferProgress& progress) {
        EXPECT_EQ(progress.totalSize, 2010U);
        EXPECT_EQ(progress.files, 2);
        return true;
    };
    Run({0, 1, 2});
    EXPECT_EQ(ContentOf(Documents() / "1980-01-07" / "A.Q01"), std::string(1500, 'x'));
    EXPECT_EQ(ContentOf(Documents() / "C.Q01").size(), 2000U);
}

TEST(FileRunnerRules, SpaceHasToBeMoreThanOnePointTwoTimes)
{
    const std::tuple<std::uint32_t, std::uint64_t, bool> rows[] = {
        {0, 0, false},
        {1000, 1200, false},
        {1000, 1201, true},
        // 1.2 times 3579139413 is 4294967295.6, and 2^32 free bytes count as 4294967295.
        {3579139412, 4294967295, true},
        {3579139413, 0x100000000, false},
        {4294967295, 0x200000000, true},
        {4294967295, 0x133333332, false},
    };
    for (const auto& [size, free, enough] : rows) {
        SCOPED_TRACE(free);
        EXPECT_EQ(FileRunner::IsEnough(size, free), enough);
    }
}

TEST(FileDestinationRules, CardFirstElseDocuments)
{
    const TemporaryFolder home;
    FileDestination without(96000, 4, 9600, testing::FoldersBelow(home.Path().string()));
    EXPECT_FALSE(without.HasCard());
    EXPECT_EQ(without.kind, FileDestination::MainMemory);
    EXPECT_EQ(without.dateFolders, 1);
    EXPECT_EQ(without.Folder(), home.Path() / "Documents");
    EXPECT_TRUE(without.FreeBytes()) << "the folder is made later";
    EXPECT_EQ(without.Summary(), L"合計データサイズ： 約 94 KB\n取得時間目安： 10 秒未満")
        << "Bluetooth";
    without.kind = FileDestination::Card;
    EXPECT_FALSE(without.FreeBytes());
    EXPECT_EQ(FileDestination(96000, 3, 9600, testing::FoldersBelow("/nowhere")).Summary(),
              L"合計データサイズ： 約 94 KB\n取得時間目安： 約 2 分");
}

TEST(TransferMeterRules, RateAndTimeLeft)
{
    using namespace std::chrono_literals;
    testing::HandClock clock;
    TransferMeter meter(clock, 2, 30000);
    meter.StartFile(L"A", 10000);
    meter.Advance(100);
    EXPECT_FALSE(meter.Get().timeLeft) << "nothing is known yet";
    for (std::uint64_t bytes = 1000; bytes <= 10000; bytes += 1000) {
        clock.Advance(500ms);
        meter.Advance(bytes);
    }
    EXPECT_NEAR(meter.Get().bytesPerSecond, 2000.0, 1e-6);
    EXPECT_EQ(meter.Get().timeLeft, 10s);
    clock.Advance(1h); // a question stood open
    meter.StartFile(L"B", 20000);
    clock.Advance(500ms);
    meter.Advance(1000);
    EXPECT_EQ(meter.Get().file, 2);
    EXPECT_EQ(meter.Get().totalBytes, 11000U);
    EXPECT_NEAR(meter.Get().bytesPerSecond, 2000.0, 1e-6);
    clock.Advance(3s); // one smoothing time at 1000 bytes/s: 1/e of the difference is left
    meter.Advance(4000);
    EXPECT_NEAR(meter.Get().bytesPerSecond, 1000.0 + 1000.0 / 2.718281828, 0.1);
    meter.Advance(50000); // more than was announced
    EXPECT_EQ(meter.Get().timeLeft, 0s);

    TransferMeter brief(clock, 10, 1000);
    for (int file = 0; file < 4; ++file) { // each is over before a rate can be measured
        clock.Advance(1h);
        brief.StartFile(L"S", 100);
        clock.Advance(100ms);
        brief.Advance(100);
    }
    EXPECT_NEAR(brief.Get().bytesPerSecond, 1000.0, 1e-6);
    EXPECT_EQ(brief.Get().timeLeft, 1s);
}

} // namespace
} // namespace fieldcore
