// The calibration as the user sees it, and a run of it with all that can go wrong.

#include "core/tilt/CalibrationRun.h"
#include "core/tilt/CalibrationStatus.h"
#include "core/tilt/TiltSettings.h"

#include "core/resources/StringTable.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

#include <cmath>
#include <optional>

namespace fieldcore {
namespace {

using testing::SensorLine;
using testing::SensorWords;

TEST(CalibrationStatus, HasATextForEveryState)
{
    struct Row
    {
        const char* fault;
        int state;
        bool error1, error2, valid, aborted, failed;
        const wchar_t* text;
    };
    const wchar_t* const kDefault = L"チルト調整が正常に終了していません。";
    const wchar_t* const kDone = L"チルト調整が正常終了しました。";
    const wchar_t* const kFailed = L"チルト調整が失敗しました。";
    const wchar_t* const kAborted = L"チルト調整が中止されました。";
    const Row rows[] = {
        {"none", 0, false, false, true, false, false, kDefault},
        {"completed", 1, false, false, true, false, false, kDone},
        {"running", 2, false, false, true, false, false, L"チルト調整中です。"},
        {"failed", 3, false, false, true, false, false, kFailed},
        {"too old", 4, false, false, true, false, false, L"有効期限を過ぎました。"},
        {"no such state", 7, false, false, true, false, false, kDefault},
        {"first error", 1, true, false, true, false, false, kDefault},
        {"second error", 4, false, true, true, false, false, kDefault},
        {"not to be believed", 1, false, false, false, false, false, kDefault},
        {"aborted", 4, false, false, true, true, false, kAborted},
        {"failed wins", 0, false, false, true, true, true, kFailed},
        {"completed wins over both", 1, false, false, true, true, true, kDone},
        {"the last run counts in spite of errors", 0, true, true, false, true, false, kAborted},
        {"and in a state that is none", 5, false, false, true, false, true, kFailed},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        TiltReading reading;
        reading.calibrationState = row.state;
        reading.error1 = row.error1;
        reading.error2 = row.error2;
        reading.calibrationValid = row.valid;
        EXPECT_STREQ(Text(CalibrationTextId(reading, {row.aborted, row.failed})), row.text);
    }
    EXPECT_STREQ(Text(CalibrationTextId(std::nullopt, {true, true})), kDefault);
}

TEST(CalibrationStatus, CountsTheTimeThatIsLeft)
{
    struct Row
    {
        const char* fault;
        int state;
        bool isCalibrated;
        std::optional<TiltTime> now;
        std::optional<TiltTime> made;
        const wchar_t* text;
    };
    const TiltTime start{2400, 0};
    const wchar_t* const kNone = L"あと0日0時間0分0秒";
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        TiltReading reading;
        reading.calibrationState = row.state;
        reading.calibrated = row.isCalibrated;
        reading.time = row.now;
        const TiltCalibration record{.validityHours = 720, .calibrated = row.made};
        EXPECT_EQ(RemainText(RemainingSeconds(record, reading)), row.text);
        EXPECT_EQ(RemainingSeconds(std::nullopt, reading), 0);
        EXPECT_EQ(RemainingSeconds(record, std::nullopt), 0);
    }
    EXPECT_EQ(ExpiryText(720), L"30日0時間");
    EXPECT_EQ(ExpiryText(25), L"1日1時間");
}

TEST(CalibrationStatus, SelectsWhatStandsForAValue)
{
    constexpr std::pair<double, const wchar_t*> kSensitivity[] = {
        {500, L"130分"}, {100, L"130分"}, {99.9, L"70分"}, {55, L"70分"},
        {54.9, L"40分"}, {40, L"40分"},   {30, L"40分"},   {29.9, L"20分"},
        {10.1, L"20分"}, {10, L"8分"},    {-3, L"8分"}};
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
    struct Row
    {
        const char* fault;
        double tiltRad;
        std::vector<BoxAnswer> answers;
        std::vector<std::wstring> captions;
        bool may;
    };
    const std::wstring kFirst = L"チルト調整";
    const std::wstring kSecond = L"確認";
    const Row rows[] = {
        {"upright", 0.01, {BoxAnswer::Ok}, {kFirst}, true},
        {"no", 0.01, {BoxAnswer::Cancel}, {kFirst}, false},
        {"exactly two degrees", 0.03490658503988659, {BoxAnswer::Ok}, {kFirst}, true},
        {"more", 0.0349066, {BoxAnswer::Ok, BoxAnswer::Ok}, {kFirst, kSecond}, true},
        {"more, no", 0.0349066, {BoxAnswer::Ok, BoxAnswer::Cancel}, {kFirst, kSecond}, false},
        {"no number", std::nan(""), {BoxAnswer::Ok}, {kFirst}, true},
    };
    SensorLine line;
    ASSERT_NO_FATAL_FAILURE(line.StartSensor());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorWords words;
        words.tiltRad = row.tiltRad;
        line.Say(words);
        testing::BoxKeepingHost host;
        host.answers = row.answers;
        EXPECT_EQ(TiltSettings(&line.command, line.reg).MayCalibrate(host), row.may);
        ASSERT_EQ(host.boxes.size(), row.captions.size());
        for (std::size_t i = 0; i < host.boxes.size(); ++i) {
            EXPECT_EQ(host.boxes[i].caption, row.captions[i]);
            EXPECT_EQ(host.boxes[i].style.buttons, BoxButtons::OkCancel);
            EXPECT_EQ(host.boxes[i].style.icon, BoxIcon::Question);
            EXPECT_EQ(host.boxes[i].style.byDefault, BoxAnswer::Cancel);
        }
    }
}

TEST(TiltSettings, StoresAndSendsWhatChanged)
{
    SensorLine line;
    ASSERT_NO_FATAL_FAILURE(line.StartSensor());
    TiltSettings settings(&line.command, line.reg);
    constexpr std::pair<unsigned, int> kValidities[] = {{0, 720},       {65535, 720},   {1, 1},
                                                        {30001, 30000}, {65534, 30000}, {480, 480}};
    for (const auto& [told, kept] : kValidities) {
        SensorWords words;
        words.validityH = told;
        line.Say(words);
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
    struct Row
    {
        const wchar_t* typed;
        int changed;
        int hours;
    };
    const Row hours[] = {{L"0", 0, 480},   {L"-5", 0, 480},      {L"abc", 0, 480},
                         {L"480", 0, 480}, {L"99999", 1, 30000}, {L"12.9h", 1, 12}};
    for (const Row& row : hours) {
        EXPECT_EQ(settings.EnterExpiry(row.typed), row.changed) << row.hours;
        EXPECT_EQ(eBubbleConfig::GetBubbleExpiry(), row.hours);
    }
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

class CalibrationRunTest : public ::testing::Test
{
protected:
    static constexpr unsigned kRunning = 0x0A; // running, valid

    void Begin(unsigned state = kRunning)
    {
        SensorWords words;
        words.calibration = state;
        words.percent = 40;
        line.Say(words);
        ASSERT_NO_FATAL_FAILURE(line.StartSensor());
        run.Tick(line.command);
        ASSERT_EQ(line.Sent(0xC8, {4}), 1);
    }
    void Become(unsigned state)
    {
        SensorWords words;
        words.calibration = state;
        line.Say(words);
        run.Tick(line.command);
    }
    /// Ticks until it is over. @return how long that took
    Clock::Duration Finish()
    {
        const Clock::Duration began = line.clock.Steady();
        for (int i = 0; i < 200 && !run.IsOver(); ++i) {
            line.clock.Sleep(CalibrationRun::kInterval);
            run.Tick(line.command);
        }
        EXPECT_TRUE(run.IsOver());
        return line.clock.Steady() - began;
    }

    SensorLine line;
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
    };
    using State = CalibrationRun::State;
    const Row rows[] = {
        {"done", 0x19, false, State::Done},
        {"failed", 0x0B, false, State::Failed},
        {"back to none by itself", 0x08, false, State::Failed},
        {"cancelled", 0x08, true, State::Aborted},
        {"cancelled too late: it had ended", 0x19, true, State::Aborted},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorLine own;
        SensorWords words;
        words.calibration = kRunning;
        words.percent = 140;
        own.Say(words);
        ASSERT_NO_FATAL_FAILURE(own.StartSensor());
        CalibrationRun each;
        each.Tick(own.command);
        EXPECT_EQ(own.Sent(0xC8, {4}), 1);
        each.Tick(own.command);
        EXPECT_EQ(each.GetState(), State::Running);
        EXPECT_EQ(each.ProgressPercent(), 100) << "brought into its range";
        if (row.cancel) {
            each.Cancel();
            each.Tick(own.command);
            each.Cancel();
            each.Tick(own.command);
            EXPECT_EQ(own.Sent(0xC8, {5}), 1);
            EXPECT_EQ(each.GetState(), State::Cancelling) << "until the receiver has stopped";
            EXPECT_TRUE(each.Result().isAborted) << "whoever is torn down does not wait for it";
        }
        words.calibration = 0x02; // not to be believed
        own.Say(words);
        each.Tick(own.command);
        EXPECT_FALSE(each.IsOver());
        words.calibration = row.state;
        own.Say(words);
        each.Tick(own.command);
        EXPECT_EQ(each.GetState(), row.end);
        EXPECT_EQ(each.Result().isAborted, row.end == State::Aborted);
        EXPECT_EQ(each.Result().isFailed, row.end == State::Failed);
        const std::size_t asked = own.SentCount();
        each.Tick(own.command);
        each.Cancel();
        EXPECT_EQ(own.SentCount(), asked) << "it is over";
    }
}

TEST_F(CalibrationRunTest, EndsWhateverTheReceiverDoes)
{
    using namespace std::chrono_literals;
    // Refused.
    ASSERT_NO_FATAL_FAILURE(line.StartSensor());
    SensorWords refusing;
    refusing.takes = false;
    line.Say(refusing);
    CalibrationRun refused;
    refused.Tick(line.command);
    EXPECT_EQ(refused.GetState(), CalibrationRun::State::Failed);
    EXPECT_EQ(refused.Fault(), CommandFault::Refused);

    // It goes on although it was told to stop, and then does not even hear it.
    ASSERT_NO_FATAL_FAILURE(Begin());
    refusing.calibration = kRunning;
    line.Say(refusing);
    run.Cancel();
    EXPECT_GE(Finish(), 9500ms);
    EXPECT_EQ(run.GetState(), CalibrationRun::State::Aborted);
    EXPECT_GE(line.Sent(0xC8, {5}), 5) << "told again until it takes it";

    // Silent.
    CalibrationRun silent;
    SensorWords words;
    words.calibration = kRunning;
    line.Say(words);
    silent.Tick(line.command);
    words.answers = false;
    line.Say(words);
    line.command.SetReplyTimeout(2000ms);
    for (int i = 0; i < 20 && !silent.IsOver(); ++i) {
        silent.Tick(line.command); // each is two time-outs long
    }
    line.command.SetReplyTimeout(200s);
    EXPECT_EQ(silent.GetState(), CalibrationRun::State::Failed);

    // The cable.
    words.answers = true;
    line.Say(words);
    CalibrationRun pulled;
    pulled.Tick(line.command);
    ASSERT_EQ(pulled.GetState(), CalibrationRun::State::Running);
    line.simulator->HangUp();
    pulled.Tick(line.command);
    EXPECT_EQ(pulled.GetState(), CalibrationRun::State::Failed);

    CalibrationRun never;
    never.Cancel();
    never.Tick(line.command);
    EXPECT_EQ(never.GetState(), CalibrationRun::State::Aborted);
}

} // namespace
} // namespace fieldcore
