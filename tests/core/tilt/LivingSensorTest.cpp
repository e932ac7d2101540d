// A sensor on a pole that moves, that comes and goes, and whose calibration ends in every way.

#include "core/resources/StringTable.h"
#include "core/tilt/Bubble.h"
#include "core/tilt/CalibrationRun.h"
#include "core/tilt/TiltQuestion.h"
#include "tests/core/tilt/SensorLine.h"

#include <algorithm>
#include <functional>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::SensorLine;

constexpr double kSpeed = 20.0; // a tick of 200 ms is 10 ms here

simulator::Scenario WithSensor(const std::string& lines)
{
    std::string error;
    auto scenario = simulator::ParseScenario("model 3051\noptions tilt\n" + lines + "\n", error);
    EXPECT_TRUE(scenario) << error;
    return scenario.value_or(simulator::Scenario());
}

/// What the sensor says now makes this.
BubblePicture Look(SensorLine& line)
{
    EXPECT_TRUE(IsAnswered(AskTilt(line.command, false)));
    const auto reading = line.command.Heard().tilt;
    EXPECT_TRUE(reading);
    return reading ? PictureOf(reading->value, {}) : BubblePicture();
}

/// What is shown tick by tick, for so long.
std::vector<BubblePicture> Watch(SensorLine& line, std::chrono::seconds time)
{
    std::vector<BubblePicture> pictures;
    const Clock::Duration end = line.clock.Steady() + time;
    while (line.clock.Steady() < end) {
        pictures.push_back(Look(line));
        line.clock.Sleep(kBubbleRhythm.interval);
    }
    return pictures;
}

TEST(LivingSensor, TheBubbleFollowsThePole)
{
    using Pictures = std::vector<BubblePicture>;
    const auto away = [](const BubblePicture& p) { return p.x * p.x + p.y * p.y; };
    constexpr int kAtReach = 30 * 30; // whole pixels, cut
    struct Row
    {
        const char* fault;
        const char* pole;
        std::chrono::seconds time;
        std::function<bool(const Pictures&)> isRight;
    };
    const auto none = [](const Pictures& all) {
        return std::none_of(all.begin(), all.end(), [](const auto& p) { return p.showBubble; }) &&
               std::none_of(all.begin(), all.end(), [](const auto& p) { return p.isNotReady; });
    };
    const Row rows[] = {
        {"still: it trembles or leaves its place", "tilt-pole still 0.34 0.46", 2s,
         [](const Pictures& all) {
             return std::all_of(all.begin(), all.end(), [](const auto& p) {
                 return p.showBubble && p.x == 5 && p.y == -3; // 0.0080 and 0.0059 rad
             });
         }},
        {"swaying by half a degree: 5.7 pixels to each side", "tilt-pole swaying 0.5 4", 12s,
         [](const Pictures& all) {
             const auto [left, right] = std::minmax_element(
                 all.begin(), all.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
             return left->showBubble && left->x >= -1 && left->x <= 1 && right->x >= 9 &&
                    right->x <= 10;
         }},
        {"falling: to the circle in one direction, then out of sight", "tilt-pole falling 2", 10s,
         [&](const Pictures& all) {
             const auto gone =
                 std::find_if(all.begin(), all.end(), [](const auto& p) { return !p.showBubble; });
             return gone - all.begin() > 3 && gone != all.end() && away(all.front()) < kAtReach &&
                    away(*(gone - 1)) >= kAtReach && (gone - 1)->y < -29 &&
                    std::none_of(gone, all.end(), [](const auto& p) { return p.showBubble; });
         }},
        {"falling too fast to be measured", "tilt-pole falling 6", 1s, none},
        {"beyond the range", "tilt-pole still 14 -8", 1s, none},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorLine line(kSpeed);
        ASSERT_NO_FATAL_FAILURE(line.Start(WithSensor(row.pole)));
        EXPECT_TRUE(row.isRight(Watch(line, row.time)));
    }
}

TEST(LivingSensor, TheBubbleComesAndGoesWithTheSensor)
{
    SensorLine line(kSpeed);
    ASSERT_NO_FATAL_FAILURE(
        line.Start(WithSensor("tilt-present no 2 yes 6 no 8 yes\ntilt-starting 1")));
    std::vector<bool> shown;
    for (const BubblePicture& picture : Watch(line, 12s)) {
        EXPECT_EQ(picture.isNotReady, !picture.showBubble);
        if (shown.empty() || shown.back() != picture.showBubble) {
            shown.push_back(picture.showBubble);
        }
    }
    EXPECT_EQ(shown, (std::vector{false, true, false, true}));
}

TEST(LivingSensor, ACalibrationEndsInEveryWay)
{
    using State = CalibrationRun::State;
    struct Row
    {
        const char* fault;
        const char* sensor;
        std::chrono::seconds cancelAfter;
        State end;
        int textId;
    };
    constexpr auto kNever = 1000s;
    const Row rows[] = {
        {"succeeds", "tilt-calibrated no\ntilt-calibration succeeds 12", kNever, State::Done,
         text::kTiltCompleted},
        {"fails", "tilt-calibration fails 8", kNever, State::Failed, text::kTiltFailed},
        {"the pole moves", "tilt-pole falling 6 5", kNever, State::Failed, text::kTiltFailed},
        {"the sensor is unplugged", "tilt-present yes 5 no", kNever, State::Failed,
         text::kTiltFailed},
        {"cancelled", "tilt-calibration succeeds 60", 5s, State::Aborted, text::kTiltAborted},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorLine line(kSpeed);
        ASSERT_NO_FATAL_FAILURE(line.Start(WithSensor(row.sensor)));
        CalibrationRun run;
        run.Tick(line.command);
        const Clock::Duration began = line.clock.Steady();
        int percent = 0;
        while (!run.IsOver() && line.clock.Steady() - began < 60s) {
            if (line.clock.Steady() - began >= row.cancelAfter) {
                run.Cancel();
            }
            run.Tick(line.command);
            EXPECT_GE(run.ProgressPercent(), percent) << "it went back";
            percent = run.ProgressPercent();
            line.clock.Sleep(CalibrationRun::kInterval);
        }
        EXPECT_EQ(run.GetState(), row.end);
        TiltSettings::LastRun() = run.Result();
        TiltSettings settings(&line.command, line.reg);
        ASSERT_TRUE(settings.Refresh());
        EXPECT_EQ(settings.StatusTextId(), row.textId);
        EXPECT_EQ(RemainingSeconds(settings.Record(), settings.Reading()) > 0,
                  row.end == State::Done);
    }
}

TEST(LivingSensor, ACalibrationGetsTooOldAndALongerPeriodMakesItGood)
{
    SensorLine line;
    ASSERT_NO_FATAL_FAILURE(line.Start(WithSensor("tilt-validity 720\ntilt-calibrated 719.975")));
    TiltSettings settings(&line.command, line.reg);
    settings.Open();
    ASSERT_TRUE(settings.Refresh());
    EXPECT_EQ(settings.StatusTextId(), text::kTiltCompleted);
    const long long left = RemainingSeconds(settings.Record(), settings.Reading());
    EXPECT_GT(left, 0);
    EXPECT_LE(left, 90);
    line.clock.Sleep(95s);
    ASSERT_TRUE(settings.Refresh());
    EXPECT_EQ(settings.StatusTextId(), text::kTiltExpired);
    EXPECT_EQ(settings.Remain(), L"あと0日0時間0分0秒");
    EXPECT_TRUE(Look(line).needsCalibration);
    EXPECT_EQ(settings.EnterExpiry(L"744"), 1);
    ASSERT_TRUE(settings.Refresh());
    EXPECT_EQ(settings.StatusTextId(), text::kTiltCompleted);
    EXPECT_GT(RemainingSeconds(settings.Record(), settings.Reading()), 23 * 3600);
    EXPECT_TRUE(Look(line).showBubble);
}

} // namespace
} // namespace fieldcore
