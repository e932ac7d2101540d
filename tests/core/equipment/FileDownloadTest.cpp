#include "core/equipment/FileDownload.h"

#include "tests/core/equipment/FilesFixture.h"
#include "tests/core/link/HostileNames.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::Content;
using testing::FilesTest;
using testing::LarkRecord;
using testing::ReceiverScript;
using testing::RecordingHost;
using End = FileDownload::End;
using Box = RecordingHost::Box;

std::string Read(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string Text(const testing::Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

const Box kDone{L"すべてのデータの取得が完了しました。", L"データ取得完了", BoxButtons::Ok,
                BoxIcon::Information};
const Box kFailed{L"データの取得に失敗しました。", L"データ取得エラー", BoxButtons::Ok,
                  BoxIcon::Stop};
const Box kNoSpace{L"保存先メモリの空き領域が不足しているため、データの取得を中止します。",
                   L"メモリ残量エラー", BoxButtons::Ok, BoxIcon::Stop};
const Box kOverwrite{L"保存先のフォルダには既に、選択したデータと同じ名称のファイルが存在します。"
                     L"\n\n既存のファイルはすべて新しいファイルで上書きされますが、続行しますか？",
                     L"ファイルの上書き確認", BoxButtons::YesNo, BoxIcon::Question};
const Box kNothing{L"取得データを選択してください。", L"データ選択警告", BoxButtons::Ok,
                   BoxIcon::Exclamation};
const Box kLogging{L"選択したデータは、現在ロギング中のため取得できません。", L"データ選択警告",
                   BoxButtons::Ok, BoxIcon::Exclamation};

/// Three files of a Lark, of two days, and a fourth one that is being logged.
class FileDownloadTest : public FilesTest
{
protected:
    FileDownloadTest()
    {
        script.files = {{"A.Q01", Content(1500)}, {"B.Q01", Content(10)}, {"C.Q01", Content(2000)}};
        script.records = {LarkRecord("A.Q01", 1500, 0, 86400), LarkRecord("B.Q01", 10, 0, 86400),
                          LarkRecord("C.Q01", 2000, 0, 2 * 86400), LarkRecord("D.Q01", 5, 1)};
        surroundings.folders = testing::FoldersBelow(home.Path().string());
        surroundings.askDestination = [this](FileDestination& destination) {
            destination.dateFolders = dateFolders;
            destination.onlyNew = onlyNew;
            return starts;
        };
    }
    End Run(const std::vector<int>& selected)
    {
        Start(script);
        for (const int row : selected) {
            rows.Select(row, true);
        }
        return FileDownload(*files, surroundings).Run();
    }
    [[nodiscard]] fs::path Documents() const { return home.Path() / "Documents"; }

    TemporaryFolder home;
    ReceiverScript script;
    FileDownload::Surroundings surroundings;
    int dateFolders = 0;
    bool onlyNew = false;
    bool starts = true;
};

TEST_F(FileDownloadTest, EndsAsItMust)
{
    struct Row
    {
        const char* label;
        std::vector<int> selected;
        std::function<void()> prepare;
        BoxAnswer answer;
        End end;
        std::vector<Box> boxes;
        std::vector<std::string> arrived;
    };
    const auto nothing = [] {};
    const auto existing = [&] {
        home.Write("Documents/A.Q01", "old");
        home.Write("Documents/C.Q01", "old");
    };
    const Row table[] = {
        {"nothing selected", {}, nothing, BoxAnswer::Ok, End::NotStarted, {kNothing}, {}},
        {"one is being logged", {0, 3}, nothing, BoxAnswer::Ok, End::NotStarted, {kLogging}, {}},
        {"left at the destination",
         {0},
         [&] { starts = false; },
         BoxAnswer::Ok,
         End::NotStarted,
         {},
         {}},
        {"all of them",
         {0, 1, 2},
         nothing,
         BoxAnswer::Ok,
         End::Done,
         {kDone},
         {"A.Q01", "B.Q01", "C.Q01"}},
        {"asked once, yes",
         {0, 1, 2},
         existing,
         BoxAnswer::Yes,
         End::Done,
         {kOverwrite, kDone},
         {"A.Q01", "B.Q01", "C.Q01"}},
        {"asked, no", {1, 2}, existing, BoxAnswer::No, End::Failed, {kOverwrite}, {"B.Q01"}},
        {"no space for the third",
         {0, 1, 2},
         [&] { surroundings.freeBytes = [](const fs::path&) { return std::optional(2400ULL); }; },
         BoxAnswer::Ok,
         End::Failed,
         {kNoSpace},
         {"A.Q01", "B.Q01"}},
        {"the system does not say",
         {0},
         [&] {
             surroundings.freeBytes = [](const fs::path&) {
                 return std::optional<std::uint64_t>();
             };
         },
         BoxAnswer::Ok,
         End::Failed,
         {kNoSpace},
         {}},
        {"the second has another size",
         {0, 1, 2},
         [&] { script.files["B.Q01"] = Content(9); },
         BoxAnswer::Ok,
         End::Failed,
         {kFailed},
         {"A.Q01"}},
        {"the second is gone",
         {0, 1, 2},
         [&] { script.files.erase("B.Q01"); },
         BoxAnswer::Ok,
         End::Failed,
         {kFailed},
         {"A.Q01"}},
    };
    const ReceiverScript script0 = script;
    const FileDownload::Surroundings surroundings0 = surroundings;
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        fs::remove_all(Documents());
        script = script0;
        surroundings = surroundings0;
        starts = true;
        row.prepare();
        host.answer = row.answer;
        EXPECT_EQ(Run(row.selected), row.end);
        EXPECT_EQ(host.boxes, row.boxes);
        EXPECT_EQ(host.waitCursors, 0);
        for (const char* name : {"A.Q01", "B.Q01", "C.Q01"}) {
            const bool arrived =
                std::find(row.arrived.begin(), row.arrived.end(), name) != row.arrived.end();
            const std::string content = Read(Documents() / name);
            EXPECT_EQ(content == Text(script0.files.at(name)), arrived) << name;
            EXPECT_TRUE(arrived || content.empty() || content == "old") << name;
        }
    }
}

TEST_F(FileDownloadTest, PutsEachDayIntoItsFolder)
{
    dateFolders = 1;
    EXPECT_EQ(Run({0, 2}), End::Done);
    EXPECT_EQ(Read(Documents() / "1980-01-07" / "A.Q01"), Text(script.files.at("A.Q01")));
    EXPECT_EQ(Read(Documents() / "1980-01-08" / "C.Q01"), Text(script.files.at("C.Q01")));
    EXPECT_TRUE(rows.At(0).fetched);
    EXPECT_FALSE(rows.At(1).fetched);
}

TEST_F(FileDownloadTest, FetchesOnlyWhatIsNew)
{
    onlyNew = true;
    home.Write("Documents/1980-01-07/A.Q01", std::string(1500, 'x'));
    home.Write("Documents/C.Q01", "of another size");
    std::uint64_t total = 0;
    surroundings.watch = [&](const TransferProgress& progress) {
        total = progress.totalSize;
        EXPECT_EQ(progress.files, 2);
        return true;
    };
    host.answer = BoxAnswer::Yes;
    EXPECT_EQ(Run({0, 1, 2}), End::Done);
    EXPECT_EQ(total, 2010U);
    EXPECT_EQ(Read(Documents() / "1980-01-07" / "A.Q01"), std::string(1500, 'x'));
    EXPECT_EQ(Read(Documents() / "C.Q01"), Text(script.files.at("C.Q01")));
    EXPECT_EQ(Run({1, 2}), End::NotStarted) << "nothing is left";
    EXPECT_EQ(host.boxes.size(), 1U);
}

TEST_F(FileDownloadTest, CancellingKeepsWhatWasFinished)
{
    surroundings.watch = [](const TransferProgress& progress) {
        return progress.file < 3 || progress.fileBytes < 1000;
    };
    EXPECT_EQ(Run({0, 1, 2}), End::Cancelled);
    ASSERT_EQ(host.boxes.size(), 1U);
    EXPECT_EQ(host.boxes[0].caption, L"データ取得中止");
    EXPECT_EQ(Read(Documents() / "A.Q01"), Text(script.files.at("A.Q01")));
    EXPECT_EQ(Read(Documents() / "B.Q01"), Text(script.files.at("B.Q01")));
    EXPECT_FALSE(fs::exists(Documents() / "C.Q01"));
    EXPECT_EQ(fs::file_size(Documents() / "C.Q01.part"), 1000U);
}

TEST_F(FileDownloadTest, HostileNamesOfBothFamiliesStayOutside)
{
    std::vector<std::string> names;
    for (const std::wstring_view name : testing::kHostileNames) {
        std::string bytes; // one that the line can carry
        for (const wchar_t c : name.substr(0, 14)) {
            bytes += static_cast<char>(c);
        }
        names.push_back(bytes);
        names.push_back(bytes.substr(0, 10) + ".Q01");
    }
    const fs::path outside = home.Write("A.Q01", "mine");
    for (const std::string& name : names) {
        SCOPED_TRACE(::testing::PrintToString(name));
        script.records = {LarkRecord(name, 10)};
        for (const auto& record : {name, name + ".Q01", std::string(".Q01")}) {
            script.files[record.substr(0, record.find_last_not_of(' ') + 1)] = Content(10);
        }
        Run({0});
        for (const auto& entry : fs::recursive_directory_iterator(home.Path())) {
            const bool inside = entry.path().parent_path() == Documents() ||
                                entry.path() == Documents() || entry.path() == outside;
            EXPECT_TRUE(inside) << entry.path();
        }
        EXPECT_EQ(Read(outside), "mine");
        script.typeCode = 27;
        script.records = {testing::PicaRecord(1, name.substr(0, 8), 0, {7, 0xEA, 1, 1, 0, 0})};
        Start(script);
        files->SetFetchedFolders({Documents()});
        files->GetFileData(*this);
        ASSERT_EQ(rows.Count(), 1);
        EXPECT_LE(rows.Name(0).size(), 8U);
        EXPECT_EQ(rows.Name(0).find(L'.'), std::wstring::npos);
        EXPECT_FALSE(rows.At(0).fetched);
        script.typeCode = 31;
    }
}

TEST(FileDownloadRules, SpaceHasToBeMoreThanOnePointTwoTimes)
{
    struct Row
    {
        std::uint32_t size;
        std::uint64_t free;
        bool enough;
    };
    const Row rows[] = {
        {0, 0, false},
        {0, 1, true},
        {1000, 1200, false},
        {1000, 1201, true},
        // 1.2 times 3579139413 is 4294967295.6, and 2^32 free bytes count as 4294967295.
        {3579139412, 4294967295, true},
        {3579139413, 0x100000000, false},
        {4294967295, 0x200000000, true},
        {4294967295, 0x133333332, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.free);
        EXPECT_EQ(FileDownload::IsEnough(row.size, row.free), row.enough);
    }
}

TEST(FileDestinationRules, CardFirstElseDocuments)
{
    const TemporaryFolder home;
    FileDestination without(1536, 4, 9600, testing::FoldersBelow(home.Path().string()));
    EXPECT_FALSE(without.HasCard());
    EXPECT_EQ(without.kind, FileDestination::MainMemory);
    EXPECT_EQ(without.dateFolders, 1);
    EXPECT_EQ(without.Folder(), home.Path() / "Documents");
    EXPECT_TRUE(without.FreeBytes()) << "the folder is made later";
    EXPECT_EQ(without.Summary(), L"合計データサイズ： 約 2 KB\n取得時間目安： 10 秒未満");
    EXPECT_EQ(without.BitRate(), 262144U) << "Bluetooth";
    without.kind = FileDestination::Card;
    EXPECT_FALSE(without.FreeBytes());
    EXPECT_EQ(FileDestination(1, 3, 9600, testing::FoldersBelow("/nowhere")).BitRate(), 9600U);
}

/// Time as the test says.
class StandingClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override { return now; }
    [[nodiscard]] UtcTime Utc() const override { return {}; }
    [[nodiscard]] bool SetUtc(UtcTime) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }
    Duration now{};
};

TEST(TransferMeterRules, RateAndTimeLeft)
{
    using namespace std::chrono_literals;
    StandingClock clock;
    TransferMeter meter(clock, 2, 30000);
    meter.StartFile(L"A", 10000);
    meter.Advance(100);
    EXPECT_FALSE(meter.Get().timeLeft) << "nothing is known yet";
    for (std::uint64_t bytes = 1000; bytes <= 10000; bytes += 1000) {
        clock.now += 500ms;
        meter.Advance(bytes);
    }
    EXPECT_NEAR(meter.Get().bytesPerSecond, 2000.0, 1e-6);
    EXPECT_EQ(meter.Get().timeLeft, 10s);
    clock.now += 1h; // a question stood open
    meter.StartFile(L"B", 20000);
    clock.now += 500ms;
    meter.Advance(1000);
    EXPECT_EQ(meter.Get().file, 2);
    EXPECT_EQ(meter.Get().totalBytes, 11000U);
    EXPECT_NEAR(meter.Get().bytesPerSecond, 2000.0, 1e-6);
    clock.now += 3s; // one smoothing time at 1000 bytes/s: 1/e of the difference is left
    meter.Advance(4000);
    EXPECT_NEAR(meter.Get().bytesPerSecond, 1000.0 + 1000.0 / 2.718281828, 0.1);
    meter.StartFile(L"C", 90000);
    const double before = meter.Get().bytesPerSecond;
    clock.now += 1s;
    meter.Advance(80000, {80000, AnewReason::None}); // nothing came in this second
    EXPECT_LT(meter.Get().bytesPerSecond, before) << "what was there counts for the rate";
    meter.Advance(90000); // more than was announced
    EXPECT_EQ(meter.Get().timeLeft, 0s);

    TransferMeter brief(clock, 10, 1000);
    for (int file = 0; file < 4; ++file) { // each is over before a rate can be measured
        clock.now += 1h;
        brief.StartFile(L"S", 100);
        clock.now += 100ms;
        brief.Advance(100);
    }
    EXPECT_NEAR(brief.Get().bytesPerSecond, 1000.0, 1e-6);
    EXPECT_EQ(brief.Get().timeLeft, 1s);
}

} // namespace
} // namespace fieldcore
