#include "core/planning/SurveyPlanCalc.h"

#include "core/planning/AlmanacTime.h"
#include "core/planning/CalendarTime.h"
#include "tests/core/planning/IndependentSky.h"
#include "tests/core/planning/SampleSky.h"

#include <cmath>
#include <numbers>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::FileOf;
using testing::kSampleWeek;
using testing::SampleFile;
using testing::SampleSatellite;

AlmanacRecord WithPrn(AlmanacRecord record, std::uint8_t prn)
{
    record.prn = prn;
    return record;
}

TEST(CSurveyPlanCalc, TakesTheRecordsThatAreSatellites)
{
    CSurveyPlanCalc calc;
    EXPECT_TRUE(calc.LoadAlmanac(FileOf({SampleSatellite(9)})));

    std::vector<std::uint8_t> content = FileOf(
        {SampleSatellite(1), WithPrn(SampleSatellite(2), 0), WithPrn(SampleSatellite(3), 33),
         WithPrn(SampleSatellite(4), 32), SampleSatellite(5), WithPrn(SampleSatellite(6), 5)});
    const std::vector<std::uint8_t> cut = FileOf({SampleSatellite(7)});
    content.insert(content.end(), cut.begin(), cut.end() - 1);
    EXPECT_TRUE(calc.LoadAlmanac(content));
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const bool loaded = index == 0 || index == 31 || index == 4;
        EXPECT_EQ(calc.IsValid(index), loaded ? 1 : 0) << index;
    }
    EXPECT_EQ(DecodeAlmanac(calc.GetSatellite(4).GetRecord()).sqrtA, SampleSatellite(6).sqrtA)
        << "a later record replaces an earlier one";

    EXPECT_FALSE(calc.LoadAlmanac(FileOf({WithPrn(SampleSatellite(1), 200)})));
    EXPECT_FALSE(calc.LoadAlmanac(std::span(cut).first(79)));
    EXPECT_EQ(calc.IsValid(0), 0) << "a file without records clears them all";
    EXPECT_EQ(calc.IsValid(-1) + calc.IsValid(32) + calc.TestVisibility(32), 0);
}

TEST(CSurveyPlanCalc, CountsWhatStandsAboveTheMask)
{
    CSurveyPlanCalc calc;
    ASSERT_TRUE(calc.LoadAlmanac(SampleFile()));
    calc.SetElMask(0.2);
    for (double tkS = 0.0; tkS < 86400.0; tkS += 7200.0) {
        calc.SetTime(kSampleWeek, SampleSatellite(1).toaS + tkS);
        int expected = 0;
        std::vector<Ecef> positions;
        for (int prn = 1; prn <= 30; ++prn) {
            const auto place = testing::PlaceOf(SampleSatellite(prn), tkS, Observer{});
            if (place.elevationRad >= 0.2) {
                ++expected;
                positions.push_back(place.position);
            }
        }
        ASSERT_GE(expected, 4);
        EXPECT_EQ(calc.CountVisible(), expected) << tkS;
        const DopValues reference = ReferenceDop(ToEcef(Observer{}), positions);
        const DopValues dop = calc.ComputeDop();
        EXPECT_NEAR(dop.pdop / reference.pdop, 1.0, 1e-9);
        EXPECT_NEAR(dop.gdop / reference.gdop, 1.0, 1e-9);
        EXPECT_NEAR(dop.tdop / reference.tdop, 1.0, 1e-9);
    }
}

TEST(CSurveyPlanCalc, ComputesOneSatelliteWhetherItIsUsableOrNot)
{
    CSurveyPlanCalc calc;
    calc.LoadAlmanac(SampleFile());
    calc.SetObserver(0.6, 2.4, 50.0);
    calc.SetTime(kSampleWeek, 405504.0);
    calc.SetElMask(std::numbers::pi / 2); // nothing passes
    int above = 0;
    for (int index = 0; index < 30; ++index) {
        calc.SetUse(index, 0);
        EXPECT_EQ(calc.TestVisibility(index), 0);
        const bool isAbove = calc.ComputeSatellite(index);
        EXPECT_EQ(calc.IsVisible(index), 0);
        const CAlmanacSatellite& satellite = calc.GetSatellite(index);
        const EastNorthUp enu = calc.GetFrame().ToLocal(
            *AlmanacOrbit(SampleSatellite(index + 1)).Position({kSampleWeek, 405504.0}));
        EXPECT_NEAR(satellite.GetElevation(), std::asin(enu.up / enu.Range()), 1e-12) << index;
        EXPECT_EQ(isAbove, enu.up >= 0.0) << index;
        above += isAbove ? 1 : 0;
    }
    EXPECT_GT(above, 0);
    EXPECT_LT(above, 30);
    EXPECT_FALSE(calc.ComputeSatellite(30)) << "no almanac";
    EXPECT_FALSE(calc.ComputeSatellite(32)) << "no satellite";
}

TEST(CSurveyPlanCalc, NeedsFourSatellitesForADilution)
{
    CSurveyPlanCalc calc;
    ASSERT_TRUE(calc.LoadAlmanac(SampleFile()));
    calc.SetTime(kSampleWeek, SampleSatellite(1).toaS);
    int left = calc.CountVisible();
    ASSERT_GT(left, 4);
    const auto leave = [&](int count) {
        for (int index = 0; left > count; ++index) {
            if (calc.GetSatellite(index).IsVisible() != 0) {
                calc.SetUse(index, 0);
                --left;
            }
        }
        return calc.CountVisible();
    };
    EXPECT_EQ(leave(4), 4);
    EXPECT_TRUE(std::isfinite(calc.ComputeDop().pdop));
    EXPECT_NE(calc.ComputeDop().pdop, 16.0);
    EXPECT_EQ(leave(3), 3);
    const DopValues none = calc.ComputeDop();
    EXPECT_EQ(none.pdop, 16.0);
    EXPECT_EQ(none.gdop, 16.0);
    EXPECT_EQ(none.tdop, 16.0);
}

TEST(CSurveyPlanCalc, PassesASatelliteThatStandsExactlyOnTheMask)
{
    const GpsEpoch epoch{kSampleWeek, 400000.0};
    int tested = 0;
    for (int prn = 1; prn <= 30; ++prn) {
        CSurveyPlanCalc calc;
        ASSERT_TRUE(calc.LoadAlmanac(FileOf({SampleSatellite(prn)})));
        calc.SetTime(epoch.week, epoch.sowS);
        const auto position =
            PositionOf(OrbitOf(KeplerElements(SampleSatellite(prn))), AlmanacOrbit::CountOf(epoch));
        ASSERT_TRUE(position);
        const auto direction = ReferenceDirection(Observer{}, *position);
        ASSERT_TRUE(direction);
        if (direction->elevationRad > 0.0) {
            ++tested;
            calc.SetElMask(direction->elevationRad);
            EXPECT_EQ(calc.TestVisibility(prn - 1), 1) << prn;
            calc.SetElMask(std::nextafter(direction->elevationRad, 2.0));
            EXPECT_EQ(calc.TestVisibility(prn - 1), 0) << prn;
        }
    }
    EXPECT_GE(tested, 6);
}

TEST(AlmanacTime, IsTheLatestOfTheValidSatellites)
{
    const auto of = [](int prn, std::int16_t week, std::uint32_t toaS) {
        AlmanacRecord record = SampleSatellite(prn);
        record.week = week;
        record.toaS = toaS;
        return record;
    };
    CSurveyPlanCalc calc;
    EXPECT_EQ(AlmanacTime(calc).GetGpsWeek(), 1024) << "no almanac";
    ASSERT_TRUE(calc.LoadAlmanac(
        FileOf({of(1, kSampleWeek, 405504), of(2, kSampleWeek + 1, 61440),
                of(3, 176, 405504), // 1200 in the cycle before
                of(4, -1, 405504), of(5, kSampleWeek, 604801), of(6, 1100, 604800)})));
    EXPECT_EQ((AlmanacTime(calc).GetUtcTime() - CGPSTime::m_OriginalTime).GetTotalSeconds(),
              (kSampleWeek + 1) * 604800LL + 61440);
    struct Row
    {
        const char* what;
        int switchedOff; // besides those above
        int week;
    };
    for (const Row& row : {Row{"the latest is switched off", 1, kSampleWeek},
                           {"a 10-bit week", 0, 1200},
                           {"at the very end of its week", 2, 1101},
                           {"a time that is none never wins", 5, 1024}}) {
        calc.SetUse(row.switchedOff, 0);
        EXPECT_EQ(AlmanacTime(calc).GetGpsWeek(), row.week) << row.what;
    }
}

TEST(AlmanacTime, IsOldAfterThirtyDays)
{
    const CTime almanac(1'650'000'000);
    const auto old = [&](std::int64_t laterS) {
        return IsAlmanacOld(CGPSTime(almanac), CGPSTime(almanac + CTimeSpan(laterS)));
    };
    EXPECT_FALSE(old(30 * 86400)) << "exactly thirty days";
    EXPECT_TRUE(old(30 * 86400 + 1));
    EXPECT_FALSE(old(-60 * 86400)) << "an almanac from after the plan";
}

} // namespace
} // namespace fieldcore
