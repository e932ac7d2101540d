#include "simulator/TiltSensor.h"

#include <algorithm>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kTilt = 0xC8;
constexpr unsigned kUnknownWeek = 0xFFFF;

constexpr std::uint8_t kQuery = 1;
constexpr std::uint8_t kSetValidity = 3;
constexpr std::uint8_t kStart = 4;
constexpr std::uint8_t kCancel = 5;
constexpr std::uint8_t kSetSpeed = 10;

// A pole that leans a little, half a degree in all.
constexpr double kT1Rad = 0.006;
constexpr double kT2Rad = 0.008;
constexpr double kTiltRad = 0.01;

double SecondsBetween(const GpsTime& from, const GpsTime& to)
{
    return (to.week - from.week) * 604800.0 + (to.sowS - from.sowS);
}

} // namespace

Bytes TiltSensor::Answer(std::span<const std::uint8_t> data, const GpsTime& now)
{
    Advance(now);
    if (data.empty()) {
        return {kNak};
    }
    const std::uint8_t command = data[0];
    if (command == kQuery && data.size() == 2 && data[1] <= 1) {
        return data[1] == 0 ? Reading(now) : CalibrationRecord();
    }
    if (command == kSetValidity && data.size() == 3) {
        m_validityH = static_cast<std::uint16_t>(data[1] * 256U + data[2]);
        return {kAck};
    }
    if (command == kStart && data.size() == 1) {
        m_state = Calibration::Running;
        m_started = now;
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

void TiltSensor::Advance(const GpsTime& now)
{
    if (m_state != Calibration::Running) {
        return;
    }
    m_progress = SecondsBetween(m_started, now) / kCalibrationS;
    if (m_progress >= 1.0) {
        m_state = Calibration::Done;
        m_calibrated = now;
    }
}

Bytes TiltSensor::Reading(const GpsTime& now) const
{
    constexpr unsigned kMeasuring = 1;
    constexpr unsigned kPresent = 1U << 6U;
    constexpr unsigned kBelievable = 1U << 3U;
    const unsigned calibrated = m_state == Calibration::Done ? 1U << 4U : 0U;
    DataWriter out;
    out.U8(kQuery).U8(0);
    out.U8(kMeasuring | kPresent);
    out.U8(static_cast<unsigned>(m_state) | kBelievable | calibrated);
    out.F64(kT1Rad).F64(kT2Rad).F64(kTiltRad);
    out.U16(static_cast<unsigned>(now.week)).U32(static_cast<std::uint64_t>(now.sowS));
    return out.Frame(kTilt);
}

Bytes TiltSensor::CalibrationRecord() const
{
    const bool running = m_state == Calibration::Running;
    DataWriter out;
    out.U8(kQuery).U8(1).U16(m_validityH);
    out.U16(m_calibrated ? static_cast<unsigned>(m_calibrated->week) : kUnknownWeek);
    out.U32(m_calibrated ? static_cast<std::uint64_t>(m_calibrated->sowS) : 0);
    out.U8(running ? static_cast<unsigned>(std::clamp(m_progress, 0.0, 1.0) * 100.0) : 0U);
    return out.Frame(kTilt);
}

} // namespace fieldcore::simulator
