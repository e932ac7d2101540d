#pragma once

#include "core/orbits/Ecef.h"
#include "core/orbits/KeplerOrbit.h"
#include "core/planning/AlmanacRecord.h"

#include <optional>

namespace fieldcore {

/// An instant as orbits take it.
struct GpsEpoch
{
    int week = 0;      ///< GPS week, full count or 10-bit
    double sowS = 0.0; ///< seconds of the week
};

/// Orbit of one satellite from its almanac. Angles are radians: the semicircles of the record end
/// here.
struct KeplerElements
{
    double a = 0.0;            ///< semi-major axis, m
    double eccentricity = 0.0; ///< e
    double i0 = 0.0;           ///< inclination, rad
    double omegaDot = 0.0;     ///< rate of right ascension, rad/s
    double omega0 = 0.0;       ///< longitude of ascending node at the week's start, rad
    double omega = 0.0;        ///< argument of perigee, rad
    double m0 = 0.0;           ///< mean anomaly at toa, rad
    int week = 0;              ///< week of toa as broadcast
    double toaS = 0.0;         ///< reference time, seconds of its week

    explicit KeplerElements(const AlmanacRecord& record) noexcept;
    KeplerElements() = default;
};

/// The same orbit as an ephemeris would say it, its reference time as AlmanacOrbit::CountOf()
/// counts. PositionOf() it is the scalar way of AlmanacOrbit, which is several times as fast and
/// turns to it where the two could decide differently.
[[nodiscard]] KeplerOrbit OrbitOf(const KeplerElements& elements) noexcept;

/// What does not change of an orbit, as the vectors of a plan take it. Angles are turns.
struct OrbitConstants
{
    double eccentricity = 0.0;
    double toaCountS = 0.0;     ///< of toa, in the cycle of 10-bit weeks
    double meanTurns = 0.0;     ///< mean anomaly at toa
    double meanTurnsRate = 0.0; ///< 1/s
    double nodeTurns = 0.0;     ///< longitude of the node at toa
    double nodeTurnsRate = 0.0; ///< of the node against the turning earth, 1/s
    // Components of the in-plane axes towards perigee and 90 degrees ahead of it: along the node,
    // across it in the equator, and to the north; metres, the second scaled by b / a.
    double perigee[3]{};
    double ahead[3]{};
};

/// Where a satellite is at any time, with what does not change worked out once. Agrees with
/// PositionOf() to some 1e-4 m. Fit for planning, not for positioning.
class AlmanacOrbit
{
public:
    AlmanacOrbit() = default;
    explicit AlmanacOrbit(const AlmanacRecord& record) noexcept;

    /// @return metres, earth-fixed; nothing if the elements are no orbit: one is not finite, e is
    /// not within 0 <= e < 1, or Kepler's equation does not settle
    [[nodiscard]] std::optional<Ecef> Position(GpsEpoch epoch) const noexcept;

    [[nodiscard]] const KeplerElements& Elements() const { return m_elements; }
    [[nodiscard]] const OrbitConstants& Constants() const { return m_constants; }

    /// Seconds since the cycle of 10-bit weeks began. Weeks above 1023 are reduced by 1024, once
    /// each, and compared as they then are: an almanac from another cycle is far away, and there is
    /// no fold into half a week, since a plan may lie weeks away from toa.
    [[nodiscard]] static double CountOf(GpsEpoch epoch) noexcept;
    /// @param countS  CountOf() an epoch
    /// @return whether the fast form fits then: for orbits that are nearly circles, years from toa
    [[nodiscard]] bool IsFast(double countS) const noexcept;

private:
    KeplerElements m_elements;
    OrbitConstants m_constants;
    bool m_nearlyCircular = false;
};

} // namespace fieldcore
