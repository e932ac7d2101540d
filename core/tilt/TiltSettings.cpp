#include "core/tilt/TiltSettings.h"

#include "core/host/MesBox.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"
#include "core/settings/NotKept.h"
#include "core/tilt/Bubble.h"
#include "core/tilt/BubbleConfig.h"

#include <cstdint>

namespace fieldcore {

namespace {

bool IsPlace(int place, std::size_t count)
{
    return place >= 0 && static_cast<std::size_t>(place) < count;
}

} // namespace

TiltState AskTilt(CCommand& command, bool withRecord)
{
    TiltReading reading;
    if (command.RequestTiltReading(reading) == 0) {
        const CommandFault fault = command.Fault();
        if (ClassOf(fault) == FaultClass::Cancelled || ClassOf(fault) == FaultClass::Local) {
            return TiltState::NotAsked;
        }
        if (command.IsPortOpen() == 0) {
            return TiltState::NoReceiver;
        }
        return fault == CommandFault::Refused ? TiltState::NotBuiltIn : TiltState::Silent;
    }
    const Clock::Duration at = command.GetClock().Steady();
    command.Hear([&](Receiver& known) { known.tilt = {reading, at}; });
    TiltCalibration record;
    if (withRecord && command.RequestTiltCalibration(record) == 1) {
        command.Hear([&](Receiver& known) { known.calibration = {record, at}; });
    }
    return reading.sensorPresent ? TiltState::Heard : TiltState::Absent;
}

void TiltSettings::Open()
{
    TiltCalibration record;
    if (m_command != nullptr && m_command->RequestTiltCalibration(record) == 1) {
        Open(record);
    }
}

void TiltSettings::Open(const TiltCalibration& record)
{
    constexpr int kLongest = 65534; // 65535: the receiver has none
    if (record.validityHours >= 1 && record.validityHours <= kLongest) {
        eBubbleConfig::SetBubbleExpiry(record.validityHours);
    }
}

bool TiltSettings::Refresh()
{
    if (m_command != nullptr && m_command->IsBusy()) {
        return false;
    }
    Take(m_command != nullptr ? AskTilt(*m_command, true) : TiltState::NoReceiver);
    return true;
}

void TiltSettings::Take(TiltState state)
{
    if (state != TiltState::NotAsked) {
        m_state = state;
    }
}

std::optional<TiltReading> TiltSettings::Reading() const
{
    if (m_command == nullptr || (m_state != TiltState::Heard && m_state != TiltState::Absent)) {
        return std::nullopt;
    }
    const auto told = m_command->Heard().tilt;
    return told ? std::optional(told->value) : std::nullopt;
}

std::optional<TiltCalibration> TiltSettings::Record() const
{
    const auto told = Reading() ? m_command->Heard().calibration : std::nullopt;
    return told ? std::optional(told->value) : std::nullopt;
}

std::wstring TiltSettings::Remain() const
{
    return RemainText(RemainingSeconds(Record(), Reading()));
}

int TiltSettings::StatusTextId() const
{
    return CalibrationTextId(Reading(), LastRun());
}

int TiltSettings::NoticeTextId() const
{
    constexpr int kTexts[] = {text::kTiltAsking,   text::kTiltNoReceiver, text::kTiltSilent,
                              text::kTiltNoSensor, text::kTiltNoSensor,   0}; // in their order
    return kTexts[static_cast<std::size_t>(m_state)];
}

bool TiltSettings::HasSensor() const
{
    return m_state == TiltState::Heard || m_state == TiltState::Silent ||
           m_state == TiltState::NotAsked;
}

void TiltSettings::Store() const
{
    KeptOrTold(eBubbleConfig::SaveBubbleData(m_reg), text::kNotKeptBubble,
               EnvironmentOf(m_command).GetHost(), m_reg);
}

int TiltSettings::ChooseSensitivity(int place)
{
    if (!IsPlace(place, kSensitivities) ||
        eBubbleConfig::SetBubbleSensitivity(
            SensitivityChoices()[static_cast<std::size_t>(place)].value) == 0) {
        return 0;
    }
    Store();
    return 1;
}

int TiltSettings::ChooseSpeed(int place)
{
    if (!IsPlace(place, kSpeeds) ||
        eBubbleConfig::SetBubbleViscosity(SpeedChoices()[static_cast<std::size_t>(place)].value) ==
            0) {
        return 0;
    }
    if (m_command != nullptr) {
        m_command->SetTiltSpeed(eBubbleConfig::GetBubbleViscosity());
    }
    Store();
    return 1;
}

int TiltSettings::EnterDuration(const std::wstring& text)
{
    const double toleranceM = ParseReal(text.c_str());
    if (!(toleranceM > 0.0) || eBubbleConfig::SetBubbleDuration(toleranceM) == 0) {
        return 0;
    }
    Store();
    return 1;
}

int TiltSettings::EnterExpiry(const std::wstring& text)
{
    const int hours = ParseWhole(text.c_str());
    if (hours <= 0 || eBubbleConfig::SetBubbleExpiry(hours) == 0) {
        return 0;
    }
    if (m_command != nullptr) {
        m_command->SetTiltValidity(static_cast<std::uint16_t>(eBubbleConfig::GetBubbleExpiry()));
    }
    return 1;
}

std::wstring TiltSettings::DurationText()
{
    return FormatFixed(eBubbleConfig::GetBubbleDuration(), 3);
}

std::wstring TiltSettings::ExpiryEditText()
{
    return std::to_wstring(eBubbleConfig::GetBubbleExpiry());
}

bool TiltSettings::MayCalibrate(Host& host)
{
    constexpr BoxStyle kQuestion{BoxButtons::OkCancel, BoxIcon::Question, BoxAnswer::Cancel};
    constexpr double kMostRad = 0.03490658503988659; // 2 degrees
    const CMesBox box(host);
    if (box.Show(text::kTiltStart, text::kTiltCaption, kQuestion) != BoxAnswer::Ok) {
        return false;
    }
    TiltReading reading;
    const bool leans = m_command != nullptr && m_command->RequestTiltReading(reading) == 1 &&
                       IsUsable(reading) && reading.tiltRad > kMostRad;
    return !leans ||
           box.Show(text::kTiltLeans, text::kTiltLeansCaption, kQuestion) == BoxAnswer::Ok;
}

LastCalibrationRun& TiltSettings::LastRun()
{
    static LastCalibrationRun lastRun;
    return lastRun;
}

} // namespace fieldcore
