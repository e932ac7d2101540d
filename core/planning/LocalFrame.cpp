#include "core/planning/LocalFrame.h"

#include <cmath>

namespace fieldcore {

namespace {

/// GRS80: semi-major axis, m, and flattening.
constexpr double kSemiMajor = 6378137.0;
constexpr double kFlattening = 1.0 / 298.257222101;

} // namespace

Ecef ToEcef(const Observer& observer) noexcept
{
    const double e2 = 2.0 * kFlattening - kFlattening * kFlattening;
    const double sinLat = std::sin(observer.latitudeRad);
    const double cosLat = std::cos(observer.latitudeRad);
    const double n = kSemiMajor / std::sqrt(1.0 - e2 * sinLat * sinLat);
    const double h = observer.heightM;
    return {(n + h) * cosLat * std::cos(observer.longitudeRad),
            (n + h) * cosLat * std::sin(observer.longitudeRad), (n * (1.0 - e2) + h) * sinLat};
}

LocalFrame::LocalFrame(const Observer& observer) noexcept
    : m_observer(observer), m_origin(ToEcef(observer))
{
    const double sinLat = std::sin(observer.latitudeRad);
    const double cosLat = std::cos(observer.latitudeRad);
    const double sinLon = std::sin(observer.longitudeRad);
    const double cosLon = std::cos(observer.longitudeRad);
    m_east = {-sinLon, cosLon, 0.0};
    m_north = {-sinLat * cosLon, -sinLat * sinLon, cosLat};
    m_up = {cosLat * cosLon, cosLat * sinLon, sinLat};
}

std::optional<SkyDirection> LocalFrame::DirectionOf(const Ecef& position) const noexcept
{
    const EastNorthUp enu = ToLocal(position);
    const double range = enu.Range();
    return range == 0.0 ? std::nullopt : std::optional(enu.ToDirection(range));
}

} // namespace fieldcore
