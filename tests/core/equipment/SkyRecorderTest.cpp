// Hours with a simulated receiver, through the link, its questions and the recorder.

#include "core/planning/SkyRecorder.h"

#include "core/planning/AlmanacStore.h"
#include "core/planning/CurtainProposal.h"
#include "core/planning/NominalConstellation.h"
#include "simulator/Sky.h"
#include "tests/core/equipment/PolledReceiver.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using State = SkyRecorder::State;

const std::string kHere = "model 3017\nposition 35 139 70\nalmanacs 31\n"
                          "start 2026-03-19 00:00:00\n";
constexpr int kWeek = 2410; // of that day
constexpr std::uint32_t kToaS = 344064;

class SkyRecorderTest : public testing::PolledReceiver
{
protected:
    static void
    PutAlmanac(const std::filesystem::path& program,
               const std::vector<AlmanacRecord>& records = NominalConstellation(31, kWeek, kToaS))
    {
        ASSERT_EQ(AlmanacStore(program).Import(records), AlmanacResult::Done);
    }
    void Begin(const std::filesystem::path& program)
    {
        recorder = std::make_unique<SkyRecorder>(clock);
        recorder->Use(program, 0);
    }
    /// A receiver here from now on, with an almanac beside what is noted of it.
    void Observe(const std::filesystem::path& program, const std::string& scenario = "")
    {
        PutAlmanac(program);
        Plug(kHere + scenario);
        Begin(program);
    }
    /// A list of what is tracked comes with every fifth round.
    void Live(Clock::Duration time)
    {
        for (Clock::Duration passed{}; passed < time; passed += 6s) {
            if (Round(6s)) {
                recorder->Take(link.Heard(), link.Connections());
            }
        }
    }
    [[nodiscard]] std::chrono::seconds Noted() const
    {
        const auto record = recorder->GetNow().record;
        return record ? record->Observed() : 0s;
    }

    TemporaryFolder folder;
    std::unique_ptr<SkyRecorder> recorder;
};

TEST_F(SkyRecorderTest, FourHoursProposeTheWallAndTheHill)
{
    simulator::Scenario street = testing::ShippedScenario("street");
    street.start = std::chrono::sys_days(2026y / 3 / 19);
    Plug(street);
    ASSERT_EQ(AlmanacStore(folder.Path()).Update(command), AlmanacResult::Done);
    Begin(folder.Path());
    Live(4h);
    const SkyRecorder::Now now = recorder->GetNow();
    EXPECT_EQ(now.state, State::Noting);
    ASSERT_TRUE(now.record);
    EXPECT_GT(now.record->Observed(), 3h + 50min);

    const auto proposal = ProposeCurtain(*now.record, {});
    ASSERT_TRUE(proposal);
    int known = 0;
    for (int azimuth = 0; azimuth < 360; ++azimuth) {
        const auto at = static_cast<std::size_t>(azimuth);
        if (proposal->certainty[at] == SkylineCertainty::Unknown) {
            continue;
        }
        // The receiver does not track below 10 degrees, so nothing is to be known there.
        const auto above = [](double elevationDeg) { return std::max(elevationDeg, 10.0); };
        double off = 90.0; // 3 degrees to the side count as right: an edge
        for (int half = -6; half <= 6; ++half) {
            const double is = above(simulator::ObstructionDeg(street, azimuth + 0.5 + 0.5 * half));
            off = std::min(off, std::abs(above(proposal->curtain[at]) - is));
            known += half == 0 && is > 10.0 ? 1 : 0;
        }
        EXPECT_LE(off, 3.0) << azimuth;
    }
    EXPECT_GE(known, 60) << "of the wall and the hill";

    recorder.reset(); // the end of the program
    ASSERT_EQ(LoadSkyRecords(folder.Path()).records.size(), 1U);
    Begin(folder.Path());
    Live(1min);
    EXPECT_EQ(Noted(), now.record->Observed()) << "it goes on where it was";
    EXPECT_EQ(recorder->GetNow().state, State::Settling);
}

TEST_F(SkyRecorderTest, NotesOnlyWhatCanBeBelieved)
{
    using Least = std::chrono::seconds;
    using Most = std::chrono::seconds;
    // What it says after 20 minutes, and how many of them are noted.
    const std::tuple<const char*, const char*, State, Least, Most> rows[] = {
        {"all well, but for the first two minutes", "", State::Noting, 16min, 18min},
        {"no fix", "fix searching\n", State::NoFix, 0s, 0s},
        {"a fix that is lost and found again", "fix fixed 600 none 660 fixed\n", State::Noting,
         13min, 15min},
        {"a weak antenna", "antenna weak\n", State::DeafAntenna, 0s, 0s},
        {"an antenna that dies", "antenna good 600 dead\n", State::DeafAntenna, 6min, 8min},
        {"nothing tracked at all", "mask 90\n", State::DeafAntenna, 0s, 0s},
    };
    for (const auto& [what, scenario, state, least, most] : rows) {
        SCOPED_TRACE(what);
        const TemporaryFolder own;
        Observe(own.Path(), scenario);
        Live(20min);
        EXPECT_EQ(recorder->GetNow().state, state);
        EXPECT_GE(Noted(), least);
        EXPECT_LE(Noted(), most);
        recorder.reset();
    }
}

TEST_F(SkyRecorderTest, TrustsNoAlmanacThatIsOldOrOfAnotherSky)
{
    Plug(kHere);
    Begin(folder.Path());
    const auto stateWith = [&](const std::vector<AlmanacRecord>& records) {
        if (!records.empty()) {
            PutAlmanac(folder.Path(), records);
        }
        Live(4min);
        return recorder->GetNow().state;
    };
    EXPECT_EQ(stateWith({}), State::NoAlmanac);
    EXPECT_EQ(stateWith(NominalConstellation(31, kWeek - 5, kToaS)), State::OldAlmanac);
    std::vector<AlmanacRecord> others = NominalConstellation(31, kWeek, kToaS);
    for (AlmanacRecord& record : others) {
        record.prn = static_cast<std::uint8_t>(record.prn % 31 + 1);
    }
    EXPECT_EQ(stateWith(others), State::OtherAlmanac);
    EXPECT_EQ(Noted(), 0s);
    EXPECT_EQ(stateWith(NominalConstellation(31, kWeek, kToaS)), State::Noting);
}

/// What is tracked where it was open before: the one that fails while it still hears something.
TEST_F(SkyRecorderTest, DoesNotTakeAFailingAntennaForAWall)
{
    Observe(folder.Path());
    Live(30min);
    ASSERT_EQ(recorder->GetNow().state, State::Noting);
    const auto before = Noted();
    Receiver heard = link.Heard();
    for (ListedSatellite& satellite : heard.tracked->value.satellites) {
        satellite.system = ListedSatellite::Sbas; // four or more, and none where it should be
    }
    for (int list = 0; list < 10; ++list) {
        heard.position->at += 30s;
        heard.tracked->at = heard.position->at;
        recorder->Take(heard, link.Connections());
    }
    EXPECT_EQ(recorder->GetNow().state, State::DeafAntenna);
    EXPECT_EQ(Noted(), before);
}

/// At 9600 bit/s, an answer after 150 ms, and some of them late, doubled, torn, damaged or lost.
TEST_F(SkyRecorderTest, NotesNothingWrongOnABadLine)
{
    const std::string kStreet = "obstruction 60 130 35\nobstruction 200 290 25\n";
    constexpr const char* kBadLine =
        "baud 9600\npacing baud\nlatency 150\nfault delay 4000 every 9\n"
        "fault duplicate skip 2 every 5\nfault drop skip 3 every 11\nfault corrupt skip 4 every "
        "13\n"
        "fault split 3 skip 1 every 7\n";
    std::vector<SkyRecord> records;
    for (const std::string cable : {"", kBadLine}) {
        const TemporaryFolder own;
        Observe(own.Path(), kStreet + cable);
        Live(1h);
        ASSERT_TRUE(recorder->GetNow().record);
        records.push_back(*recorder->GetNow().record);
        recorder.reset();
    }
    EXPECT_GT(records[1].Observed(), 15min);
    int same = 0;
    for (int azimuth = 0; azimuth < SkyRecord::kAzimuths; ++azimuth) {
        for (int elevation = 0; elevation < SkyRecord::kElevations; ++elevation) {
            const SkyRecord::Cell good = records[0].At(azimuth, elevation);
            const SkyRecord::Cell bad = records[1].At(azimuth, elevation);
            const bool isBoth = good != SkyRecord::Cell::Unknown && bad != SkyRecord::Cell::Unknown;
            EXPECT_TRUE(!isBoth || good == bad) << azimuth << ' ' << elevation;
            same += isBoth ? 1 : 0;
        }
    }
    EXPECT_GT(same, 100);
}

TEST_F(SkyRecorderTest, KeepsTheStoresApart)
{
    Observe(folder.Path());
    Live(20min);
    const auto before = Noted();
    const TemporaryFolder other;
    PutAlmanac(other.Path());
    recorder->Use(other.Path(), link.Connections());
    Live(20min);
    EXPECT_FALSE(recorder->GetNow().record) << "the connection belongs to the store of before";
    EXPECT_EQ(LoadSkyRecords(folder.Path()).records.at(0).Observed(), before) << "kept there";
    EXPECT_TRUE(LoadSkyRecords(other.Path()).records.empty());
    Plug(kHere);
    Live(20min);
    EXPECT_EQ(LoadSkyRecords(folder.Path()).records.size(), 1U);
    EXPECT_GT(Noted(), 10min);
}

TEST_F(SkyRecorderTest, TellsOfADamagedRecord)
{
    folder.Write("SkyRecords/1_2.sky", "FCSKYREC, but cut");
    Observe(folder.Path());
    Live(10min);
    EXPECT_EQ(recorder->GetNow().setAside, std::vector<std::string>{"1_2.sky.damaged-1"});
    EXPECT_GT(Noted(), 5min);
}

} // namespace
} // namespace fieldcore
