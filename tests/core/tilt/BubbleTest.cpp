// Where the bubble stands, and the values that decide it. Expected pixels are worked out by hand:
// with 40 arc minutes for 2 mm a radian is 649.653 pixels.

#include "core/tilt/Bubble.h"
#include "core/tilt/TiltSettings.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

#include <limits>
#include <sstream>
#include <tuple>

namespace fieldcore {
namespace {

using testing::SensorLine;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TiltReading Leaning(double t1Rad, double t2Rad, double tiltRad)
{
    return {.state = 1,
            .sensorPresent = true,
            .calibrated = true,
            .t1Rad = t1Rad,
            .t2Rad = t2Rad,
            .tiltRad = tiltRad,
            .time = {}};
}

/// What is kept of each value that is set, one after another. Told is whether that changed it.
template <typename Value>
void ExpectKept(int (*set)(Value), Value (*get)(),
                std::initializer_list<std::pair<Value, Value>> values)
{
    for (const auto& [value, kept] : values) {
        SCOPED_TRACE(value);
        const bool changes = get() != kept;
        EXPECT_EQ(set(value), changes ? 1 : 0);
        EXPECT_EQ(get(), kept);
    }
}

TEST(BubbleConfig, BringsValuesIntoTheirRanges)
{
    using Config = eBubbleConfig;
    const SensorLine line; // which makes all values those of a new user
    ExpectKept(Config::SetBubbleSensitivity, Config::GetBubbleSensitivity, // any number
               {{40.0, 40.0}, {-5.5, -5.5}, {kNan, -5.5}, {kInfinity, -5.5}});
    ExpectKept(Config::SetBubbleViscosity, Config::GetBubbleViscosity,
               {{1, 1}, {5, 2}, {5, 2}, {-1, 0}});
    ExpectKept(Config::SetBubbleDuration, Config::GetBubbleDuration,
               {{0.02, 0.02}, {0.0, 0.001}, {3.0, 1.0}, {kInfinity, 1.0}, {kNan, 1.0}});
    ExpectKept(Config::SetBubbleExpiry, Config::GetBubbleExpiry,
               {{720, 720}, {0, 1}, {30000, 30000}, {50000, 30000}});
}

TEST(BubbleConfig, ReadsAndWritesTexts)
{
    const SensorLine line;
    // Sensitivity, viscosity and duration as stored, and as read; the duration as written again.
    using Stored = const wchar_t*;
    const std::tuple<Stored, Stored, Stored, const char*, Stored> rows[] = {
        {L"40.7", L"2", L"150", "40 2 0.15", L"150"}, // whole numbers
        {L" 8 min", L"0x1", L"20.9", "8 0 0.02", L"20"},
        {L"abc", L"", L"mm", "0 0 0.001", L"1"}, // no numbers
        {L"99999999999999999999", L"7", L"-3", "2.14748e+09 2 0.001", L"1"},
        {L"-130", L"1", L"2000", "-130 1 1", L"1000"},
    };
    const wchar_t* const kKey = L"GPS\\eBubble"; // without the backslash that GetKeyPrm() has
    const auto now = [] {
        std::ostringstream words;
        words << eBubbleConfig::GetBubbleSensitivity() << ' ' << eBubbleConfig::GetBubbleViscosity()
              << ' ' << eBubbleConfig::GetBubbleDuration();
        return words.str();
    };
    for (const auto& [sensitivity, viscosity, duration, read, durationWritten] : rows) {
        SCOPED_TRACE(read);
        line.reg.WriteString(kKey, L"Sensitivity", sensitivity);
        line.reg.WriteString(kKey, L"Viscosity", viscosity);
        line.reg.WriteString(kKey, L"Duration", duration);
        eBubbleConfig::LoadBubbleData(line.reg);
        EXPECT_EQ(now(), read);
        ASSERT_EQ(eBubbleConfig::SaveBubbleData(line.reg), 1);
        std::wstring text;
        line.reg.ReadString(kKey, L"Duration", text, L"");
        EXPECT_EQ(text, durationWritten);
    }
    line.reg.DeleteKey(L"GPS", L"eBubble");
    line.reg.WriteNumber(kKey, L"Sensitivity", 8); // of another type
    eBubbleConfig::LoadBubbleData(line.reg);
    EXPECT_EQ(now(), "40 1 0.02");
}

TEST(Bubble, StandsWhereTheTiltPutsIt)
{
    // Both components, rad, the sensitivity, and where the bubble stands.
    const std::tuple<const char*, double, double, double, int, int> rows[] = {
        {"axes: the second component moves it right", 0.0, 0.01, 40, 6, 0},
        {"axes: the first component moves it up", 0.01, 0.0, 40, 0, -6},
        {"cut, not rounded or floored", 0.015, -0.0169, 40, -10, -9}, // -10.98, -9.74
        {"sensitivity", 0.0, 0.01, 8, 31, 0},                         // 32.48: on the circle
        {"just inside the circle", 0.0, 0.0477, 40, 30, 0},           // 30.99
        {"100 pixels: on the circle, same direction", 0.0, 0.15394, 40, 31, 0},
        // -64.96, 64.96: u = -64 / 90.5 * 31 = -21.9, v = sqrt(961 - 21^2) = 22.8
        {"the second coordinate follows from the cut first one", -0.1, -0.1, 40, -21, 22},
        {"a sensitivity of 0 is drawn with 40", 0.0, 0.01, 0, 6, 0},
        {"a negative one too", 0.0, 0.01, -8, 6, 0},
        {"one too small to divide by", 0.0, 0.01, 1e-320, 6, 0},
        {"squares that fit no double", 1e200, -1e200, 40, -21, -22},
        {"huge tilts keep their direction", 1e308, -1e308, 40, -21, -22},
        {"huge against none", 0.0, -1e308, 1e-200, -31, 0},
    };
    for (const auto& [fault, t1, t2, sensitivity, x, y] : rows) {
        SCOPED_TRACE(fault);
        const BubblePicture picture = PictureOf(Leaning(t1, t2, 0.0), {sensitivity, 0.02, 0.0});
        ASSERT_TRUE(picture.showBubble);
        EXPECT_EQ(picture.x, x);
        EXPECT_EQ(picture.y, y);
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

TEST(Bubble, IsShownOnlyWhenTheSensorCanBeBelieved)
{
    // Whether there is a sensor, its state, whether it is calibrated, and what is shown.
    const std::tuple<const char*, bool, int, bool, std::string> rows[] = {
        {"measuring and calibrated", true, 1, true, "bubble"},
        {"not calibrated", true, 1, false, "calibrate"},
        {"moving too fast", true, 2, true, ""},
        {"out of range", true, 3, true, ""},
        {"out of range and not calibrated", true, 3, false, "calibrate"},
        {"starting", true, 0, true, "not ready"},
        {"no sensor", false, 1, true, "not ready"},
        {"no sensor to calibrate", false, 1, false, "not ready"},
    };
    for (const auto& [fault, present, state, calibrated, expected] : rows) {
        SCOPED_TRACE(fault);
        TiltReading reading = Leaning(0, 0, 0);
        reading.sensorPresent = present;
        reading.state = state;
        reading.calibrated = calibrated;
        const BubblePicture picture = PictureOf(reading, {});
        EXPECT_EQ(std::string(picture.isNotReady ? "not ready" : "") +
                      (picture.needsCalibration ? "calibrate" : "") +
                      (picture.showBubble ? "bubble" : ""),
                  expected);
    }
}

TEST(TiltQuestion, TellsWhyThereIsNoReading)
{
    // What the sensor says, the line's fault, and whether there is a reading afterwards.
    const std::tuple<const char*, unsigned, bool, const char*, TiltState, bool> rows[] = {
        {"there", 0x41, true, "", TiltState::Heard, true},
        {"unplugged", 0x00, true, "", TiltState::Absent, true},
        {"silent", 0x41, false, "", TiltState::Silent, false},
        {"never built in", 0x41, true, "nak on C8", TiltState::NotBuiltIn, false},
    };
    for (const auto& [fault, status, answers, rule, state, isKnown] : rows) {
        SCOPED_TRACE(fault);
        SensorLine line;
        line.Say({.status = status, .answers = answers});
        EXPECT_EQ(AskTilt(line.command, true), TiltState::NoReceiver);
        if (*rule == '\0') {
            ASSERT_NO_FATAL_FAILURE(line.StartSensor(std::chrono::seconds(answers ? 200 : 1)));
        } else {
            ASSERT_NO_FATAL_FAILURE(line.Start({}, std::chrono::seconds(20)));
            line.simulator->AddFault(testing::ParsedRule(rule));
        }
        EXPECT_EQ(AskTilt(line.command, true), state);
        const Receiver known = line.command.Heard();
        EXPECT_EQ(known.tilt.has_value(), isKnown);
        EXPECT_EQ(known.calibration.has_value(), isKnown) << "the record behind it";
        CCommand other(line.command, SilentHost::Instance());
        EXPECT_EQ(other.Heard().tilt.has_value(), isKnown) << "one value for all faces";
    }
}

} // namespace
} // namespace fieldcore
