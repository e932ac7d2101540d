#include "core/orbits/KeplerOrbit.h"

#include "core/platform/Degrees.h"

#include <cmath>
#include <numbers>

namespace fieldcore {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
/// No orbit needs as many steps; elements that only look like one must not hang the program.
constexpr int kMostNewtonSteps = 1000;
/// Of the frame of BeiDou's geostationary satellites against the equator, so that their nodes mean
/// something.
constexpr double kGeostationaryTilt = RadiansOf(-5.0);

} // namespace

std::optional<double> EccentricAnomaly(double m, double e) noexcept
{
    double anomaly = m;
    double step = 1.0;
    for (int i = 0; std::abs(step) > 1.0e-8; ++i) {
        if (i == kMostNewtonSteps) {
            return std::nullopt;
        }
        const double reduced = std::fmod(anomaly, kTwoPi);
        step = (m - anomaly + e * std::sin(reduced)) / (1.0 - e * std::cos(reduced));
        anomaly += step;
    }
    return anomaly;
}

void SetEarthOf(GnssSystem system, KeplerOrbit& orbit) noexcept
{
    const bool isBeiDou = system == GnssSystem::BeiDou;
    orbit.gm = isBeiDou || system == GnssSystem::Galileo ? kGmNewer : kGm;
    orbit.earthRate = isBeiDou ? kEarthRateBeiDou : kEarthRate;
}

std::optional<Ecef> PositionOf(const KeplerOrbit& orbit, double gpsS) noexcept
{
    const double e = orbit.eccentricity;
    if (!(e >= 0.0 && e < 1.0)) {
        return std::nullopt;
    }
    const double a = orbit.a;
    const double tk = gpsS - orbit.referenceS;
    const double n = std::sqrt(orbit.gm / (a * a * a)) + orbit.deltaN; // mean motion, rad/s
    const std::optional<double> anomaly = EccentricAnomaly(orbit.m0 + n * tk, e);
    if (!anomaly) {
        return std::nullopt;
    }
    const double reduced = std::fmod(*anomaly, kTwoPi);
    const double cosE = std::cos(reduced);
    double nu = std::atan2(std::sqrt(1.0 - e * e) * std::sin(reduced), cosE - e);
    if (nu < 0.0) {
        nu += kTwoPi;
    }
    const double phi = std::fmod(nu + orbit.omega, kTwoPi);
    const double sin2 = std::sin(2.0 * phi);
    const double cos2 = std::cos(2.0 * phi);
    const double u = phi + orbit.cus * sin2 + orbit.cuc * cos2;
    const double r = a * (1.0 - e * cosE) + orbit.crs * sin2 + orbit.crc * cos2;
    const double i =
        std::fmod(orbit.i0 + orbit.iDot * tk + orbit.cis * sin2 + orbit.cic * cos2, kTwoPi);
    const double x = r * std::cos(u);
    const double y = r * std::sin(u);
    // The node drifts with the orbit and the earth turns under it since the week's start; in the
    // tilted frame the turn since toe comes behind.
    const double earthRate = orbit.isGeostationary ? 0.0 : orbit.earthRate;
    const double node = std::fmod(
        orbit.omega0 + (orbit.omegaDot - earthRate) * tk - orbit.earthRate * orbit.toeS, kTwoPi);
    const double cosNode = std::cos(node);
    const double sinNode = std::sin(node);
    Ecef position{x * cosNode - y * std::cos(i) * sinNode, x * sinNode + y * std::cos(i) * cosNode,
                  y * std::sin(i)};
    if (orbit.isGeostationary) {
        const double cosTilt = std::cos(kGeostationaryTilt);
        const double sinTilt = std::sin(kGeostationaryTilt);
        const double yTilted = position.y * cosTilt + position.z * sinTilt;
        const double zTilted = -position.y * sinTilt + position.z * cosTilt;
        const double turned = orbit.earthRate * tk;
        const double cosTurn = std::cos(turned);
        const double sinTurn = std::sin(turned);
        position = {position.x * cosTurn + yTilted * sinTurn,
                    -position.x * sinTurn + yTilted * cosTurn, zTilted};
    }
    if (!std::isfinite(position.x + position.y + position.z)) {
        return std::nullopt;
    }
    return position;
}

} // namespace fieldcore
