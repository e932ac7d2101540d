#include "core/planning/AlmanacStore.h"

#include "core/link/Command.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/SurveyPlanCalc.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using simulator::Scenario;
using testing::SampleFile;
using testing::SampleSatellite;

constexpr std::size_t kMost = 1 << 20;

/// A receiver that has the almanacs of @p prns.
Scenario ReceiverWith(std::initializer_list<int> prns)
{
    Scenario scenario;
    for (const int prn : prns) {
        const AlmanacRecord r = SampleSatellite(prn);
        scenario.almanacs.push_back({prn, r.timeStamp, r.week, r.toaS, r.sqrtA, r.eccentricity,
                                     r.inclination, r.omegaDot, r.omega0, r.omega, r.m0, r.health});
    }
    return scenario;
}

void WriteTemporary(const fs::path& folder, const std::vector<std::uint8_t>& content)
{
    std::ofstream(AlmanacTemporaryPath(folder), std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
}

class AlmanacStoreTest : public ::testing::Test
{
protected:
    void Start(const Scenario& scenario) { far.emplace(scenario).Open(); }
    [[nodiscard]] std::vector<std::uint8_t> Almanac() const
    {
        return ReadWholeFile(AlmanacPath(folder.Path()), kMost).value();
    }
    [[nodiscard]] bool HasTemporary() const
    {
        return fs::exists(AlmanacTemporaryPath(folder.Path()));
    }
    [[nodiscard]] bool AbortWasSent() const
    {
        for (const auto& piece : far->simulator.Record()) {
            if (piece.direction == simulator::Direction::ToReceiver && piece.bytes.size() > 2 &&
                piece.bytes[2] == 0x5A) {
                return true;
            }
        }
        return false;
    }

    std::optional<testing::VirtualReceiver> far;
    TemporaryFolder folder;
    AlmanacStore store{folder.Path()};
};

TEST_F(AlmanacStoreTest, KeepsWhatTheReceiverHas)
{
    const Scenario scenario = ReceiverWith({2, 3, 7, 8, 20});
    Start(scenario);
    std::vector<int> asked;
    ASSERT_EQ(store.Update(far->command,
                           [&](int prn) {
                               asked.push_back(prn);
                               return true;
                           }),
              AlmanacResult::Done);
    ASSERT_EQ(asked.size(), 33U);
    EXPECT_EQ(asked.front(), 1);
    EXPECT_EQ(asked.back(), 33);

    // Zeros before the first; then what is missing repeats what came before it.
    std::vector<std::uint8_t> expected;
    for (int prn = 1; prn <= 32; ++prn) {
        const int from = prn < 2 ? 0 : prn < 3 ? 2 : prn < 7 ? 3 : prn < 8 ? 7 : prn < 20 ? 8 : 20;
        const AlmanacBytes bytes =
            from == 0 ? AlmanacBytes{} : EncodeAlmanac(SampleSatellite(from));
        expected.insert(expected.end(), bytes.begin(), bytes.end());
    }
    EXPECT_EQ(Almanac(), expected);
    EXPECT_FALSE(HasTemporary());
    CSurveyPlanCalc calc;
    calc.LoadAlmanac(AlmanacPath(folder.Path()));
    EXPECT_EQ(calc.Source().origin, AlmanacOrigin::Receiver);
    EXPECT_EQ(ToUtf8(calc.Source().name), "VX1（S/N " + scenario.longSerial + "）");
}

TEST_F(AlmanacStoreTest, ServesAHostThroughTheCalculator)
{
    setenv("FIELDCORE_HOME", folder.Path().c_str(), 1);
    Start(ReceiverWith({1, 2, 3, 7, 8}));
    CSurveyPlanCalc calc;
    EXPECT_FALSE(calc.LoadAlmanac());
    std::size_t size = 0;
    EXPECT_TRUE(CSurveyPlanCalc::DownloadAlmanac(far->command, size));
    EXPECT_EQ(size, 32 * kAlmanacRecordSize);
    EXPECT_TRUE(HasTemporary());
    EXPECT_TRUE(CSurveyPlanCalc::CommitAlmanac(size));
    EXPECT_TRUE(calc.LoadAlmanac());
    EXPECT_EQ(calc.GetAlmanacTime().GetGpsWeek(), testing::kSampleWeek);
    EXPECT_EQ(calc.IsValid(6), 1);

    Start(ReceiverWith({1, 2, 3, 7}));
    EXPECT_TRUE(CSurveyPlanCalc::DownloadAlmanac(far->command, size));
    EXPECT_FALSE(CSurveyPlanCalc::CommitAlmanac(size));
    EXPECT_TRUE(calc.LoadAlmanac());
    EXPECT_EQ(calc.IsValid(7), 1) << "the old one";
    unsetenv("FIELDCORE_HOME");
}

TEST_F(AlmanacStoreTest, KeepsTheOldAlmanacWhenTheReceiverHasFewSatellites)
{
    folder.Write("GSurveyPlan.alm", "old");
    const std::vector<std::uint8_t> old{'o', 'l', 'd'};
    for (const auto& scenario : {ReceiverWith({}), ReceiverWith({1, 2, 3, 32})}) {
        Start(scenario);
        EXPECT_EQ(store.Update(far->command), AlmanacResult::TooFew);
        EXPECT_EQ(Almanac(), old);
        EXPECT_FALSE(HasTemporary());
    }
}

TEST_F(AlmanacStoreTest, TakesWhatTheReceiverGivesBeforeItFails)
{
    struct Row
    {
        std::string_view what;
        const char* scenario;
        std::size_t skip; // requests before its fault
        AlmanacResult result;
        int satellites;
    };
    constexpr Row kRows[] = {
        {"four are too few", "almanac-4", 0, AlmanacResult::TooFew, 0},
        {"five are enough", "almanac-5", 0, AlmanacResult::Done, 5},
        {"all there are", "almanac-31", 0, AlmanacResult::Done, 31},
        {"silent from PRN 30 on", "almanac-stops", 29, AlmanacResult::Done, 29},
        {"hangs up at PRN 4", "almanac-hangs-up", 3, AlmanacResult::BrokenOff, 0},
        {"hangs up at PRN 13", "almanac-hangs-up", 12, AlmanacResult::Done, 12},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        folder.Write("GSurveyPlan.alm", "old");
        std::string error;
        auto scenario = simulator::LoadScenario(row.scenario, error);
        ASSERT_TRUE(scenario) << error;
        for (simulator::FaultRule& fault : scenario->faults) {
            fault.skip = row.skip;
        }
        Start(*scenario);
        EXPECT_EQ(store.Update(far->command), row.result);
        EXPECT_FALSE(HasTemporary());
        const auto content = Almanac();
        if (row.result != AlmanacResult::Done) {
            EXPECT_EQ(content, (std::vector<std::uint8_t>{'o', 'l', 'd'}));
        } else {
            ASSERT_EQ(content.size(), 32 * kAlmanacRecordSize);
            EXPECT_EQ(CountAlmanacs(content), row.satellites);
            constexpr auto kRecord = static_cast<std::ptrdiff_t>(kAlmanacRecordSize);
            EXPECT_TRUE(std::equal(content.end() - kRecord, content.end(),
                                   content.begin() + (row.satellites - 1) * kRecord))
                << "the last good record repeats";
        }
        const AlmanacTally& tally = store.Tally();
        EXPECT_EQ(tally.received + tally.missing + tally.lost, 32);
        EXPECT_EQ(MessageOf(row.result, tally).words.empty(), tally.lost == 0);
        if (far->command.Fault() == CommandFault::LinkLost) {
            EXPECT_EQ(tally.fault, CommandFault::LinkLost);
            ASSERT_TRUE(far->simulator.Plug());
            far->Open();
        }
        StatusReply status;
        EXPECT_EQ(far->command.RequestStatus(status), 1) << far->command.LastError();
    }
}

TEST_F(AlmanacStoreTest, SendsTheAbortWhenTheUserCancels)
{
    folder.Write("GSurveyPlan.alm", "old");
    for (const unsigned last : {0U, 7U, 32U}) {
        SCOPED_TRACE(last);
        Start(ReceiverWith({1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(
            store.Update(far->command, [&](int prn) { return static_cast<unsigned>(prn) <= last; }),
            AlmanacResult::Cancelled);
        EXPECT_TRUE(AbortWasSent());
        EXPECT_EQ(far->simulator.RequestCount(), last + 1U) << "the satellites and the abort";
        EXPECT_EQ(Almanac().size(), 3U);
        EXPECT_FALSE(HasTemporary());
        StatusReply status;
        EXPECT_EQ(far->command.RequestStatus(status), 1) << "the link can be used";
    }

    Scenario silent;
    silent.answers = false;
    Start(silent);
    far->host.inBreath = [] { return false; };
    EXPECT_EQ(store.Update(far->command), AlmanacResult::Cancelled)
        << "while waiting for an answer";
    EXPECT_FALSE(HasTemporary());
}

TEST_F(AlmanacStoreTest, DoesNotFollowALinkOutOfTheFolder)
{
    const TemporaryFolder elsewhere;
    const auto precious = elsewhere.Write("precious", "mine");
    folder.Link("#$&Temp.Tmp", precious);
    Start(ReceiverWith({1, 2, 3, 4, 5}));
    EXPECT_EQ(store.Update(far->command), AlmanacResult::Done);
    EXPECT_EQ(fs::file_size(precious), 4U);
}

TEST_F(AlmanacStoreTest, SaysWhyItFailed)
{
    Start(ReceiverWith({1, 2, 3, 4, 5}));
    AlmanacStore nowhere(folder.Write("not-a-folder", ""));
    EXPECT_EQ(nowhere.Update(far->command), AlmanacResult::NotWritten);
    EXPECT_TRUE(nowhere.LastError());

    fs::create_directories(AlmanacPath(folder.Path()) / "in the way");
    EXPECT_EQ(store.Update(far->command), AlmanacResult::NotReplaced);
    EXPECT_TRUE(store.LastError());
    EXPECT_FALSE(HasTemporary());
}

TEST(AlmanacStore, NeedsFiveSatellites)
{
    struct Row
    {
        std::string_view what;
        std::vector<std::uint8_t> content;
        std::size_t size;
        AlmanacResult result;
    };
    auto repeated = SampleFile(4);
    const auto more = SampleFile(4);
    repeated.insert(repeated.end(), more.begin(), more.end());
    const Row rows[] = {
        {"four", SampleFile(4), 320, AlmanacResult::TooFew},
        {"five", SampleFile(5), 400, AlmanacResult::Done},
        {"eight records of four satellites", repeated, 640, AlmanacResult::TooFew},
        {"five, but told to be four", SampleFile(5), 320, AlmanacResult::TooFew},
        {"nothing there", {}, 400, AlmanacResult::TooFew},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const TemporaryFolder folder;
        WriteTemporary(folder.Path(), row.content);
        EXPECT_EQ(AlmanacStore(folder.Path()).Commit(row.size), row.result);
        EXPECT_EQ(fs::exists(AlmanacPath(folder.Path())), row.result == AlmanacResult::Done);
        EXPECT_FALSE(fs::exists(AlmanacTemporaryPath(folder.Path())));
    }
}

TEST(AlmanacStore, TakesRecordsThatAreGivenToIt)
{
    const TemporaryFolder folder;
    AlmanacStore store(folder.Path() / "new");
    std::vector<AlmanacRecord> records;
    for (const int prn : {5, 3, 1, 2, 4}) {
        records.push_back(SampleSatellite(prn));
    }
    AlmanacRecord none = SampleSatellite(6);
    none.prn = 33;
    records.push_back(none);
    EXPECT_EQ(store.Import(records), AlmanacResult::Done);
    const auto content = ReadAlmanacFile(AlmanacPath(folder.Path() / "new"));
    EXPECT_EQ(content, SampleFile(5)) << "in order of PRN";

    records.erase(records.begin());
    EXPECT_EQ(store.Import(records), AlmanacResult::TooFew);
    EXPECT_EQ(ReadAlmanacFile(AlmanacPath(folder.Path() / "new")), content);
    EXPECT_EQ(store.Import({}), AlmanacResult::TooFew);
    EXPECT_FALSE(fs::exists(AlmanacTemporaryPath(folder.Path() / "new")));
}

TEST(AlmanacStore, RemembersWhereTheAlmanacComesFrom)
{
    const TemporaryFolder folder;
    AlmanacStore store(folder.Path());
    const auto source = [&] {
        CSurveyPlanCalc calc;
        EXPECT_TRUE(calc.LoadAlmanac(AlmanacPath(folder.Path())));
        return calc.Source();
    };
    std::vector<AlmanacRecord> records;
    for (int prn = 1; prn <= 6; ++prn) {
        records.push_back(SampleSatellite(prn));
    }
    ASSERT_EQ(store.Import(records, {AlmanacOrigin::File, L"現在.alm"}), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::File);
    EXPECT_EQ(SourceText(source()), L"ファイル 現在.alm");

    WriteTemporary(folder.Path(), SampleFile(7));
    fs::rename(AlmanacTemporaryPath(folder.Path()), AlmanacPath(folder.Path()));
    EXPECT_EQ(source().origin, AlmanacOrigin::Unknown) << "replaced by another program";

    records.push_back(NominalConstellation(7, 2445, 0).back());
    ASSERT_EQ(store.Import(records, {AlmanacOrigin::File, L"a"}), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::Nominal) << "made up, whatever it came through";
    ASSERT_EQ(store.Import(std::span(records).first(6)), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::Unknown);
}

TEST(AlmanacStore, TellsTheUserWhatHappened)
{
    const auto said = [](AlmanacResult result) {
        return std::wstring(Text(MessageOf(result).text)) + L"|" + Text(MessageOf(result).caption);
    };
    EXPECT_EQ(said(AlmanacResult::Done), L"軌道暦を更新しました|軌道暦更新");
    EXPECT_EQ(said(AlmanacResult::NotWritten), L"ファイル書き込みに失敗しました。|ファイルエラー");
    EXPECT_EQ(said(AlmanacResult::NotRead), L"ファイル読み込みに失敗しました。|ファイルエラー");
    EXPECT_EQ(said(AlmanacResult::TooFew),
              L"軌道暦データ数が4以下です。受信機へアンテナを接続し、衛星捕捉を15分以上行ってから"
              L"再度暦データを取得してください。|軌道暦更新エラー");
    EXPECT_EQ(said(AlmanacResult::Cancelled), L"|") << "the user knows";
}

/// Replaces the almanac for ever, by turns with one of 30 and one of 12 satellites.
[[noreturn]] void ReplaceForEver(const fs::path& folder, int ready)
{
    AlmanacStore store(folder);
    for (int turn = 0;; ++turn) {
        const auto content = SampleFile(turn % 2 == 0 ? 30 : 12);
        WriteTemporary(folder, content);
        if (store.Commit(content.size()) != AlmanacResult::Done) {
            _exit(1);
        }
        if (turn == 0 && write(ready, "!", 1) != 1) {
            _exit(1);
        }
    }
}

TEST(AlmanacStore, LeavesAWholeAlmanacWhenItIsKilled)
{
    const TemporaryFolder folder;
    const auto longer = SampleFile(30);
    const auto shorter = SampleFile(12);
    std::minstd_rand random(20220310);
    for (int kill = 0; kill < 100; ++kill) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ReplaceForEver(folder.Path(), ready[1]);
        }
        close(ready[1]);
        char sign = 0;
        EXPECT_EQ(read(ready[0], &sign, 1), 1) << "the child could not replace the file";
        close(ready[0]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        const auto content = ReadWholeFile(AlmanacPath(folder.Path()), kMost).value();
        ASSERT_TRUE(content == longer || content == shorter) << "kill " << kill;
    }
}

} // namespace
} // namespace fieldcore
