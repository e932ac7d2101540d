#include "core/planning/AlmanacSatellite.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace fieldcore {

namespace {

/// Nearer to the horizon than this, in radians, the scalar way decides.
constexpr double kClose = 1.0e-9;

} // namespace

void CAlmanacSatellite::SetRecord(std::span<const std::uint8_t, kAlmanacRecordSize> record)
{
    std::copy(record.begin(), record.end(), m_record.begin());
    const AlmanacRecord decoded = DecodeAlmanac(record);
    m_orbit = AlmanacOrbit(decoded);
    m_healthy = decoded.health == 0;
    m_loaded = 1;
}

void CAlmanacSatellite::ClearRecord()
{
    m_record = {};
    m_orbit = AlmanacOrbit();
    m_healthy = false;
    m_loaded = 0;
}

bool CAlmanacSatellite::Locate(EastNorthUp& local, double& range)
{
    if (!m_healthy) {
        return false;
    }
    const std::optional<Ecef> position = m_orbit.Position(m_epoch);
    if (!position) {
        return false;
    }
    m_position = *position;
    local = m_frame.ToLocal(m_position);
    range = local.Range();
    if (range != 0.0) {
        m_direction = local.ToDirection(range);
    }
    return true;
}

bool CAlmanacSatellite::ComputeExactly()
{
    const std::optional<Ecef> position =
        PositionOf(OrbitOf(m_orbit.Elements()), AlmanacOrbit::CountOf(m_epoch));
    if (!position) {
        return false;
    }
    m_position = *position;
    m_direction = ReferenceDirection(m_frame.GetObserver(), m_position).value_or(m_direction);
    return m_direction.elevationRad >= 0.0;
}

bool CAlmanacSatellite::Compute()
{
    EastNorthUp local;
    double range = 0.0;
    if (!Locate(local, range)) {
        return false;
    }
    // Written so that what is not a number goes there, too.
    if (!(std::abs(m_direction.elevationRad) > kClose)) {
        return ComputeExactly();
    }
    return m_direction.elevationRad > 0.0;
}

bool CAlmanacSatellite::TestVisibility(const SkyLimits& limits)
{
    EastNorthUp local;
    double range = 0.0;
    bool visible = IsValid() != 0 && Locate(local, range);
    if (visible) {
        const SkyLimits::Verdict verdict = limits.Judge(local);
        visible = verdict == SkyLimits::Verdict::Visible ||
                  (verdict == SkyLimits::Verdict::TooClose && ComputeExactly() &&
                   limits.Pass(m_direction));
    }
    m_visible = visible ? 1 : 0;
    return visible;
}

} // namespace fieldcore
