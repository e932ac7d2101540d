#include "core/planning/AlmanacSatellite.h"

#include "tests/core/planning/IndependentSky.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/support/Hex.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::kSampleWeek;
using testing::PlaceOf;
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
    struct Row
    {
        std::string_view what;
        double eccentricity;
        double fromToaS;
        int week; // of the request and, unless tk shifts it, of the almanac
        Observer observer;
    };
    const Observer tokyo;
    const Observer south{-0.6, -1.2, 2500.0};
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        for (int prn = 1; prn <= 30; ++prn) {
            AlmanacRecord record = SampleSatellite(prn);
            record.eccentricity = row.eccentricity;
            record.week = static_cast<std::int16_t>(row.week);
            CAlmanacSatellite satellite = Loaded(record);
            const GpsEpoch epoch{row.week, record.toaS + row.fromToaS};
            satellite.SetObserver(row.observer);
            satellite.SetTime(epoch);
            const auto expected = PlaceOf(record, row.fromToaS, row.observer);
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
    struct Row
    {
        std::string_view what;
        int week;
        std::int16_t almanacWeek;
        double tkS;
    };
    const Row rows[] = {
        {"both full", 2201, 2200, kWeekS},
        {"request full, almanac 10-bit", 1300, 276, 0.0},
        {"request 10-bit, almanac full", 276, 1300, 0.0},
        {"one cycle is taken off, not all", 2100, 52, 1024 * kWeekS},
        {"week 1023 stays", 1023, 1023, 0.0},
        {"week 1024 is week 0", 1024, 1023, -1023 * kWeekS},
        {"not folded into half a week", 105, 100, 5 * kWeekS},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        AlmanacRecord record = SampleSatellite(3);
        record.week = row.almanacWeek;
        const double toaS = AlmanacOrbit(record).Constants().toaCountS;
        EXPECT_EQ(AlmanacOrbit::CountOf({row.week, record.toaS + 7.0}) - toaS, row.tkS + 7.0);
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
    AlmanacRecord record;
    record.prn = 32;
    record.timeStamp = 0x89ABCDEF;
    record.week = -2;
    record.toaS = 405504; // 0x63000
    record.sqrtA = 1.5;   // 0x3FF8 and zeros
    record.eccentricity = -2.0;
    record.inclination = 2.5;
    record.omegaDot = 3.0;
    record.omega0 = 3.5;
    record.omega = 5.0;
    record.m0 = 6.0;
    record.health = 63;
    const auto bytes = testing::Hex("20000000 EFCDAB89 FEFF0000 00300600"
                                    "000000000000F83F 00000000000000C0"
                                    "0000000000000440 0000000000000840"
                                    "0000000000000C40 0000000000001440"
                                    "0000000000001840 3F00000000000000");
    AlmanacBytes expected{};
    ASSERT_EQ(bytes.size(), expected.size());
    std::copy(bytes.begin(), bytes.end(), expected.begin());
    EXPECT_EQ(EncodeAlmanac(record), expected);
    EXPECT_EQ(EncodeAlmanac(DecodeAlmanac(expected)), expected);
}

} // namespace
} // namespace fieldcore
