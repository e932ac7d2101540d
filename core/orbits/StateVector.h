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
/// farther away from the state, and begins anew with the one that was nearest to it: times in order
/// cost least, and those of one day little, however old the state. One thread.
///
/// GLONASS ICD, A.3.1.2, with the constants of PZ-90.11; fourth-order Runge-Kutta. The forces of
/// sun and moon, which the message has for half an hour, are held as they are for that long and
/// left out from then on: turning with the earth they would be wrong.
class GlonassMotion
{
public:
    explicit GlonassMotion(const StateVector& state) noexcept;

    /// @param gpsS  seconds of GPS time since 1980-01-06, a year either way of the state at most
    /// @return metres; nothing if it is farther away or the state leads nowhere
    [[nodiscard]] std::optional<Ecef> At(double gpsS) noexcept;

private:
    struct Point
    {
        Ecef position;
        Ecef velocity;
    };
    struct Mark
    {
        double sinceS = 0.0; // since the state
        Point point;
    };
    void Step(Mark& mark, double seconds) const noexcept;
    /// @param share  of the forces of sun and moon, 0 or 1
    [[nodiscard]] Point Slope(const Point& point, double share) const noexcept;

    StateVector m_state;
    Mark m_nearest; // whole steps from the state, of the times that were asked for
    Mark m_last;
};

} // namespace fieldcore
