#include "core/orbits/Constellations.h"
#include "core/orbits/NavigationFile.h"
#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "tests/core/orbits/Messages.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <array>
#include <chrono>
#include <cmath>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::GpsAt;
using testing::Messages;
using testing::RecordsOf;

double Distance(const Ecef& a, const Ecef& b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

TEST(SatelliteId, IsReadAndWrittenAsItsSystemNamesIt)
{
    // What is written is empty where there is no satellite.
    constexpr std::tuple<std::string_view, std::string_view, int> rows[] = {
        {"G05", "G05", 5},   {"G5", "G05", 5},    {"G 5", "G05", 5},   {"G33", "", 0},
        {"G00", "", 0},      {"R24", "R24", 0},   {"E36", "E36", 0},   {"E37", "", 0},
        {"C60", "C60", 0},   {"J01", "J01", 193}, {"J10", "J10", 202}, {"J11", "", 0},
        {"S20", "S20", 120}, {"S58", "S58", 158}, {"S19", "", 0},      {"I02", "", 0},
        {"g05", "", 0},      {"G", "", 0},        {"", "", 0},         {"G+5", "", 0},
        {"G005", "", 0},     {"G0x", "", 0},      {"G  ", "", 0},
    };
    for (const auto& [text, written, prn] : rows) {
        SCOPED_TRACE(text);
        const auto id = SatelliteId::Parse(text);
        EXPECT_EQ(id ? id->Text() : "", written);
        EXPECT_EQ(id ? id->Prn() : 0, prn);
        if (prn != 0) {
            EXPECT_EQ(SatelliteId::FromPrn(prn), id);
        }
    }
    for (const int nobody : {-1, 0, 33, 119, 159, 192, 203}) {
        EXPECT_FALSE(SatelliteId::FromPrn(nobody)) << nobody;
    }
    // Listed by system, then number.
    EXPECT_LT(*SatelliteId::Parse("G32"), *SatelliteId::Parse("R01"));
    EXPECT_LT(*SatelliteId::Parse("E09"), *SatelliteId::Parse("E10"));
    EXPECT_EQ(TextOf(*ParseSystems("jeG")), "GEJ");
    EXPECT_FALSE(ParseSystems("GG"));
    EXPECT_FALSE(ParseSystems("GX"));
    EXPECT_FALSE(ParseSystems(""));
}

TEST(SystemTime, TurnsIntoGpsTimeAndBack)
{
    const auto utc = [](std::chrono::sys_seconds time) {
        return static_cast<double>((time - std::chrono::sys_days(1980y / 1 / 6)).count());
    };
    const auto newYear = std::chrono::sys_days(2017y / 1 / 1);
    const std::tuple<std::string_view, GnssSystem, double, double> rows[] = {
        {"GPS is itself", GnssSystem::Gps, 1e9, 1e9},
        {"Galileo counts alike", GnssSystem::Galileo, 1e9, 1e9},
        {"BeiDou began with 14 leap seconds", GnssSystem::BeiDou, 1e9, 1e9 + 14},
        {"GLONASS before a leap second", GnssSystem::Glonass, utc(newYear - 1s) + 10800,
         utc(newYear - 1s) + 17},
        {"GLONASS behind it", GnssSystem::Glonass, utc(newYear) + 10800, utc(newYear) + 18},
        {"GLONASS before the first one", GnssSystem::Glonass,
         utc(std::chrono::sys_days(1981y / 6 / 30)) + 10800,
         utc(std::chrono::sys_days(1981y / 6 / 30))},
    };
    for (const auto& [what, system, systemS, gpsS] : rows) {
        SCOPED_TRACE(what);
        EXPECT_EQ(GpsSeconds(system, systemS), gpsS);
        EXPECT_EQ(SystemSeconds(system, gpsS), systemS);
    }
    EXPECT_EQ(UtcOfGpsSeconds(GpsSecondsOfUtc(newYear)), newYear);
}

TEST(Orbits, AgreeWithPreciseOrbitsOfTheDay)
{
    // Earth-fixed, km, from the same day's precise orbits.
    constexpr std::tuple<std::string_view, int, int, Ecef, double> rows[] = {
        // Within the time that a message is for, some metres: a second is four kilometres.
        {"G05", 9, 0, {-964.235349, 22303.759858, 14096.444990}, 5},
        {"G05", 10, 0, {-5888.580209, 15709.482552, 20405.148688}, 5},
        {"E11", 4, 0, {11039.554202, 27448.917217, 536.050833}, 5},
        {"E11", 5, 0, {10303.526376, 25393.839268, 11154.294345}, 10},
        {"R09", 10, 15, {398.940519, -11623.611209, 22723.660345}, 20},
        // Hours later.
        {"G05", 12, 0, {-20632.475811, 4434.893522, 16106.178530}, 20},
        {"E11", 10, 0, {-21980.680918, 16797.196569, 10544.330446}, 500},
        // GLONASS is integrated: the state alone, an hour and six hours on.
        {"R09", 11, 15, {11167.651563, -9503.553544, 20867.430235}, 100},
        {"R09", 16, 15, {9954.666978, 5475.801198, -22826.066658}, 2000},
    };
    for (const auto& [satellite, hour, minute, km, withinM] : rows) {
        SCOPED_TRACE(satellite);
        OrbitMotion motion(RecordsOf(satellite).front());
        const auto position = motion.At(GpsAt(hour, minute)).value();
        const Ecef metres{km.x * 1000, km.y * 1000, km.z * 1000};
        EXPECT_LT(Distance(position, metres), withinM);
    }
}

TEST(Orbits, GoOnWhereTheNextMessageIs)
{
    // Of an earlier message at the time of a later one: for those without precise orbits. C05 is
    // geostationary, C08 and J01 stand over the same meridian, C12 goes round.
    for (const std::string_view name : {"C05", "C08", "C12", "J01"}) {
        SCOPED_TRACE(name);
        const std::vector<NavigationRecord> records = RecordsOf(name);
        ASSERT_EQ(records.size(), 2U);
        const double later = records[1].ReferenceS();
        const Ecef expected = OrbitMotion(records[1]).At(later).value();
        EXPECT_LT(Distance(OrbitMotion(records[0]).At(later).value(), expected), 20.0); // m
    }
    // Over China, at the height of all that stand still.
    const Ecef c05 = *OrbitMotion(RecordsOf("C05")[0]).At(GpsAt(10, 0));
    EXPECT_NEAR(std::atan2(c05.y, c05.x), 58.75 * 3.14159265 / 180.0, 0.01);
    EXPECT_NEAR(std::hypot(c05.x, c05.y, c05.z), 42164e3, 50e3);
}

TEST(Orbits, OfGlonassDoNotDependOnTheOrderOfTimes)
{
    const NavigationRecord record = RecordsOf("R09").front();
    OrbitMotion motion(record);
    for (const int minutes : {0, 1, 700, 30, -30, -700, -1, 2, 705}) {
        const double time = record.ReferenceS() + minutes * 60.0 + 7.0;
        EXPECT_EQ(Distance(*motion.At(time), *OrbitMotion(record).At(time)), 0.0) << minutes;
    }
    EXPECT_FALSE(motion.At(record.ReferenceS() + 400 * 86400.0));
}

class ConstellationsTest : public ::testing::Test
{
protected:
    static constexpr SatelliteId kSatellite{GnssSystem::Galileo, 11};
    /// The message of a satellite, sent at another time.
    static NavigationRecord At(double hours, int health = 0)
    {
        static const NavigationRecord record = RecordsOf("E11").front();
        NavigationRecord other = record;
        std::get<KeplerOrbit>(other.orbit).referenceS += hours * 3600.0;
        other.systemS += hours * 3600.0;
        other.health = health;
        return other;
    }
    static double Time(double hours) { return At(hours).ReferenceS(); }
    Constellations m_known;
};

TEST_F(ConstellationsTest, TakesTheNearestMessageAndItsHealth)
{
    m_known.Add(std::array{At(4), At(0), At(8, 1), At(12)});
    const auto taken = [&](double hours) {
        const auto position = m_known.Position(kSatellite, Time(hours));
        for (const NavigationRecord& record : m_known.RecordsOf(kSatellite)) {
            if (position && Distance(*OrbitMotion(record).At(Time(hours)), *position) == 0.0) {
                return (record.ReferenceS() - Time(0)) / 3600.0;
            }
        }
        return -1.0;
    };
    EXPECT_EQ(taken(-50), 0.0);
    EXPECT_EQ(taken(1.9), 0.0);
    EXPECT_EQ(taken(2.0), 4.0); // equally near: the newer
    EXPECT_EQ(taken(7), -1.0);  // it says that it is not to be used
    EXPECT_EQ(taken(1000), 12.0);
    EXPECT_FALSE(m_known.Position({GnssSystem::Galileo, 12}, Time(0)));

    constexpr std::array hours{0.0, 1.0, 3.0, 9.0, 30.0};
    std::array<double, hours.size()> epochs{};
    std::transform(hours.begin(), hours.end(), epochs.begin(), Time);
    std::array<Ecef, hours.size()> positions;
    SatelliteMotion(m_known, kSatellite).At(epochs, positions);
    for (std::size_t i = 0; i < hours.size(); ++i) {
        const auto expected = m_known.Position(kSatellite, epochs[i]);
        EXPECT_EQ(std::isnan(positions[i].x), !expected) << i;
        EXPECT_TRUE(!expected || Distance(positions[i], *expected) == 0.0) << i;
    }
}

TEST_F(ConstellationsTest, KeepsTheNewestWhateverComes)
{
    for (int hour = 0; hour < 100; ++hour) { // two within two hours, one of them stays
        m_known.Add(std::array{At(hour)});
    }
    EXPECT_EQ(m_known.Records().size(), Constellations::kMostRecords);
    EXPECT_EQ(m_known.Records().back().ReferenceS(), Time(99));
    const double oldest = m_known.Records().front().ReferenceS();
    m_known.Add(std::array{At(-500), At(3)}); // an older file takes nothing away
    EXPECT_EQ(m_known.Records().size(), Constellations::kMostRecords);
    EXPECT_EQ(m_known.Records().front().ReferenceS(), oldest);
    m_known.Add(std::array{At(99, 7)}); // the same message again: what was said last
    EXPECT_EQ(m_known.Records().back().health, 7);
}

TEST_F(ConstellationsTest, TellsTheAgeOfASystem)
{
    m_known.Add(ReadNavigation(Messages()).records);
    const SystemState glonass = m_known.StateOf(GnssSystem::Glonass, GpsAt(23, 15));
    EXPECT_EQ(glonass.satellites, 1);
    EXPECT_EQ(glonass.healthy, 1);
    EXPECT_EQ(glonass.ageS, 12 * 3600.0 - 18.0); // the newest is of 11:15 UTC
    EXPECT_FALSE(glonass.isStale);
    EXPECT_TRUE(m_known.StateOf(GnssSystem::Glonass, GpsAt(12, 0) + 14 * 86400.0).isStale);
    EXPECT_EQ(m_known.StateOf(GnssSystem::Sbas, GpsAt(0, 0)).healthy, 0);
    EXPECT_EQ(Constellations().StateOf(GnssSystem::Gps, 0.0).satellites, 0);
}

TEST_F(ConstellationsTest, OutliveTheProgramInTheirFile)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(LoadConstellations(folder.Path()).constellations.Records().empty());
    const std::vector<NavigationRecord> records = ReadNavigation(Messages()).records;
    m_known.Add(records);
    ASSERT_FALSE(KeepMessages(folder.Path() / "new", records, GpsAt(12, 0)));
    const KeptNavigation kept = LoadConstellations(folder.Path() / "new");
    EXPECT_FALSE(kept.error);
    ASSERT_EQ(kept.constellations.Records().size(), m_known.Records().size());
    EXPECT_EQ(kept.constellations.Satellites(SystemSet().set()).size(), 8U);

    // A satellite that was not heard of for 30 days is forgotten, but not for a wrong date.
    NavigationRecord other = At(24 * 31);
    other.satellite.number = 12;
    const auto satellites = [&] {
        const Constellations now = LoadConstellations(folder.Path() / "new").constellations;
        return now.Satellites(SystemSetOf(GnssSystem::Galileo)).size();
    };
    ASSERT_FALSE(KeepMessages(folder.Path() / "new", std::array{other}, GpsAt(12, 0)));
    EXPECT_EQ(satellites(), 2U);
    ASSERT_FALSE(KeepMessages(folder.Path() / "new", std::array{other}, other.ReferenceS()));
    EXPECT_EQ(satellites(), 1U);
    // What cannot be read is told, and is not there.
    folder.Write("new/GSurveyPlan.nav", "something else");
    EXPECT_TRUE(LoadConstellations(folder.Path() / "new").error);
    // A file that cannot be written leaves the folder as it is.
    folder.Write("file", "");
    EXPECT_TRUE(KeepMessages(folder.Path() / "file", records, GpsAt(12, 0)));
}

} // namespace
} // namespace fieldcore
