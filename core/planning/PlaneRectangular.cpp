#include "core/planning/PlaneRectangular.h"

#include <cmath>

#include <GeographicLib/TransverseMercator.hpp>

#include "core/platform/Degrees.h"

namespace fieldcore {
namespace {

constexpr double kScaleOnMeridian = 0.9999;

struct Origin
{
    double latitudeDeg;
    int longitudeDeg;
    int longitudeMinutes;
};

// Notification No. 9 of 2002 of the Ministry of Land, Infrastructure and Transport; zone 1 first.
constexpr Origin kOrigins[] = {
    {33, 129, 30}, {33, 131, 0},  {36, 132, 10}, {33, 133, 30}, {36, 134, 20},
    {36, 136, 0},  {36, 137, 10}, {36, 138, 30}, {36, 139, 50}, {40, 140, 50},
    {44, 140, 15}, {44, 142, 15}, {44, 144, 15}, {26, 142, 0},  {26, 127, 30},
    {26, 124, 0},  {26, 131, 0},  {20, 136, 0},  {26, 154, 0},
};

bool IsZone(int zone)
{
    return zone >= kFirstPlaneZone && zone <= kLastPlaneZone;
}

bool IsInReach(PlanePosition position)
{
    return std::abs(position.xM) <= kPlaneReachM && std::abs(position.yM) <= kPlaneReachM;
}

/// The projection of one zone. The library it rests on counts north from the equator.
class ZoneProjection
{
public:
    ZoneProjection(int zone, Ellipsoid ellipsoid)
        : m_origin(kOrigins[zone - kFirstPlaneZone]), m_shape(ShapeOf(ellipsoid)),
          // It throws only for impossible shapes and scales, and these are none.
          m_mercator(m_shape.semiMajorAxisM, m_shape.flattening, kScaleOnMeridian)
    {
        double east = 0.0;
        m_mercator.Forward(MeridianDeg(), m_origin.latitudeDeg, MeridianDeg(), east, m_originNorth);
    }

    PlaneProjection Forward(double latitudeDeg, double longitudeDeg) const
    {
        PlaneProjection result;
        double convergenceDeg = 0.0;
        m_mercator.Forward(MeridianDeg(), latitudeDeg, longitudeDeg, result.position.yM,
                           result.position.xM, convergenceDeg, result.scaleFactor);
        result.position.xM -= m_originNorth;
        result.convergenceRad = RadiansOf(convergenceDeg);
        return result;
    }

    GeodeticPosition Reverse(PlanePosition position) const
    {
        double latitudeDeg = 0.0;
        double longitudeDeg = 0.0;
        m_mercator.Reverse(MeridianDeg(), position.yM, position.xM + m_originNorth, latitudeDeg,
                           longitudeDeg);
        return {RadiansOf(latitudeDeg), RadiansOf(longitudeDeg), 0.0};
    }

private:
    double MeridianDeg() const { return m_origin.longitudeDeg + m_origin.longitudeMinutes / 60.0; }

    Origin m_origin;
    EllipsoidShape m_shape;
    GeographicLib::TransverseMercator m_mercator;
    double m_originNorth = 0.0; // of the equator, plane metres
};

} // namespace

std::optional<GeodeticPosition> PlaneOrigin(int zone) noexcept
{
    if (!IsZone(zone)) {
        return std::nullopt;
    }
    const Origin& origin = kOrigins[zone - kFirstPlaneZone];
    return GeodeticPosition{RadiansOf(origin.latitudeDeg),
                            RadiansOf(origin.longitudeDeg + origin.longitudeMinutes / 60.0), 0.0};
}

std::optional<PlaneProjection> PlaneOfGeodetic(int zone, const GeodeticPosition& position,
                                               Ellipsoid ellipsoid) noexcept
{
    if (!IsZone(zone) || !IsPlace(position)) {
        return std::nullopt;
    }
    const PlaneProjection result =
        ZoneProjection(zone, ellipsoid)
            .Forward(DegreesOf(position.latitudeRad), DegreesOf(position.longitudeRad));
    if (!IsInReach(result.position)) {
        return std::nullopt;
    }
    return result;
}

std::optional<GeodeticPosition> GeodeticOfPlane(int zone, PlanePosition position,
                                                Ellipsoid ellipsoid) noexcept
{
    if (!IsZone(zone) || !IsInReach(position)) {
        return std::nullopt;
    }
    return ZoneProjection(zone, ellipsoid).Reverse(position);
}

} // namespace fieldcore
