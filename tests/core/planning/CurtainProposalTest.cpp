// What a sky record keeps, and what is proposed of it: skylines that the simulator knows, and what
// a day's tracks make of them.

#include "core/planning/CurtainProposal.h"

#include "core/planning/NominalConstellation.h"
#include "core/planning/SkyRecord.h"
#include "core/planning/SurveyPlanCalc.h"
#include "core/platform/Degrees.h"
#include "simulator/Sky.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

SkyDirection At(double azimuthDeg, double elevationDeg)
{
    return {RadiansOf(azimuthDeg), RadiansOf(elevationDeg)};
}

/// What a receiver with a mask of 10 degrees tracks and misses there.
SkyRecord RecordOf(const simulator::Scenario& place, int fromHour, int hours)
{
    CSurveyPlanCalc calc;
    EXPECT_TRUE(
        calc.LoadAlmanac(testing::FileOf(NominalConstellation(kNominalSatellites, 2410, 0))));
    const Observer here{RadiansOf(35.0), RadiansOf(139.0), 70.0};
    calc.SetObserver(here);
    SkyRecord record(here);
    for (int round = 0; round < hours * 120; ++round) {
        record.BeginNotes({});
        calc.SetTime(2410, fromHour * 3600.0 + round * 30.0);
        for (int i = 0; i < kMaxPrn; ++i) {
            if (calc.TestVisibility(i) != 1) {
                continue;
            }
            const SkyDirection direction{calc.GetSatellite(i).GetAzimuth(),
                                         calc.GetSatellite(i).GetElevation()};
            const double hidden = simulator::ObstructionDeg(place, DegreesOf(direction.azimuthRad));
            const bool isTracked =
                DegreesOf(direction.elevationRad) >= std::max(hidden, place.maskDeg);
            isTracked ? record.NoteTracked(direction) : record.NoteMissed(direction);
        }
    }
    return record;
}

/// How far the proposal is off at an azimuth, degrees of elevation; a neighbour up to three degrees
/// to the side counts as right, for edges. Below the mask nothing is off.
double OffAt(const CurtainProposal& proposal, const simulator::Scenario& place, int azimuth)
{
    double off = 90.0;
    for (int half = -6; half <= 6; ++half) {
        const double truth = simulator::ObstructionDeg(place, azimuth + 0.5 + 0.5 * half);
        const double said = proposal.curtain[static_cast<std::size_t>(azimuth)];
        off =
            std::min(off, std::abs(std::max(truth, place.maskDeg) - std::max(said, place.maskDeg)));
    }
    return off;
}

TEST(CurtainProposal, IsAsSureAsItSays)
{
    std::array<int, 3> entries{};
    std::array<int, 3> off{};
    double worstSure = 0.0;
    for (int turn = 0; turn < 360; turn += 60) {
        simulator::Scenario place;
        const auto turned = [turn](double azimuth) { return std::fmod(azimuth + turn, 360.0); };
        place.obstructions = {{turned(60), turned(130), 35.0, 35.0},
                              {turned(200), turned(245), 0.0, 25.0},
                              {turned(245), turned(290), 25.0, 0.0}};
        for (int hour = 0; hour < 24; hour += 8) {
            const auto proposal = ProposeCurtain(RecordOf(place, hour, 4), {}).value();
            for (int azimuth = 0; azimuth < 360; ++azimuth) {
                const auto certainty = proposal.certainty[static_cast<std::size_t>(azimuth)];
                const auto of = static_cast<std::size_t>(certainty);
                const double by = OffAt(proposal, place, azimuth);
                ++entries[of];
                off[of] += by > 3.0 ? 1 : 0;
                if (certainty == SkylineCertainty::Sure) {
                    worstSure = std::max(worstSure, by);
                }
            }
        }
    }
    const auto fair = static_cast<std::size_t>(SkylineCertainty::Fair);
    const auto unknown = static_cast<std::size_t>(SkylineCertainty::Unknown);
    EXPECT_LE(worstSure, 3.0) << "degrees";
    EXPECT_LE(off[fair], entries[fair] / 10);
    EXPECT_LE(entries[unknown], 18 * 360 * 3 / 4) << "something is known everywhere";
}

TEST(CurtainProposal, ADayKnowsNearlyAllOfIt)
{
    simulator::Scenario place;
    place.obstructions = {{330.0, 30.0, 40.0, 40.0}}; // across north, where no satellite passes low
    const SkyRecord record = RecordOf(place, 0, 24);
    ObstructionCurtain current;
    current.fill(50);
    const auto proposal = ProposeCurtain(record, current).value();
    EXPECT_EQ(proposal.Percent(SkylineCertainty::Sure) + proposal.Percent(SkylineCertainty::Fair) +
                  proposal.Percent(SkylineCertainty::Unknown),
              100);
    EXPECT_LE(proposal.Percent(SkylineCertainty::Unknown), 25);
    EXPECT_LE(proposal.curtain[180], 13) << "what was drawn too high comes down";
    const auto again = ProposeCurtain(record, proposal.curtain).value();
    EXPECT_EQ(again.curtain, proposal.curtain) << "what was taken over stays";
}

/// North is a direction like any other.
TEST(CurtainProposal, TurnsWithItsSurroundings)
{
    simulator::Scenario place;
    place.obstructions = {{330.0, 60.0, 35.0, 35.0}};
    const SkyRecord record = RecordOf(place, 0, 8);
    const auto straight = ProposeCurtain(record, {}).value();
    for (int turn = 10; turn < SkyRecord::kAzimuths; turn += 17) {
        SkyRecord turned;
        for (int round = 0; round < 8 * 120; ++round) {
            turned.BeginNotes({});
        }
        for (int column = 0; column < SkyRecord::kAzimuths; ++column) {
            for (int elevation = 0; elevation < SkyRecord::kElevations; ++elevation) {
                const SkyDirection at{RadiansOf((column + turn) * 2 + 1.0),
                                      RadiansOf(elevation + 0.5)};
                if (record.At(column, elevation) == SkyRecord::Cell::Open) {
                    turned.NoteTracked(at);
                } else if (record.At(column, elevation) == SkyRecord::Cell::Hidden) {
                    turned.NoteMissed(at);
                }
            }
        }
        auto proposal = ProposeCurtain(turned, {}).value();
        std::rotate(proposal.curtain.begin(), proposal.curtain.begin() + 2 * turn,
                    proposal.curtain.end());
        std::rotate(proposal.certainty.begin(), proposal.certainty.begin() + 2 * turn,
                    proposal.certainty.end());
        EXPECT_EQ(proposal.curtain, straight.curtain) << turn;
        EXPECT_EQ(proposal.certainty, straight.certainty) << turn;
    }
}

TEST(CurtainProposal, SaysNothingTooEarly)
{
    const simulator::Scenario open;
    EXPECT_FALSE(ProposeCurtain(SkyRecord(), {}));
    EXPECT_FALSE(ProposeCurtain(RecordOf(open, 0, 1), {}));
    SkyRecord idle;
    for (int round = 0; round < 1000; ++round) {
        idle.BeginNotes({});
    }
    EXPECT_FALSE(ProposeCurtain(idle, {})) << "nothing was tracked";
}

/// One bad note does not make a wall, nor a hole in one.
TEST(CurtainProposal, IsNotLedAstrayByOneCell)
{
    simulator::Scenario place;
    place.obstructions = {{60.0, 130.0, 35.0, 35.0}};
    SkyRecord record = RecordOf(place, 0, 24);
    const CurtainProposal before = ProposeCurtain(record, {}).value();
    for (int i = 0; i < 200; ++i) {
        record.NoteMissed(At(181.0, 50.5));
        record.NoteTracked(At(91.0, 15.5));
    }
    const CurtainProposal after = ProposeCurtain(record, {}).value();
    for (const std::size_t azimuth : {std::size_t{181}, std::size_t{91}}) {
        EXPECT_NEAR(after.curtain[azimuth], before.curtain[azimuth], 1);
    }
}

using Bytes = std::vector<std::uint8_t>;

SkyRecord Sample(double latitudeDeg = 35.1234567, Clock::UtcTime now = Clock::UtcTime(1'000'000s))
{
    SkyRecord record({RadiansOf(latitudeDeg), RadiansOf(-139.5), 70.0});
    record.BeginNotes(now);
    record.NoteTracked(At(359.9, 89.99));
    record.NoteMissed(At(2.0, 12.5));
    return record;
}

TEST(SkyRecord, TellsWhatIsOftenerAndForgetsSlowly)
{
    SkyRecord record;
    const SkyDirection here = At(91.0, 30.5);
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Unknown);
    record.NoteMissed(here);
    EXPECT_EQ(record.At(45, 30), SkyRecord::Cell::Hidden);
    record.NoteTracked(here);
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Hidden) << "as often";
    for (int i = 0; i < 10'000; ++i) {
        record.NoteTracked(here);
    }
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Open);
    for (int i = 0; i < 255; ++i) {
        record.NoteMissed(here);
    }
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Hidden) << "a wall that was built later";
    for (const SkyDirection& none :
         {At(10.0, -0.1), At(10.0, 90.1), At(NAN, 10.0), At(10.0, NAN)}) {
        record.NoteTracked(none);
        EXPECT_EQ(record.At(none), SkyRecord::Cell::Unknown);
    }
}

TEST(SkyRecord, ComesBackFromItsFile)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(LoadSkyRecords(folder.Path()).records.empty());
    const SkyRecord record = Sample();
    ASSERT_FALSE(SaveSkyRecord(folder.Path(), record));
    ASSERT_FALSE(SaveSkyRecord(folder.Path(), record)) << "in place of the one before";
    const SkyRecords loaded = LoadSkyRecords(folder.Path());
    ASSERT_EQ(loaded.records.size(), 1U);
    EXPECT_EQ(loaded.records[0], record);
    EXPECT_EQ(loaded.records[0].At(179, 89), SkyRecord::Cell::Open);
    EXPECT_EQ(loaded.records[0].At(1, 12), SkyRecord::Cell::Hidden);
    EXPECT_EQ(loaded.records[0].Observed(), 30s);
    EXPECT_LT(DistanceM(loaded.records[0].Place(), {RadiansOf(35.1234567), RadiansOf(-139.5), 0.0}),
              0.02)
        << "m: a step of the file";
    EXPECT_TRUE(SaveSkyRecord(folder.Write("a file", ""), record));
}

TEST(SkyRecord, SetsADamagedFileAside)
{
    using Damage = void (*)(Bytes&);
    const std::pair<const char*, Damage> rows[] = {
        {"empty", [](Bytes& bytes) { bytes.clear(); }},
        {"cut", [](Bytes& bytes) { bytes.pop_back(); }},
        {"too long", [](Bytes& bytes) { bytes.push_back(0); }},
        {"another mark", [](Bytes& bytes) { bytes[0] = 'X'; }},
        {"a version to come", [](Bytes& bytes) { ++bytes[8]; }},
        {"a cell", [](Bytes& bytes) { ++bytes[5000]; }},
        {"the sum", [](Bytes& bytes) { ++bytes.back(); }},
    };
    for (const auto& [what, damage] : rows) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        ASSERT_FALSE(SaveSkyRecord(folder.Path(), Sample(40.0)));
        Bytes bytes = Sample().Bytes();
        damage(bytes);
        const auto file =
            folder.Write("SkyRecords/here.sky", std::string(bytes.begin(), bytes.end()));
        const SkyRecords loaded = LoadSkyRecords(folder.Path());
        EXPECT_EQ(loaded.records.size(), 1U) << "the others stay";
        EXPECT_EQ(loaded.setAside, std::vector<std::string>{"here.sky.damaged-1"});
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_TRUE(LoadSkyRecords(folder.Path()).setAside.empty()) << "told once";
    }
}

TEST(SkyRecord, KeepsSoManyPlaces)
{
    const TemporaryFolder folder;
    const auto old = std::filesystem::file_time_type::clock::now() - 24h;
    for (int i = 0; i <= static_cast<int>(kMostSkyRecords); ++i) {
        ASSERT_FALSE(SaveSkyRecord(folder.Path(), Sample(i, Clock::UtcTime(1h * i))));
        const auto file = std::to_string(i * 10'000'000) + "_-1395000000.sky";
        std::filesystem::last_write_time(SkyRecordsPath(folder.Path()) / file, old + 1min * i);
    }
    const SkyRecords loaded = LoadSkyRecords(folder.Path());
    ASSERT_EQ(loaded.records.size(), kMostSkyRecords);
    EXPECT_EQ(loaded.records.front(), Sample(16, Clock::UtcTime(16h))) << "the newest first";
    EXPECT_EQ(loaded.records.back(), Sample(1, Clock::UtcTime(1h))) << "the oldest has gone";
}

} // namespace
} // namespace fieldcore
