#pragma once

#include "core/orbits/Ecef.h"

#include <optional>

namespace fieldcore {

/// Where a satellite is and how it moves at one time, as GLONASS and SBAS send it: earth-fixed,
/// metres and seconds.
struct StateVector
{
    double referenceS = 0.0; ///< seconds of GPS time since 1980-01-06
    Ecef position;
    Ecef velocity;
    Ecef acceleration; ///< of sun and moon only, by GLONASS; SBAS: in all
};

/// The motion of a GLONASS satellite from its state, by integration of its equations: central
/// gravity, the earth's oblateness, and the rotation of the frame. It goes on from each time to one
/// farther away from the state, so that times in order cost least. One thread.
///
/// GLONASS ICD, A.3.1.2, with the constants of PZ-90.11; fourth-order Runge-Kutta. The forces of
/// sun and moon, which the message has for half an hour, are held as they are for that long and
/// left out from then on: turning with the earth they would be wrong.
class GlonassMotion
{
public:
    explicit GlonassMotion(const StateVector& state) noexcept : m_state(state) { Restart(); }

    /// @param gpsS  seconds of GPS time since 1980-01-06, a year either way of the state at most
    /// @return metres; nothing if it is farther away or the state leads nowhere
    [[nodiscard]] std::optional<Ecef> At(double gpsS) noexcept;

private:
    struct Point
    {
        Ecef position;
        Ecef velocity;
    };
    void Restart() noexcept;
    void Step(double seconds) noexcept;
    /// @param share  of the forces of sun and moon, 0 or 1
    [[nodiscard]] Point Slope(const Point& point, double share) const noexcept;

    StateVector m_state;
    double m_sinceS = 0.0; // of m_point, since the state
    Point m_point;
};

} // namespace fieldcore
