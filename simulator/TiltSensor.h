#pragma once

#include "simulator/Frame.h"
#include "simulator/GpsTime.h"
#include "simulator/TiltSettings.h"

#include <cstdint>
#include <optional>
#include <span>

namespace fieldcore::simulator {

/// The tilt sensor of a receiver: the pole that it stands on, its validity period and its
/// calibration, which takes its time and fails if the pole does not keep still or the sensor goes
/// away.
class TiltSensor
{
public:
    /// @param start  the receiver's time when it starts
    TiltSensor(TiltSettings settings, const GpsTime& start);

    /// Answers the data of a 0xC8 request with a frame, ACK, or NAK for what it does not know.
    /// @param now       the receiver's time
    /// @param elapsedS  its seconds since it started
    [[nodiscard]] Bytes Answer(std::span<const std::uint8_t> data, const GpsTime& now,
                               double elapsedS);

private:
    enum class State : std::uint8_t
    {
        Starting = 0,
        Measuring = 1,
        TooFast = 2,
        OutOfRange = 3
    };
    enum class Calibration : std::uint8_t
    {
        None = 0,
        Done = 1,
        Running = 2,
        Failed = 3,
        TooOld = 4
    };
    struct Pole
    {
        double t1Rad;
        double t2Rad;
        State state;
    };

    [[nodiscard]] bool IsPresent(double elapsedS) const;
    [[nodiscard]] Pole PoleAt(double elapsedS) const;
    [[nodiscard]] Bytes Command(std::span<const std::uint8_t> data, const GpsTime& now,
                                double elapsedS);
    [[nodiscard]] Bytes Reading(const GpsTime& now, double elapsedS) const;
    [[nodiscard]] Bytes CalibrationRecord() const;
    /// Lets the calibration run until @p elapsedS.
    void Advance(const GpsTime& now, double elapsedS);

    TiltSettings m_settings;
    Calibration m_state = Calibration::Done;
    double m_progress = 0.0;             // 0 to 1, of the running calibration
    double m_startedS = 0.0;             // elapsed seconds, of the running calibration
    double m_checkedS = 0.0;             // until then the pole has kept still
    std::optional<GpsTime> m_calibrated; // none: never in the field
};

} // namespace fieldcore::simulator
