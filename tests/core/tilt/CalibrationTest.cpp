// The calibration as the user sees it, and a run of it with all that can go wrong.

#include "core/tilt/CalibrationRun.h"
#include "core/tilt/CalibrationStatus.h"
#include "core/tilt/TiltSettings.h"

#include "core/resources/StringTable.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

namespace fieldcore {
namespace {

using testing::SensorLine;
using testing::SensorWords;

TEST(CalibrationStatus, HasATextForEveryState)
{
    const auto told = [](int state, bool error1 = false, bool error2 = false, bool valid = true) {
        return TiltReading{.error1 = error1,
                           .error2 = error2,
                           .calibrationState = state,
                           .calibrationValid = valid,
                           .time = {}};
    };
    const wchar_t* const kNotDone = L"チルト調整が正常に終了していません。";
    const wchar_t* const kDone = L"チルト調整が正常終了しました。";
    const wchar_t* const kFailed = L"チルト調整が失敗しました。";
    const wchar_t* const kAborted = L"チルト調整が中止されました。";
    const std::tuple<const char*, TiltReading, LastCalibrationRun, const wchar_t*> rows[] = {
        {"none", told(0), {}, kNotDone},
        {"completed", told(1), {}, kDone},
        {"running", told(2), {}, L"チルト調整中です。"},
        {"failed", told(3), {}, kFailed},
        {"too old", told(4), {}, L"有効期限を過ぎました。"},
        {"no such state", told(7), {}, kNotDone},
        {"first error", told(1, true), {}, kNotDone},
        {"second error", told(4, false, true), {}, kNotDone},
        {"not to be believed", told(1, false, false, false), {}, kNotDone},
        {"aborted", told(4), {true, false}, kAborted},
        {"failed wins", told(0), {true, true}, kFailed},
        {"completed wins over both", told(1), {true, true}, kDone},
        {"the last run counts before errors", told(0, true, true), {true, false}, kAborted},
    };
    for (const auto& [fault, reading, lastRun, text] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_STREQ(Text(CalibrationTextId(reading, lastRun)), text);
    }
    EXPECT_STREQ(Text(CalibrationTextId(std::nullopt, {true, true})), kNotDone);
}

TEST(CalibrationStatus, CountsTheTimeThatIsLeft)
{
    const TiltTime start{2400, 0};
    const wchar_t* const kNone = L"あと0日0時間0分0秒";
    using Time = std::optional<TiltTime>;
    const std::tuple<const char*, int, bool, Time, Time, const wchar_t*> rows[] = {
        {"30 days less an hour", 1, true, {{2400, 3600}}, start, L"あと29日23時間0分0秒"},
        {"minutes and seconds", 1, true, {{2400, 3541}}, start, L"あと29日23時間0分59秒"},
        {"across weeks", 1, true, {{2403, 604799}}, start, L"あと2日0時間0分1秒"},
        {"the last second", 1, true, {{2404, 2 * 86400 - 1}}, start, L"あと0日0時間0分1秒"},
        {"over", 1, true, {{2404, 2 * 86400}}, start, kNone},
        {"long over", 1, true, {{3000, 0}}, start, kNone},
        {"state", 2, true, {{2400, 3600}}, start, kNone},
        {"not calibrated", 1, false, {{2400, 3600}}, start, kNone},
        {"time of the reading unknown", 1, true, {}, start, kNone},
        {"never calibrated", 1, true, {{2400, 3600}}, {}, kNone},
    };
    for (const auto& [fault, state, isCalibrated, now, made, text] : rows) {
        SCOPED_TRACE(fault);
        TiltReading reading;
        reading.calibrationState = state;
        reading.calibrated = isCalibrated;
        reading.time = now;
        const TiltCalibration record{.validityHours = 720, .calibrated = made};
        EXPECT_EQ(RemainText(RemainingSeconds(record, reading)), text);
        EXPECT_EQ(RemainingSeconds(std::nullopt, reading), 0);
        EXPECT_EQ(RemainingSeconds(record, std::nullopt), 0);
    }
    EXPECT_EQ(ExpiryText(720), L"30日0時間");
    EXPECT_EQ(ExpiryText(25), L"1日1時間");
}

TEST(CalibrationStatus, SelectsWhatStandsForAValue)
{
    constexpr std::pair<double, const wchar_t*> kSensitivity[] = {
        {100, L"130分"}, {99.9, L"70分"}, {55, L"70分"},   {54.9, L"40分"},
        {30, L"40分"},   {29.9, L"20分"}, {10.1, L"20分"}, {10, L"8分"}};
    for (const auto& [value, text] : kSensitivity) {
        const int place = SensitivityPlace(value);
        EXPECT_STREQ(Text(SensitivityChoices()[static_cast<std::size_t>(place)].textId), text)
            << value;
    }
    constexpr std::pair<int, const wchar_t*> kSpeed[] = {
        {0, L"高速"}, {1, L"中速"}, {2, L"低速"}, {9, L"中速"}};
    for (const auto& [value, text] : kSpeed) {
        const int place = SpeedPlace(value);
        EXPECT_STREQ(Text(SpeedChoices()[static_cast<std::size_t>(place)].textId), text) << value;
    }
}

TEST(TiltSettings, AsksBeforeACalibration)
{
    using enum BoxAnswer;
    const std::tuple<const char*, double, std::vector<BoxAnswer>, bool> rows[] = {
        {"upright", 0.01, {Ok}, true},
        {"no", 0.01, {Cancel}, false},
        {"exactly two degrees", 0.03490658503988659, {Ok}, true},
        {"more", 0.0349066, {Ok, Ok}, true},
        {"more, no", 0.0349066, {Ok, Cancel}, false},
        {"no number", std::nan(""), {Ok}, true},
    };
    SensorLine line;
    ASSERT_NO_FATAL_FAILURE(line.StartSensor());
    for (const auto& [fault, tiltRad, answers, may] : rows) {
        SCOPED_TRACE(fault);
        line.Say({.tiltRad = tiltRad});
        testing::BoxKeepingHost host;
        host.answers = answers;
        EXPECT_EQ(TiltSettings(&line.command).MayCalibrate(host), may);
        ASSERT_EQ(host.boxes.size(), answers.size());
        for (const auto& box : host.boxes) {
            EXPECT_EQ(box.caption, &box == &host.boxes.front() ? L"チルト調整" : L"確認");
            EXPECT_EQ(box.style.byDefault, Cancel);
        }
    }
}

TEST(TiltSettings, StoresAndSendsWhatChanged)
{
    SensorLine line;
    ASSERT_NO_FATAL_FAILURE(line.StartSensor());
    TiltSettings settings(&line.command);
    constexpr std::pair<unsigned, int> kValidities[] = {{0, 720},       {65535, 720},   {1, 1},
                                                        {30001, 30000}, {65534, 30000}, {480, 480}};
    for (const auto& [told, kept] : kValidities) {
        line.Say({.validityH = told});
        settings.Open();
        EXPECT_EQ(eBubbleConfig::GetBubbleExpiry(), kept) << told;
    }
    line.ForgetSent();
    const auto stored = [&line](const wchar_t* name) {
        std::wstring text;
        line.reg.ReadString(L"GPS\\eBubble", name, text, L"-");
        return text;
    };
    EXPECT_EQ(settings.ChooseSensitivity(2), 0); // it is 40
    EXPECT_EQ(stored(L"Sensitivity"), L"-") << "nothing changed, nothing stored";
    EXPECT_EQ(settings.ChooseSensitivity(4), 1);
    EXPECT_EQ(stored(L"Sensitivity"), L"8");
    EXPECT_TRUE(line.SentCount() == 0) << "the receiver does not know it";
    EXPECT_EQ(settings.ChooseSpeed(1), 0);
    EXPECT_TRUE(line.SentCount() == 0);
    EXPECT_EQ(settings.ChooseSpeed(0), 1);
    EXPECT_EQ(line.Sent(0xC8, {10, 22}), 1);
    EXPECT_EQ(settings.ChooseSpeed(2), 1);
    EXPECT_EQ(line.Sent(0xC8, {10, 88}), 1);
    EXPECT_EQ(stored(L"Viscosity"), L"2");
    for (const int place : {-1, 3, 5, 1000}) {
        EXPECT_EQ(settings.ChooseSpeed(place), 0);
        EXPECT_EQ(place == 3 ? 0 : settings.ChooseSensitivity(place), 0);
    }
    line.ForgetSent();
    for (const wchar_t* const typed : {L"0", L"-5", L"abc", L"480"}) {
        EXPECT_EQ(settings.EnterExpiry(typed), 0) << typed;
    }
    EXPECT_EQ(settings.EnterExpiry(L"99999"), 1);
    EXPECT_EQ(settings.EnterExpiry(L"12.9h"), 1);
    EXPECT_EQ(line.Sent(0xC8, {3, 0x75, 0x30}), 1); // 30000
    EXPECT_EQ(line.Sent(0xC8, {3, 0, 12}), 1);
    EXPECT_EQ(line.SentCount(), 2U);
    for (const wchar_t* const typed : {L"0", L"-0.5", L"x", L"nan", L"0.02"}) {
        EXPECT_EQ(settings.EnterDuration(typed), 0);
    }
    EXPECT_EQ(settings.EnterDuration(L"0.0355 m"), 1);
    EXPECT_EQ(TiltSettings::DurationText(), L"0.035") << "as the C library rounds the double";
    EXPECT_EQ(stored(L"Duration"), L"36") << "35.5, tie to even";
    EXPECT_EQ(settings.EnterDuration(L"inf"), 1);
    EXPECT_EQ(TiltSettings::DurationText(), L"1.000");
}

/// On a line in memory: however slow the machine, the sensor answers in time.
class CalibrationRunTest : public ::testing::Test
{
protected:
    CalibrationRunTest()
    {
        line.simulator.SetScripted(
            [this](std::span<const std::uint8_t> request) { return words.Answer(request); });
        line.command.SetLineObserver(
            [this](Direction direction, LineUnit, std::span<const std::uint8_t> frame) {
                if (direction == Direction::Sent && frame.size() > 4) {
                    sent.push_back(frame[4]);
                }
            });
    }
    void Begin()
    {
        words = {.calibration = 0x0A, .percent = 140}; // running, valid
        line.Open();
        sent.clear();
        run = {};
        run.Tick(line.command);
        EXPECT_EQ(Sent(kStart), 1);
    }
    void Become(unsigned calibration)
    {
        words.calibration = calibration;
        run.Tick(line.command);
    }
    /// How many commands to the sensor.
    [[nodiscard]] long Sent(std::uint8_t command) const
    {
        return std::count(sent.begin(), sent.end(), command);
    }
    static constexpr std::uint8_t kStart = 4;
    static constexpr std::uint8_t kCancel = 5;

    SensorWords words; // the line's threads use them only while this one waits
    std::vector<std::uint8_t> sent;
    testing::VirtualReceiver line;
    CalibrationRun run;
};

TEST_F(CalibrationRunTest, FollowsTheReceiver)
{
    struct Row
    {
        const char* fault;
        unsigned state; // of the end
        bool cancel;
        CalibrationRun::State end;
        int textId;
    };
    using State = CalibrationRun::State;
    const wchar_t* const kNone = L"あと0日0時間0分0秒";
    const wchar_t* const kFresh = L"あと29日23時間0分0秒";
    const Row rows[] = {
        {"done", 0x19, false, State::Done, text::kTiltCompleted},
        {"failed", 0x0B, false, State::Failed, text::kTiltFailed},
        {"back to none by itself", 0x08, false, State::Failed, text::kTiltFailed},
        {"cancelled", 0x08, true, State::Aborted, text::kTiltAborted},
        {"cancelled too late: it had ended", 0x19, true, State::Aborted, text::kTiltCompleted},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Begin();
        run.Tick(line.command);
        EXPECT_EQ(run.GetState(), State::Running);
        EXPECT_EQ(run.ProgressPercent(), 100) << "brought into its range";
        if (row.cancel) {
            run.Cancel();
            run.Tick(line.command);
            run.Cancel();
            run.Tick(line.command);
            EXPECT_EQ(Sent(kCancel), 1);
            EXPECT_EQ(run.GetState(), State::Cancelling) << "until the receiver has stopped";
            EXPECT_TRUE(run.Result().isAborted) << "whoever is torn down does not wait for it";
        }
        words.percent = 40;
        Become(0x02); // not to be believed
        EXPECT_FALSE(run.IsOver());
        EXPECT_EQ(run.ProgressPercent(), 100) << "it went back";
        Become(row.state);
        EXPECT_EQ(run.GetState(), row.end);
        const std::size_t asked = sent.size();
        run.Tick(line.command);
        run.Cancel();
        EXPECT_EQ(sent.size(), asked) << "it is over";

        TiltSettings::LastRun() = run.Result();
        TiltSettings settings(&line.command);
        ASSERT_TRUE(settings.Refresh());
        EXPECT_EQ(settings.StatusTextId(), row.textId);
        EXPECT_EQ(settings.Remain(), row.textId == text::kTiltCompleted ? kFresh : kNone);
    }
}

TEST_F(CalibrationRunTest, EndsWhateverTheReceiverDoes)
{
    using namespace std::chrono_literals;
    using State = CalibrationRun::State;
    // It goes on although it was told to stop, and then does not even hear it.
    Begin();
    words.takes = false;
    run.Cancel();
    const Clock::Duration began = line.clock.Steady();
    for (int i = 0; i < 200 && !run.IsOver(); ++i) {
        line.clock.Sleep(CalibrationRun::kInterval);
        run.Tick(line.command);
    }
    EXPECT_GE(line.clock.Steady() - began, CalibrationRun::kCancelTime);
    EXPECT_LE(line.clock.Steady() - began, CalibrationRun::kCancelTime + 1s);
    EXPECT_EQ(run.GetState(), State::Aborted);
    EXPECT_GE(Sent(kCancel), 15) << "told again until it takes it";

    run = {};
    run.Tick(line.command);
    EXPECT_EQ(run.GetState(), State::Failed);
    EXPECT_EQ(run.Fault(), CommandFault::Refused);

    Begin();
    words.answers = false;
    for (int i = 0; i < 20 && !run.IsOver(); ++i) {
        run.Tick(line.command); // each is two time-outs long
    }
    EXPECT_EQ(run.GetState(), State::Failed) << "silent";

    Begin();
    line.line.HangUp();
    run.Tick(line.command);
    EXPECT_EQ(run.GetState(), State::Failed) << "the cable";

    run = {};
    run.Cancel();
    run.Tick(line.command);
    EXPECT_EQ(run.GetState(), State::Aborted) << "it never began";
}

} // namespace
} // namespace fieldcore
