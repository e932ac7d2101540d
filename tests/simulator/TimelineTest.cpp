// What changes with the receiver's time: fix, power, offset of UTC, the tilt sensor.

#include "simulator/Receiver.h"
#include "tests/simulator/Support.h"

#include <bit>
#include <cmath>
#include <numbers>

namespace fieldcore::simulator::test {

namespace {

std::uint64_t Number(const Bytes& data, std::size_t at, std::size_t width)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = value << 8U | data.at(at + i);
    }
    return value;
}

} // namespace

TEST(Timeline, TheFixComesAndGoesAndTheRepliesAgree)
{
    using Row = std::tuple<std::chrono::seconds, char, char, std::string_view, bool, std::uint8_t>;
    constexpr Row kRows[] = {{0s, '1', '0', "99.9", false, 1},   {19s, '1', '0', "99.9", false, 1},
                             {20s, '2', '1', " 1.8", true, 1},   {60s, '5', '1', " 1.8", true, 1},
                             {120s, '5', '1', " 1.8", true, 3},  {300s, '0', '1', "99.9", false, 3},
                             {9999s, '0', '1', "99.9", false, 3}};
    HandClock clock;
    Receiver receiver(Parsed("fix searching 20 single 60 fixed 300 none\n"
                             "power-source 1 120 3\n"
                             "satellite G2 41 63 48\n"),
                      clock);
    for (const auto& [at, fix, timeValid, pdopText, used, powerSource] : kRows) {
        SCOPED_TRACE(at.count());
        clock.Advance(at - clock.Steady());
        const Bytes status = Data(receiver, 0x08);
        EXPECT_EQ(status[14], fix);
        EXPECT_EQ(status[0], timeValid) << "known from the first position on";
        EXPECT_EQ(std::string(status.begin() + 10, status.begin() + 14), pdopText);
        const Bytes position = Data(receiver, 0x34);
        EXPECT_EQ(position[0], fix - '0');
        EXPECT_EQ(position[1] > 0, used);
        EXPECT_EQ(Number(position, 6, 4), 345600U + static_cast<std::uint64_t>(at.count()));
        const auto pdop = std::bit_cast<float>(static_cast<std::uint32_t>(Number(position, 10, 4)));
        EXPECT_FLOAT_EQ(pdop, used ? 1.8F : 99.9F);
        EXPECT_EQ(Data(receiver, 0x41)[0], powerSource);
    }
}

TEST(TiltSensor, ACalibrationTakesItsTimeAndEndsAsTheScenarioSays)
{
    // With the calibration byte after 20 s.
    constexpr std::tuple<std::string_view, std::string_view, std::uint8_t> kRows[] = {
        {"succeeds", "", 0x19},
        {"is still running", "tilt-calibration succeeds 21", 0x0A},
        {"fails", "tilt-calibration fails 20", 0x0B},
        {"the pole sways within its limits", "tilt-pole swaying 1 4", 0x19},
        {"the pole sways too fast", "tilt-pole swaying 5 2", 0x0B},
        {"the pole falls", "tilt-pole falling 3 12", 0x0B},
        {"the pole falls later", "tilt-pole falling 3 60", 0x19},
        {"the sensor goes away for a moment", "tilt-present yes 12 no 13 yes", 0x0B},
    };
    for (const auto& [fault, scenario, after20s] : kRows) {
        SCOPED_TRACE(fault);
        HandClock clock;
        Receiver receiver(Parsed("options tilt\ntilt-calibrated no\n" + std::string(scenario)),
                          clock);
        EXPECT_EQ(Data(receiver, 0xC8, "01 00")[3], 0x08) << "not completed, believable";
        ASSERT_EQ(Ask(receiver, 0xC8, "04"), kAccepted);
        clock.Advance(20s);
        EXPECT_EQ(Data(receiver, 0xC8, "01 00")[3], after20s);
    }
}

TEST(TiltSensor, TellsHowFarACalibrationIsAndWhenItWasMade)
{
    HandClock clock;
    Receiver receiver(Shipped("tilted"), clock);
    ASSERT_EQ(Ask(receiver, 0xC8, "04"), kAccepted);
    clock.Advance(5s);
    EXPECT_EQ(Data(receiver, 0xC8, "01 00")[3], 0x0A) << "running, believable, not calibrated";
    EXPECT_EQ(Data(receiver, 0xC8, "01 01"), Hex("01 01 02D0 FFFF 00000000 19")); // 25 %
    clock.Advance(25s);
    EXPECT_EQ(Data(receiver, 0xC8, "01 01"), Hex("01 01 02D0 096A 00054614 00"))
        << "second 345620, though nobody asked then";
    ASSERT_EQ(Ask(receiver, 0xC8, "04"), kAccepted);
    ASSERT_EQ(Ask(receiver, 0xC8, "05"), kAccepted);
    EXPECT_EQ(Data(receiver, 0xC8, "01 00")[3], 0x08) << "cancelled: not completed";
}

TEST(TiltSensor, TheReadingFollowsThePole)
{
    using Row = std::tuple<std::string_view, std::string_view, std::chrono::milliseconds,
                           std::uint8_t, double>;
    constexpr Row kRows[] = {
        {"still", "tilt-pole still 3 4", 5s, 0x41, 5.0},
        {"beyond the range", "tilt-pole still 12 -16", 5s, 0x43, 20.0},
        {"quarter of a period", "tilt-pole still 0 0\ntilt-pole swaying 2 4", 1s, 0x41, 2.0},
        {"too fast", "tilt-pole still 0 0\ntilt-pole swaying 4 4", 1s, 0x42, 4.0},
        {"before it falls", "tilt-pole still 1 0\ntilt-pole falling 2 10", 10s, 0x41, 1.0},
        {"while it falls", "tilt-pole still 1 0\ntilt-pole falling 2 10", 13s, 0x41, 7.0},
        {"falls fast", "tilt-pole still 0 0\ntilt-pole falling 6 10", 12s, 0x42, 12.0},
        {"on the ground", "tilt-pole still 1 0\ntilt-pole falling 2 10", 1h, 0x43, 90.0},
        {"starting", "tilt-pole still 3 4\ntilt-starting 6", 5s, 0x40, 5.0},
        {"started", "tilt-pole still 3 4\ntilt-starting 5", 5s, 0x41, 5.0},
        {"starting again", "tilt-starting 5\ntilt-pole still 0 0\ntilt-present yes 10 no 20 yes",
         24s, 0x40, 0.0},
        {"both errors", "tilt-errors 3\ntilt-pole still 0 0", 5s, 0x71, 0.0},
        {"no sensor", "tilt-present no", 5s, 0x00, 0.0},
        {"unplugged", "tilt-present yes 5 no", 5s, 0x00, 0.0},
    };
    for (const auto& [fault, pole, at, state, tiltDeg] : kRows) {
        SCOPED_TRACE(fault);
        HandClock clock;
        Receiver receiver(Parsed("options tilt\n" + std::string(pole)), clock);
        clock.Advance(at);
        const Bytes reading = Data(receiver, 0xC8, "01 00");
        EXPECT_EQ(reading[2], state);
        const double t1 = std::bit_cast<double>(Number(reading, 4, 8));
        const double t2 = std::bit_cast<double>(Number(reading, 12, 8));
        const double tilt = std::bit_cast<double>(Number(reading, 20, 8));
        // 1e-9 degrees: far below what a sensor knows.
        EXPECT_NEAR(tilt * 180.0 / std::numbers::pi, tiltDeg, 1e-9);
        EXPECT_NEAR(std::sqrt(t1 * t1 + t2 * t2), tilt, 1e-12);
        EXPECT_EQ(Ask(receiver, 0xC8, "04") == kAccepted, state != 0)
            << "a sensor that is away does nothing";
    }
}

} // namespace fieldcore::simulator::test
