#include "simulator/TiltSensor.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kTilt = 0xC8;
constexpr unsigned kUnknownWeek = 0xFFFF;

constexpr std::uint8_t kQuery = 1;
constexpr std::uint8_t kSetValidity = 3;
constexpr std::uint8_t kStart = 4;
constexpr std::uint8_t kCancel = 5;
constexpr std::uint8_t kSetSpeed = 10;

constexpr double kWeekS = 604800.0;
constexpr double kFlatRad = std::numbers::pi / 2.0; // a pole that lies on the ground

double SecondsBetween(const GpsTime& from, const GpsTime& to)
{
    return (to.week - from.week) * kWeekS + (to.sowS - from.sowS);
}

GpsTime Earlier(const GpsTime& time, double seconds)
{
    const double sinceEpoch = time.week * kWeekS + time.sowS - seconds;
    const double week = std::floor(sinceEpoch / kWeekS);
    return {static_cast<int>(week), sinceEpoch - week * kWeekS};
}

} // namespace

TiltSensor::TiltSensor(TiltSettings settings, const GpsTime& start)
    : m_settings(std::move(settings)),
      m_state(m_settings.isCalibrated ? Calibration::Done : Calibration::None)
{
    if (m_settings.isCalibrated && m_settings.calibratedH) {
        m_calibrated = Earlier(start, *m_settings.calibratedH * 3600.0);
    }
}

Bytes TiltSensor::Answer(std::span<const std::uint8_t> data, const GpsTime& now, double elapsedS)
{
    Advance(now, elapsedS);
    if (data.size() == 2 && data[0] == kQuery && data[1] <= 1) {
        return data[1] == 0 ? Reading(now, elapsedS) : CalibrationRecord();
    }
    if (data.empty() || !IsPresent(elapsedS)) {
        return {kNak};
    }
    return Command(data, now, elapsedS);
}

Bytes TiltSensor::Command(std::span<const std::uint8_t> data, const GpsTime& now, double elapsedS)
{
    const std::uint8_t command = data[0];
    if (command == kSetValidity && data.size() == 3) {
        m_settings.validityH = static_cast<std::uint16_t>(data[1] * 256U + data[2]);
        if (m_state == Calibration::TooOld) {
            m_state = Calibration::Done; // a longer period may make it good again
        }
        Advance(now, elapsedS);
        return {kAck};
    }
    if (command == kStart && data.size() == 1) {
        m_state = Calibration::Running;
        m_startedS = elapsedS;
        m_checkedS = elapsedS;
        m_progress = 0.0;
        return {kAck};
    }
    if (command == kCancel && data.size() == 1) {
        m_state = m_state == Calibration::Running ? Calibration::None : m_state;
        return {kAck};
    }
    const bool isSpeed = command == kSetSpeed && data.size() == 2 &&
                         (data[1] == 22 || data[1] == 44 || data[1] == 88);
    return {isSpeed ? kAck : kNak};
}

bool TiltSensor::IsPresent(double elapsedS) const
{
    return ValueAt(m_settings.present, elapsedS, 1) != 0;
}

TiltSensor::Pole TiltSensor::PoleAt(double elapsedS) const
{
    double t1 = m_settings.t1Rad;
    double t2 = m_settings.t2Rad;
    double rate = 0.0; // rad/s
    const double fallingS = elapsedS - m_settings.fallFromS;
    if (m_settings.motion == PoleMotion::Swaying) {
        const double phase = 2.0 * std::numbers::pi * elapsedS / m_settings.swayPeriodS;
        t1 += m_settings.swayRad * std::sin(phase);
        t2 += m_settings.swayRad * std::cos(phase);
        rate = m_settings.swayRad * 2.0 * std::numbers::pi / m_settings.swayPeriodS;
    } else if (m_settings.motion == PoleMotion::Falling && fallingS > 0.0) {
        const double further = m_settings.fallRadS * fallingS;
        const bool lies = t1 + further >= kFlatRad;
        t1 = std::min(t1 + further, kFlatRad);
        rate = lies ? 0.0 : m_settings.fallRadS;
    }
    double appearedS = 0.0;
    for (const Step& step : m_settings.present) {
        appearedS = step.fromS <= elapsedS ? step.fromS : appearedS;
    }
    State state = State::Measuring;
    if (elapsedS - appearedS < m_settings.startingS) {
        state = State::Starting;
    } else if (std::hypot(t1, t2) > TiltSettings::kMaxTiltRad) {
        state = State::OutOfRange;
    } else if (rate > TiltSettings::kMaxRateRadS) {
        state = State::TooFast;
    }
    return {t1, t2, state};
}

void TiltSensor::Advance(const GpsTime& now, double elapsedS)
{
    if (m_state == Calibration::Running) {
        // Looked at four times a second, so that what happened between two questions counts.
        constexpr double kLookS = 0.25;
        const double endS = m_startedS + m_settings.calibrationS;
        for (; m_checkedS <= std::min(elapsedS, endS); m_checkedS += kLookS) {
            if (!IsPresent(m_checkedS) || PoleAt(m_checkedS).state != State::Measuring) {
                m_state = Calibration::Failed;
                return;
            }
        }
        m_progress = (elapsedS - m_startedS) / m_settings.calibrationS;
        if (m_progress >= 1.0) {
            m_state = m_settings.calibrationFails ? Calibration::Failed : Calibration::Done;
            m_calibrated =
                m_settings.calibrationFails ? m_calibrated : Earlier(now, elapsedS - endS);
        }
    }
    if (m_state == Calibration::Done && m_calibrated &&
        SecondsBetween(*m_calibrated, now) >= m_settings.validityH * 3600.0) {
        m_state = Calibration::TooOld;
    }
}

Bytes TiltSensor::Reading(const GpsTime& now, double elapsedS) const
{
    constexpr unsigned kPresent = 1U << 6U;
    constexpr unsigned kBelievable = 1U << 3U;
    const bool present = IsPresent(elapsedS);
    const unsigned calibrated = m_state == Calibration::Done ? 1U << 4U : 0U;
    const Pole pole = PoleAt(elapsedS);
    DataWriter out;
    out.U8(kQuery).U8(0);
    if (!present) {
        out.U8(0).U8(0).F64(0.0).F64(0.0).F64(0.0).U16(kUnknownWeek).U32(0);
        return out.Frame(kTilt);
    }
    out.U8(static_cast<unsigned>(pole.state) | static_cast<unsigned>(m_settings.errors) << 4U |
           kPresent);
    out.U8(static_cast<unsigned>(m_state) | kBelievable | calibrated);
    out.F64(pole.t1Rad).F64(pole.t2Rad).F64(std::hypot(pole.t1Rad, pole.t2Rad));
    out.U16(static_cast<unsigned>(now.week)).U32(static_cast<std::uint64_t>(now.sowS));
    return out.Frame(kTilt);
}

Bytes TiltSensor::CalibrationRecord() const
{
    const bool running = m_state == Calibration::Running;
    DataWriter out;
    out.U8(kQuery).U8(1).U16(m_settings.validityH);
    out.U16(m_calibrated ? static_cast<unsigned>(m_calibrated->week) : kUnknownWeek);
    out.U32(m_calibrated ? static_cast<std::uint64_t>(m_calibrated->sowS) : 0);
    out.U8(running ? static_cast<unsigned>(std::clamp(m_progress, 0.0, 1.0) * 100.0) : 0U);
    return out.Frame(kTilt);
}

} // namespace fieldcore::simulator
