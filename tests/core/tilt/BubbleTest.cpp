// Where the bubble stands, and the values that decide it. Expected pixels are worked out by hand:
// with 40 arc minutes for 2 mm a radian is 649.653 pixels.

#include "core/tilt/Bubble.h"
#include "core/tilt/TiltSettings.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

#include <cmath>
#include <limits>
#include <random>

namespace fieldcore {
namespace {

using testing::SensorLine;
using testing::SensorWords;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TiltReading Leaning(double t1Rad, double t2Rad, double tiltRad)
{
    TiltReading reading;
    reading.state = 1;
    reading.sensorPresent = true;
    reading.calibrated = true;
    reading.t1Rad = t1Rad;
    reading.t2Rad = t2Rad;
    reading.tiltRad = tiltRad;
    return reading;
}

TEST(BubbleConfig, BringsValuesIntoTheirRanges)
{
    const SensorLine line; // which makes all values those of a new user
    struct Row
    {
        int (*set)(double);
        double value;
        int changed;
        double (*get)();
        double kept;
    };
    constexpr auto kSensitivity = [](double v) { return eBubbleConfig::SetBubbleSensitivity(v); };
    constexpr auto kViscosity = [](double v) {
        return eBubbleConfig::SetBubbleViscosity(static_cast<int>(v));
    };
    constexpr auto kDuration = [](double v) { return eBubbleConfig::SetBubbleDuration(v); };
    constexpr auto kExpiry = [](double v) {
        return eBubbleConfig::SetBubbleExpiry(static_cast<int>(v));
    };
    constexpr auto kGetSensitivity = [] { return eBubbleConfig::GetBubbleSensitivity(); };
    constexpr auto kGetViscosity = [] { return double(eBubbleConfig::GetBubbleViscosity()); };
    constexpr auto kGetDuration = [] { return eBubbleConfig::GetBubbleDuration(); };
    constexpr auto kGetExpiry = [] { return double(eBubbleConfig::GetBubbleExpiry()); };
    const Row rows[] = {
        {kSensitivity, 40.0, 0, kGetSensitivity, 40.0},
        {kSensitivity, -5.5, 1, kGetSensitivity, -5.5}, // any number
        {kSensitivity, kNan, 0, kGetSensitivity, -5.5},
        {kSensitivity, kInfinity, 0, kGetSensitivity, -5.5},
        {kViscosity, 1, 0, kGetViscosity, 1},
        {kViscosity, 5, 1, kGetViscosity, 2},
        {kViscosity, 5, 0, kGetViscosity, 2},
        {kViscosity, 2, 0, kGetViscosity, 2},
        {kViscosity, -1, 1, kGetViscosity, 0},
        {kDuration, 0.02, 0, kGetDuration, 0.02},
        {kDuration, 0.0, 1, kGetDuration, 0.001},
        {kDuration, 0.001, 0, kGetDuration, 0.001},
        {kDuration, 3.0, 1, kGetDuration, 1.0},
        {kDuration, kInfinity, 0, kGetDuration, 1.0},
        {kDuration, kNan, 0, kGetDuration, 1.0},
        {kExpiry, 720, 0, kGetExpiry, 720},
        {kExpiry, 0, 1, kGetExpiry, 1},
        {kExpiry, 30000, 1, kGetExpiry, 30000},
        {kExpiry, 50000, 0, kGetExpiry, 30000},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(rows[i].set(rows[i].value), rows[i].changed);
        EXPECT_EQ(rows[i].get(), rows[i].kept);
    }
}

TEST(BubbleConfig, ReadsAndWritesTexts)
{
    const SensorLine line;
    struct Row
    {
        const wchar_t* sensitivity;
        const wchar_t* viscosity;
        const wchar_t* duration;
        double sensitivityRead;
        int viscosityRead;
        double durationRead;
        const wchar_t* durationWritten;
    };
    const Row rows[] = {
        {L"40.7", L"2", L"150", 40.0, 2, 0.15, L"150"}, // whole numbers
        {L" 8 min", L"0x1", L"20.9", 8.0, 0, 0.02, L"20"},
        {L"abc", L"", L"mm", 0.0, 0, 0.001, L"1"}, // no numbers
        {L"-70", L"-3", L"-3", -70.0, 0, 0.001, L"1"},
        {L"99999999999999999999", L"7", L"1e9", 2147483647.0, 2, 0.001, L"1"},
        {L"130", L"1", L"2000", 130.0, 1, 1.0, L"1000"},
    };
    const wchar_t* const kKey = L"GPS\\eBubble"; // without the backslash that GetKeyPrm() has
    for (const Row& row : rows) {
        SCOPED_TRACE(row.durationRead);
        line.reg.WriteString(kKey, L"Sensitivity", row.sensitivity);
        line.reg.WriteString(kKey, L"Viscosity", row.viscosity);
        line.reg.WriteString(kKey, L"Duration", row.duration);
        eBubbleConfig::LoadBubbleData(line.reg);
        EXPECT_EQ(eBubbleConfig::GetBubbleSensitivity(), row.sensitivityRead);
        EXPECT_EQ(eBubbleConfig::GetBubbleViscosity(), row.viscosityRead);
        EXPECT_DOUBLE_EQ(eBubbleConfig::GetBubbleDuration(), row.durationRead);
        ASSERT_EQ(eBubbleConfig::SaveBubbleData(line.reg), 1);
        std::wstring text;
        line.reg.ReadString(kKey, L"Duration", text, L"");
        EXPECT_EQ(text, row.durationWritten);
    }
    line.reg.WriteNumber(kKey, L"Sensitivity", 8); // of another type
    line.reg.DeleteKey(L"GPS", L"eBubble");
    eBubbleConfig::LoadBubbleData(line.reg);
    EXPECT_EQ(eBubbleConfig::GetBubbleSensitivity(), 40.0);
    EXPECT_EQ(eBubbleConfig::GetBubbleViscosity(), 1);
    EXPECT_EQ(eBubbleConfig::GetBubbleDuration(), 0.02);
}

TEST(Bubble, StandsWhereTheTiltPutsIt)
{
    struct Row
    {
        const char* fault;
        double t1, t2;
        double sensitivity;
        int x, y;
    };
    const Row rows[] = {
        {"axes: the second component moves it right", 0.0, 0.01, 40, 6, 0},
        {"axes: the first component moves it up", 0.01, 0.0, 40, 0, -6},
        {"cut, not rounded or floored", 0.015, -0.0169, 40, -10, -9}, // -10.98, -9.74
        {"sensitivity", 0.0, 0.01, 8, 31, 0},                         // 32.48: on the circle
        {"just inside the circle", 0.0, 0.0477, 40, 30, 0},           // 30.99
        {"100 pixels: on the circle, same direction", 0.0, 0.15394, 40, 31, 0},
        // -64.96, 64.96: u = -64 / 90.5 * 31 = -21.9, v = sqrt(961 - 21^2) = 22.8
        {"the second coordinate follows from the cut first one", -0.1, -0.1, 40, -21, 22},
        {"signs below", 0.1, 0.1, 40, 21, -22},
        {"mostly up", 10.0, 1e-5, 40, 0, -31},
        {"a sensitivity of 0 is drawn with 40", 0.0, 0.01, 0, 6, 0},
        {"a negative one too", 0.0, 0.01, -8, 6, 0},
        {"one too small to divide by", 0.0, 0.01, 1e-320, 6, 0},
        {"huge tilts keep their direction", 1e308, -1e308, 40, -21, -22},
        {"huge against none", 0.0, -1e308, 1e-200, -31, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const BubblePicture picture =
            PictureOf(Leaning(row.t1, row.t2, 0.0), {row.sensitivity, 0.02, 0.0});
        ASSERT_TRUE(picture.showBubble);
        EXPECT_EQ(picture.x, row.x);
        EXPECT_EQ(picture.y, row.y);
        EXPECT_EQ(picture.ringRadius, 0) << "no antenna height, no ring";
        EXPECT_TRUE(picture.isWithinTolerance);
    }
    EXPECT_NEAR(BubbleScale(40.0), 649.653, 0.001);
}

TEST(Bubble, JudgesTheTolerance)
{
    struct Row
    {
        const char* fault;
        double tilt, height, tolerance, sensitivity;
        bool within;
        int ring;
    };
    // 46 pixels are 0.0708071 rad, whose sine is 0.0707479. At 2 m that is 0.141496 m.
    const Row rows[] = {
        {"0.02 / 0.141496 * 46 = 6.5, and 15", 0.0099, 2.0, 0.02, 40, true, 21},
        {"beside by more than the tolerance", 0.0101, 2.0, 0.02, 40, false, 21},
        {"exactly at the tolerance is outside", 0.0, 2.0, 0.0, 40, false, 15},
        {"the height counts", 0.0101, 1.9, 0.02, 40, true, 21},   // 6.84
        {"just inside the rim", 0.0099, 0.5, 0.02, 40, true, 41}, // 26.01
        {"at most the rim", 0.0099, 0.2, 0.02, 40, true, 46},
        {"negative height: unknown", 1.0, -2.0, 0.02, 40, true, 0},
        {"no ring size can be had", 0.0, 2.0, 0.02, 2000, true, 46}, // sine of 3.54 rad
        {"upside down", 3.14159, 2.0, 0.02, 40, false, 21},
        {"a sensor's negative angle", -0.5, 2.0, 0.02, 40, true, 21},
        {"endless height", 0.1, kInfinity, 0.02, 40, false, 15},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const BubblePicture picture =
            PictureOf(Leaning(0, 0, row.tilt), {row.sensitivity, row.tolerance, row.height});
        EXPECT_EQ(picture.isWithinTolerance, row.within);
        EXPECT_EQ(picture.ringRadius, row.ring);
    }
}

TEST(Bubble, StaysInItsCircleWhateverComes)
{
    std::mt19937_64 random(20261121); // NOLINT(cert-msc51-cpp): the same tilts every time
    const auto any = [&random] {
        double value = 0.0;
        do {
            value = std::bit_cast<double>(random());
        } while (!std::isfinite(value));
        return random() % 4 == 0 ? std::fmod(value, 1.0) : value;
    };
    for (int i = 0; i < 200000; ++i) {
        const BubblePicture picture =
            PictureOf(Leaning(any(), any(), any()), {any(), any(), any()});
        ASSERT_LE(picture.x * picture.x + picture.y * picture.y, 31 * 31) << i;
        ASSERT_LE(picture.ringRadius, 46) << i;
    }
}

TEST(Bubble, IsShownOnlyWhenTheSensorCanBeBelieved)
{
    struct Row
    {
        const char* fault;
        bool present;
        int state;
        bool calibrated;
        bool notReady, needsCalibration, shown;
    };
    const Row rows[] = {
        {"measuring and calibrated", true, 1, true, false, false, true},
        {"not calibrated", true, 1, false, false, true, false},
        {"moving too fast", true, 2, true, false, false, false},
        {"out of range", true, 3, true, false, false, false},
        {"out of range and not calibrated", true, 3, false, false, true, false},
        {"starting", true, 0, false, true, false, false},
        {"no sensor", false, 1, true, true, false, false},
        {"no sensor to calibrate", false, 1, false, true, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        TiltReading reading = Leaning(0, 0, 0);
        reading.sensorPresent = row.present;
        reading.state = row.state;
        reading.calibrated = row.calibrated;
        const BubblePicture picture = PictureOf(reading, {});
        EXPECT_EQ(picture.isNotReady, row.notReady);
        EXPECT_EQ(picture.needsCalibration, row.needsCalibration);
        EXPECT_EQ(picture.showBubble, row.shown);
    }
}

TEST(TiltQuestion, TellsWhyThereIsNoReading)
{
    struct Row
    {
        const char* fault;
        unsigned status;
        bool answers;
        const char* rule; // of the line
        TiltState state;
        bool isKnown; // the reading, afterwards
    };
    const Row rows[] = {
        {"there", 0x41, true, "", TiltState::Heard, true},
        {"unplugged", 0x00, true, "", TiltState::Absent, true},
        {"silent", 0x41, false, "", TiltState::Silent, false},
        {"never built in", 0x41, true, "nak on C8", TiltState::NotBuiltIn, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorLine line;
        SensorWords words;
        words.status = row.status;
        words.answers = row.answers;
        line.Say(words);
        EXPECT_EQ(AskTilt(line.command, true), TiltState::NoReceiver);
        if (*row.rule == '\0') {
            ASSERT_NO_FATAL_FAILURE(line.StartSensor(std::chrono::milliseconds(500)));
        } else {
            ASSERT_NO_FATAL_FAILURE(line.Start({}, std::chrono::seconds(20)));
            line.simulator->AddFault(testing::ParsedRule(row.rule));
        }
        EXPECT_EQ(AskTilt(line.command, true), row.state);
        const Receiver known = line.command.Heard();
        EXPECT_EQ(known.tilt.has_value(), row.isKnown);
        EXPECT_EQ(known.calibration.has_value(), row.isKnown) << "the record behind it";
        CCommand other(line.command, SilentHost::Instance());
        EXPECT_EQ(other.Heard(), known) << "one value for all faces of the line";
    }
}

} // namespace
} // namespace fieldcore
