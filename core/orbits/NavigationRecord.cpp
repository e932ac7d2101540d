#include "core/orbits/NavigationRecord.h"

namespace fieldcore {

double NavigationRecord::ReferenceS() const
{
    return std::visit([](const auto& known) { return known.referenceS; }, orbit);
}

bool NavigationRecord::IsHealthy() const noexcept
{
    switch (satellite.system) {
    case GnssSystem::Qzss:
        return (health & ~0x01) == 0;
    case GnssSystem::Sbas: {
        // Bit 0: no ranging, if bit 4 does not say that bits 0 to 3 are unknown; bit 5: too
        // inaccurate for ranging.
        const bool isOff = (health & 0x11) == 0x01;
        return !isOff && (health & 0x20) == 0;
    }
    case GnssSystem::Gps:
    case GnssSystem::Glonass:
    case GnssSystem::Galileo:
    case GnssSystem::BeiDou:
        break;
    }
    return health == 0;
}

OrbitMotion::OrbitMotion(const NavigationRecord& record)
{
    if (const auto* elements = std::get_if<KeplerOrbit>(&record.orbit)) {
        m_way = *elements;
    } else if (const auto& state = std::get<StateVector>(record.orbit);
               record.satellite.system == GnssSystem::Glonass) {
        m_way = GlonassMotion(state);
    } else {
        m_way = state.position;
    }
}

std::optional<Ecef> OrbitMotion::At(double gpsS)
{
    if (auto* glonass = std::get_if<GlonassMotion>(&m_way)) {
        return glonass->At(gpsS);
    }
    if (const auto* elements = std::get_if<KeplerOrbit>(&m_way)) {
        return PositionOf(*elements, gpsS);
    }
    return std::get<Ecef>(m_way);
}

} // namespace fieldcore
