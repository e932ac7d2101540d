#pragma once

#include "core/orbits/NavigationRecord.h"
#include "core/planning/AlmanacRecord.h"
#include "core/platform/Clock.h"

#include <cstdint>
#include <vector>

namespace fieldcore {

/// As many satellites as NominalConstellation() knows.
inline constexpr int kNominalSatellites = 31;

/// An almanac of GPS as it was laid out, without asking a receiver: the baseline constellation of
/// 24 slots in six planes, and seven more between them. For samples, simulation and first tries.
/// It is as good as the real sky in what a plan shows (how many satellites, how far they scatter,
/// how they move), and says nothing about where a real satellite of that PRN is.
///
/// @param count  number of satellites, 0 to kNominalSatellites; beyond is cut to that
/// @param week   GPS week of the reference time, full count, 0 to 32767
/// @param toaS   reference time, seconds of that week; satellites send multiples of 4096
/// @return records of PRN 1 to @p count, healthy, time-stamped with the reference time (seconds
/// since 1980-01-06)
///
/// Planes take turns, so that a few satellites are spread over the sky, too: PRN 1 to 6 are the
/// first slots of the planes A to F, PRN 7 to 12 the second ones. PRN 25 to 30 stand in the middle
/// of the widest gap of their plane, and PRN 31 in that of plane A as it then is.
///
/// Source: the reference orbits of the GPS SPS Performance Standard: circular, 55 degrees, semi-
/// major axis 26559.8 km; for each slot the right ascension of its node and its argument of
/// latitude at 1993-07-01 00:00 UTC, when Greenwich stood at 18h 36m 14.4s. The longitude of a node
/// at that moment is its right ascension minus Greenwich's. From there on the argument of latitude
/// advances by Kepler's mean motion and the node by its drift under the oblate earth (the secular
/// term of J2) minus the earth's rotation, at the rates that AlmanacOrbit uses. What a record
/// carries is the longitude that the node has at toa plus the earth's rotation since the week's
/// start, which an orbit takes off again.
///
/// So every reference time describes the same motion: records of different weeks agree in where a
/// satellite is to some millimetres, however far apart they are, as long as an orbit takes the one
/// cycle of 1024 weeks off both or neither. The ground tracks, which the standard keeps in place,
/// drift by 0.0013 degrees a day.
[[nodiscard]] std::vector<AlmanacRecord> NominalConstellation(int count, int week,
                                                              std::uint32_t toaS);

/// The nominal almanac of a day: all satellites, with the last reference time before @p now.
[[nodiscard]] std::vector<AlmanacRecord> NominalAlmanac(Clock::UtcTime now);

/// Messages of 130 satellites: 32 GPS, 24 GLONASS, 27 Galileo, 43 BeiDou and 4 QZSS, on orbits of
/// their kind and spread over the sky. For pictures and measurements; where a real satellite is
/// they do not say.
/// @param gpsS  their reference time, seconds of GPS time
[[nodiscard]] std::vector<NavigationRecord> NominalMessages(double gpsS);

} // namespace fieldcore
