#pragma once

#include "core/planning/AlmanacOrbit.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace fieldcore {

/// Where the antenna stands or will stand, on the GRS80 ellipsoid.
struct Observer
{
    double latitudeRad = 0.6108652381980153; ///< geodetic, north positive
    double longitudeRad = 2.426007660272118; ///< east positive
    double heightM = 70.0;                   ///< above the ellipsoid
};

/// Where in the sky a satellite stands.
struct SkyDirection
{
    double azimuthRad = 0.0;   ///< clockwise from north, -pi to pi until it is normalised
    double elevationRad = 0.0; ///< above the horizon plane
};

/// Earth-fixed position of @p observer, metres. GRS80: its flattening differs from that of WGS84
/// in the ninth digit, a tenth of a millimetre here.
[[nodiscard]] Ecef ToEcef(const Observer& observer) noexcept;

/// SkyDirection of @p satellite by a 4 x 4 homogeneous transformation, step by step as published:
/// what decides where LocalFrame comes too close to a limit.
/// @return nothing if both stand in the same place
[[nodiscard]] std::optional<SkyDirection> ReferenceDirection(const Observer& observer,
                                                             const Ecef& satellite) noexcept;

/// A difference of positions in the frame of an observer, metres.
struct EastNorthUp
{
    double east = 0.0;
    double north = 0.0;
    double up = 0.0;

    [[nodiscard]] double Range() const noexcept
    {
        return std::sqrt(east * east + north * north + up * up);
    }
    /// @param range  Range(), not 0
    [[nodiscard]] SkyDirection ToDirection(double range) const noexcept
    {
        // At the zenith the quotient may come out above 1.
        return {std::atan2(east, north), std::asin(std::min(up / range, 1.0))};
    }
};

/// The horizon of one observer: origin and axes worked out once, one rotation a satellite.
class LocalFrame
{
public:
    LocalFrame() : LocalFrame(Observer{}) {}
    explicit LocalFrame(const Observer& observer) noexcept;

    [[nodiscard]] EastNorthUp ToLocal(const Ecef& position) const noexcept
    {
        const double x = position.x - m_origin.x;
        const double y = position.y - m_origin.y;
        const double z = position.z - m_origin.z;
        return {m_east.x * x + m_east.y * y, // it lies in the equator's plane
                m_north.x * x + m_north.y * y + m_north.z * z,
                m_up.x * x + m_up.y * y + m_up.z * z};
    }
    [[nodiscard]] const Observer& GetObserver() const { return m_observer; }
    [[nodiscard]] const Ecef& Origin() const { return m_origin; }
    // Unit vectors, earth-fixed.
    [[nodiscard]] const Ecef& East() const { return m_east; } ///< without a part to the pole
    [[nodiscard]] const Ecef& North() const { return m_north; }
    [[nodiscard]] const Ecef& Up() const { return m_up; }

private:
    Observer m_observer;
    Ecef m_origin;
    Ecef m_east, m_north, m_up;
};

} // namespace fieldcore
