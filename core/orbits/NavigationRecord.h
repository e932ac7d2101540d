#pragma once

#include "core/orbits/KeplerOrbit.h"
#include "core/orbits/SatelliteId.h"
#include "core/orbits/StateVector.h"

#include <optional>
#include <variant>

namespace fieldcore {

/// What a satellite says of its orbit, once.
struct NavigationRecord
{
    SatelliteId satellite;
    /// Reference time by the clock of the satellite's system, see SystemTime.h; in its orbit the
    /// same stands as GPS time.
    double systemS = 0.0;
    int health = 0; ///< as sent
    /// A state for GLONASS and SBAS, else elements.
    std::variant<KeplerOrbit, StateVector> orbit;

    /// Reference time, seconds of GPS time since 1980-01-06.
    [[nodiscard]] double ReferenceS() const;
    /// Whether the satellite says that it may be used. QZSS: without regard to the last bit, which
    /// stands for a signal that not all of them have; SBAS: for ranging.
    [[nodiscard]] bool IsHealthy() const noexcept;
};

/// Where the satellite of one record is, at times that cost least in order. Elements go on as they
/// were sent, however old: without their short terms they were farther from the truth after a day.
/// An SBAS satellite stands where it is said to stand. One thread.
class OrbitMotion
{
public:
    explicit OrbitMotion(const NavigationRecord& record);

    /// @param gpsS  seconds of GPS time since 1980-01-06
    /// @return earth-fixed, metres; nothing if the orbit leads nowhere, or GLONASS is asked for a
    /// time more than a year away
    [[nodiscard]] std::optional<Ecef> At(double gpsS);

private:
    std::variant<KeplerOrbit, GlonassMotion, Ecef> m_way;
};

} // namespace fieldcore
