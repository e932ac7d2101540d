// A sensor whose calibration ends in every way, and grows old.

#include "core/resources/StringTable.h"
#include "core/tilt/Bubble.h"
#include "core/tilt/CalibrationRun.h"
#include "core/tilt/TiltSettings.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::SensorLine;

constexpr double kSpeed = 20.0; // a tick of 200 ms is 10 ms here

simulator::Scenario WithSensor(const std::string& lines)
{
    return testing::ParsedScenario("model 3051\noptions tilt\n" + lines + "\n");
}

/// What the sensor says now makes this.
BubblePicture Look(SensorLine& line)
{
    EXPECT_TRUE(IsAnswered(AskTilt(line.command, false)));
    const auto reading = line.command.Heard().tilt;
    EXPECT_TRUE(reading);
    return reading ? PictureOf(reading->value, {}) : BubblePicture();
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
