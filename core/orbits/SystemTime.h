#pragma once

#include "core/orbits/SatelliteId.h"

#include <chrono>

namespace fieldcore {

// Instants are seconds since 1980-01-06 00:00:00 as the calendar of a time scale counts them; as a
// double they are good to 0.2 microseconds, in which a satellite moves a millimetre.

/// Turns an instant of a system's own time into GPS time: GPS, Galileo, QZSS and SBAS count alike
/// (to some nanoseconds), BeiDou is 14 s behind, GLONASS is UTC + 3 h and has leap seconds.
[[nodiscard]] double GpsSeconds(GnssSystem system, double systemS) noexcept;
/// And back. Within a leap second of GLONASS time: the second before it again.
[[nodiscard]] double SystemSeconds(GnssSystem system, double gpsS) noexcept;

/// GPS time of an instant of UTC.
[[nodiscard]] double GpsSecondsOfUtc(std::chrono::sys_seconds utc) noexcept;
/// UTC of an instant of GPS time, to the nearest second: for people.
[[nodiscard]] std::chrono::sys_seconds UtcOfGpsSeconds(double gpsS) noexcept;

} // namespace fieldcore
