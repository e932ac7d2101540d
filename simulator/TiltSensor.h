#pragma once

#include "simulator/Frame.h"
#include "simulator/GpsTime.h"

#include <cstdint>
#include <optional>
#include <span>

namespace fieldcore::simulator {

/// The tilt sensor of a receiver: its reading, its validity period and its calibration, which
/// takes kCalibrationS seconds and always succeeds. Until one was made it is calibrated as it
/// left the factory.
class TiltSensor
{
public:
    static constexpr double kCalibrationS = 20.0;

    /// Answers the data of a 0xC8 request with a frame, ACK, or NAK for what it does not know.
    /// @param now  the receiver's time
    [[nodiscard]] Bytes Answer(std::span<const std::uint8_t> data, const GpsTime& now);

private:
    [[nodiscard]] Bytes Reading(const GpsTime& now) const;
    [[nodiscard]] Bytes CalibrationRecord() const;
    void Advance(const GpsTime& now);

    enum class Calibration : std::uint8_t
    {
        None = 0,
        Done = 1,
        Running = 2
    };

    Calibration m_state = Calibration::Done;
    std::uint16_t m_validityH = 720;
    double m_progress = 0.0;             // 0 to 1, of the running calibration
    GpsTime m_started;                   // of the running calibration
    std::optional<GpsTime> m_calibrated; // none: never
};

} // namespace fieldcore::simulator
