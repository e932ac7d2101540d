// The calculator, one of its satellites alone, and the records that it is given.

#include "core/planning/SurveyPlanCalc.h"

#include "core/planning/AlmanacTime.h"
#include "core/planning/CalendarTime.h"
#include "tests/core/planning/IndependentSky.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/support/Hex.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::FileOf;
using testing::kSampleWeek;
using testing::PlaceOf;
using testing::SampleFile;
using testing::SampleSatellite;

constexpr double kWeekS = 604800.0;

CAlmanacSatellite Loaded(const AlmanacRecord& record)
{
    CAlmanacSatellite satellite(record.prn);
    satellite.SetRecord(EncodeAlmanac(record));
    return satellite;
}

TEST(CAlmanacSatellite, StandsWhereAnIndependentComputationPutsIt)
{
    const Observer tokyo;
    const Observer south{-0.6, -1.2, 2500.0};
    // The week is that of the request and, unless tk shifts it, of the almanac.
    const std::tuple<std::string_view, double, double, int, Observer> rows[] = {
        {"at toa", 0.01, 0.0, kSampleWeek, tokyo},
        {"circular", 0.0, 5000.0, kSampleWeek, tokyo},
        {"some hours before toa", 0.02, -20000.0, kSampleWeek, tokyo},
        {"a month on", 0.012, 2.6e6, kSampleWeek, tokyo},
        {"weeks of ten bits", 0.012, 3600.0, 276, tokyo},
        {"at the border of near and general orbits", 0.05, 12345.0, kSampleWeek, tokyo},
        {"eccentric", 0.3, 12345.0, kSampleWeek, tokyo},
        {"very eccentric", 0.9, 30000.0, kSampleWeek, tokyo},
        {"southern and western", 0.008, 7000.0, kSampleWeek, south},
        {"from the equator at Greenwich", 0.008, 7000.0, kSampleWeek, {0.0, 0.0, 0.0}},
        {"from the north pole", 0.008, 7000.0, kSampleWeek, {1.5, 0.3, 0.0}},
    };
    for (const auto& [what, eccentricity, fromToaS, week, observer] : rows) {
        SCOPED_TRACE(what);
        for (int prn = 1; prn <= 30; ++prn) {
            AlmanacRecord record = SampleSatellite(prn);
            record.eccentricity = eccentricity;
            record.week = static_cast<std::int16_t>(week);
            CAlmanacSatellite satellite = Loaded(record);
            const GpsEpoch epoch{week, record.toaS + fromToaS};
            satellite.SetObserver(observer);
            satellite.SetTime(epoch);
            const auto expected = PlaceOf(record, fromToaS, observer);
            EXPECT_EQ(satellite.Compute(), expected.elevationRad >= 0.0);
            const Ecef position = satellite.GetPosition();
            EXPECT_LT(std::hypot(position.x - expected.position.x, position.y - expected.position.y,
                                 position.z - expected.position.z),
                      1e-4)
                << "m: a hundred times what rounding does over a month";
            EXPECT_NEAR(satellite.GetAzimuth(), expected.azimuthRad, 1e-9);
            EXPECT_NEAR(satellite.GetElevation(), expected.elevationRad, 1e-9);
        }
    }
}

TEST(CAlmanacSatellite, CountsWeeksInTheCycleOfTenBits)
{
    const std::tuple<std::string_view, int, std::int16_t, double> rows[] = {
        {"both full", 2201, 2200, kWeekS},
        {"request full, almanac 10-bit", 1300, 276, 0.0},
        {"request 10-bit, almanac full", 276, 1300, 0.0},
        {"one cycle is taken off, not all", 2100, 52, 1024 * kWeekS},
        {"week 1023 stays", 1023, 1023, 0.0},
        {"week 1024 is week 0", 1024, 1023, -1023 * kWeekS},
        {"not folded into half a week", 105, 100, 5 * kWeekS},
    };
    for (const auto& [what, week, almanacWeek, tkS] : rows) {
        SCOPED_TRACE(what);
        AlmanacRecord record = SampleSatellite(3);
        record.week = almanacWeek;
        const double toaS = AlmanacOrbit(record).Constants().toaCountS;
        EXPECT_EQ(AlmanacOrbit::CountOf({week, record.toaS + 7.0}) - toaS, tkS + 7.0);
    }
}

TEST(CAlmanacSatellite, IsNotAboveTheHorizonWhenItsRecordIsUnusable)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    using Spoil = void (*)(AlmanacRecord&);
    const std::pair<std::string_view, Spoil> rows[] = {
        {"unhealthy", [](AlmanacRecord& r) { r.health = 1; }},
        {"eccentricity 1", [](AlmanacRecord& r) { r.eccentricity = 1.0; }},
        {"eccentricity below 0", [](AlmanacRecord& r) { r.eccentricity = -1e-9; }},
        {"eccentricity no number", [](AlmanacRecord& r) { r.eccentricity = kNan; }},
        {"no size", [](AlmanacRecord& r) { r.sqrtA = 0.0; }},
        {"infinite size", [](AlmanacRecord& r) { r.sqrtA = kInfinity; }},
        {"an orbit that Newton's steps never settle on",
         [](AlmanacRecord& r) {
             r.sqrtA = 1e-6;
             r.eccentricity = 0.5;
         }},
        {"node no number", [](AlmanacRecord& r) { r.omega0 = kNan; }},
        {"anomaly infinite", [](AlmanacRecord& r) { r.m0 = -kInfinity; }},
        {"inclination infinite", [](AlmanacRecord& r) { r.inclination = kInfinity; }},
    };
    // A satellite that stands high, found by the independent computation.
    int prn = 1;
    while (PlaceOf(SampleSatellite(prn), 1000.0, {}).elevationRad < 0.5) {
        ++prn;
    }
    for (const auto& [fault, spoil] : rows) {
        SCOPED_TRACE(fault);
        AlmanacRecord record = SampleSatellite(prn);
        CAlmanacSatellite satellite = Loaded(record);
        satellite.SetTime({kSampleWeek, record.toaS + 1000.0});
        ASSERT_TRUE(satellite.Compute());
        const double before = satellite.GetElevation();
        spoil(record);
        satellite.SetRecord(EncodeAlmanac(record));
        EXPECT_FALSE(satellite.Compute());
        EXPECT_FALSE(satellite.TestVisibility({}));
        EXPECT_EQ(satellite.IsVisible(), 0);
        EXPECT_EQ(satellite.GetElevation(), before) << "angles stay as they were";
    }
}

TEST(AlmanacRecord, HasEveryFieldWhereTheFileHasIt)
{
    // 405504 is 0x63000, and 1.5 is 0x3FF8 and zeros.
    const AlmanacRecord record{32, 0x89ABCDEF, -2, 405504, 1.5, -2.0, 2.5, 3.0, 3.5, 5.0, 6.0, 63};
    const AlmanacBytes encoded = EncodeAlmanac(record);
    EXPECT_EQ(std::vector<std::uint8_t>(encoded.begin(), encoded.end()),
              testing::Hex("20000000 EFCDAB89 FEFF0000 00300600"
                           "000000000000F83F 00000000000000C0"
                           "0000000000000440 0000000000000840"
                           "0000000000000C40 0000000000001440"
                           "0000000000001840 3F00000000000000"));
    EXPECT_EQ(EncodeAlmanac(DecodeAlmanac(encoded)), encoded);
}

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
    for (int hour = 0; hour < 24; hour += 2) {
        const double tkS = 3600.0 * hour;
        calc.SetTime(kSampleWeek, SampleSatellite(1).toaS + tkS);
        int expected = 0;
        std::vector<Ecef> positions;
        for (int prn = 1; prn <= 30; ++prn) {
            const auto place = PlaceOf(SampleSatellite(prn), tkS, Observer{});
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
    const Observer site{0.6, 2.4, 50.0};
    CSurveyPlanCalc calc;
    calc.LoadAlmanac(SampleFile());
    calc.SetObserver(site);
    calc.SetTime(kSampleWeek, 405504.0);  // toa
    calc.SetElMask(std::numbers::pi / 2); // nothing passes
    int above = 0;
    for (int index = 0; index < 30; ++index) {
        calc.SetUse(index, 0);
        EXPECT_EQ(calc.TestVisibility(index), 0);
        const double expectedRad = PlaceOf(SampleSatellite(index + 1), 0.0, site).elevationRad;
        EXPECT_EQ(calc.ComputeSatellite(index), expectedRad >= 0.0) << index;
        EXPECT_EQ(calc.IsVisible(index), 0);
        EXPECT_NEAR(calc.GetSatellite(index).GetElevation(), expectedRad, 1e-9) << index;
        above += expectedRad >= 0.0 ? 1 : 0;
    }
    EXPECT_GT(above, 0);
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
    EXPECT_EQ(std::tie(none.pdop, none.gdop, none.tdop), std::tuple(16.0, 16.0, 16.0));
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
            PositionOf(OrbitOf(KeplerElements(SampleSatellite(prn))), AlmanacOrbit::CountOf(epoch))
                .value();
        const auto direction = ReferenceDirection(Observer{}, position).value();
        if (direction.elevationRad > 0.0) {
            ++tested;
            calc.SetElMask(direction.elevationRad);
            EXPECT_EQ(calc.TestVisibility(prn - 1), 1) << prn;
            calc.SetElMask(std::nextafter(direction.elevationRad, 2.0));
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
    // Each is switched off besides those above.
    constexpr std::tuple<const char*, int, int> kRows[] = {
        {"the latest is switched off", 1, kSampleWeek},
        {"a 10-bit week", 0, 1200},
        {"at the very end of its week", 2, 1101},
        {"a time that is none never wins", 5, 1024}};
    for (const auto& [what, switchedOff, week] : kRows) {
        calc.SetUse(switchedOff, 0);
        EXPECT_EQ(AlmanacTime(calc).GetGpsWeek(), week) << what;
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
