#include "core/planning/AlmanacStore.h"

#include "core/link/Command.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/SurveyPlanCalc.h"
#include "core/platform/Utf8.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/Hex.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using simulator::Scenario;
using testing::FileOf;
using testing::SampleFile;
using testing::SampleSatellite;
using testing::SampleSatellites;

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

class AlmanacStoreTest : public ::testing::Test
{
protected:
    void Start(const Scenario& scenario) { far.emplace(scenario).Open(); }
    [[nodiscard]] std::vector<std::uint8_t> Almanac() const
    {
        return ReadAlmanacFile(AlmanacPath(folder.Path()));
    }
    [[nodiscard]] bool HasTemporary() const
    {
        return fs::exists(AlmanacTemporaryPath(folder.Path()));
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
    std::vector<AlmanacRecord> expected(1);
    for (int prn = 2; prn <= 32; ++prn) {
        expected.push_back(SampleSatellite(prn < 3    ? 2
                                           : prn < 7  ? 3
                                           : prn < 8  ? 7
                                           : prn < 20 ? 8
                                                      : 20));
    }
    EXPECT_EQ(Almanac(), FileOf(expected));
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

    EXPECT_FALSE(CSurveyPlanCalc::CommitAlmanac(size)) << "it was committed already";
    unsetenv("FIELDCORE_HOME");
}

TEST_F(AlmanacStoreTest, TakesWhatTheReceiverGivesBeforeItFails)
{
    // The number is that of the requests before its fault.
    constexpr std::tuple<std::string_view, const char*, std::size_t, AlmanacResult, int> kRows[] = {
        {"four are too few", "almanac-4", 0, AlmanacResult::TooFew, 0},
        {"five are enough", "almanac-5", 0, AlmanacResult::Done, 5},
        {"all there are", "almanac-31", 0, AlmanacResult::Done, 31},
        {"silent from PRN 30 on", "almanac-stops", 29, AlmanacResult::Done, 29},
        {"hangs up at PRN 4", "almanac-hangs-up", 3, AlmanacResult::BrokenOff, 0},
        {"hangs up at PRN 13", "almanac-hangs-up", 12, AlmanacResult::Done, 12},
    };
    for (const auto& [what, shipped, skip, result, satellites] : kRows) {
        SCOPED_TRACE(what);
        folder.Write("GSurveyPlan.alm", "old");
        Scenario scenario = testing::ShippedScenario(shipped);
        for (simulator::FaultRule& fault : scenario.faults) {
            fault.skip = skip;
        }
        Start(scenario);
        EXPECT_EQ(store.Update(far->command), result);
        EXPECT_FALSE(HasTemporary());
        const auto content = Almanac();
        if (result != AlmanacResult::Done) {
            EXPECT_EQ(content, testing::Hex("6F6C64")) << "old";
        } else {
            EXPECT_EQ(content.size(), 32 * kAlmanacRecordSize);
            EXPECT_EQ(CountAlmanacs(content), satellites);
        }
        const AlmanacTally& tally = store.Tally();
        EXPECT_EQ(tally.received + tally.missing + tally.lost, 32);
        EXPECT_EQ(MessageOf(result, tally).words.empty(), tally.lost == 0);
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
        EXPECT_EQ(far->simulator.Requests().back().at(2), 0x5A);
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
}

TEST(AlmanacStore, NeedsFiveSatellites)
{
    std::vector<AlmanacRecord> twice = SampleSatellites(8);
    std::copy_n(twice.begin(), 4, twice.begin() + 4);
    using Row = std::tuple<std::string_view, std::vector<std::uint8_t>, std::size_t, AlmanacResult>;
    const Row rows[] = {
        {"four", SampleFile(4), 320, AlmanacResult::TooFew},
        {"five", SampleFile(5), 400, AlmanacResult::Done},
        {"eight records of four satellites", FileOf(twice), 640, AlmanacResult::TooFew},
        {"five, but told to be four", SampleFile(5), 320, AlmanacResult::TooFew},
        {"nothing there", {}, 400, AlmanacResult::TooFew},
    };
    for (const auto& [what, content, size, result] : rows) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        folder.Write(AlmanacTemporaryPath(""), std::string(content.begin(), content.end()));
        EXPECT_EQ(AlmanacStore(folder.Path()).Commit(size), result);
        EXPECT_EQ(fs::exists(AlmanacPath(folder.Path())), result == AlmanacResult::Done);
        EXPECT_FALSE(fs::exists(AlmanacTemporaryPath(folder.Path())));
    }
}

TEST(AlmanacStore, TakesRecordsThatAreGivenToIt)
{
    const TemporaryFolder folder;
    AlmanacStore store(folder.Path() / "new");
    std::vector<AlmanacRecord> records = SampleSatellites(6);
    std::swap(records[0], records[4]);
    records[5].prn = 33; // none
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
    std::vector<AlmanacRecord> records = SampleSatellites(6);
    ASSERT_EQ(store.Import(records, {AlmanacOrigin::File, L"現在.alm"}), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::File);
    EXPECT_EQ(SourceText(source()), L"ファイル 現在.alm");

    const std::vector<std::uint8_t> other = SampleFile(7);
    folder.Write(AlmanacPath(""), std::string(other.begin(), other.end()));
    EXPECT_EQ(source().origin, AlmanacOrigin::Unknown) << "replaced by another program";

    records.push_back(NominalConstellation(7, 2445, 0).back());
    ASSERT_EQ(store.Import(records, {AlmanacOrigin::File, L"a"}), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::Nominal) << "made up, whatever it came through";
    ASSERT_EQ(store.Import(std::span(records).first(6)), AlmanacResult::Done);
    EXPECT_EQ(source().origin, AlmanacOrigin::Unknown);
}

} // namespace
} // namespace fieldcore
