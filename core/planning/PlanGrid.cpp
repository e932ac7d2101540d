#include "core/planning/PlanGrid.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>

namespace fieldcore {

void PlanGrid::Compute(const CSurveyPlanCalc& calc, std::span<const GpsEpoch> epochs)
{
    m_epochCount = std::min(epochs.size(), kPlanEpochs);
    std::copy_n(epochs.begin(), m_epochCount, m_epochs.begin());
    m_known.fill(0);
    m_slotCount = 0;
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const CAlmanacSatellite& satellite = calc.GetSatellite(index);
        if (satellite.IsValid() == 0 || satellite.IsHealthy() == 0) {
            continue;
        }
        const std::size_t slot = m_slotCount++;
        const AlmanacOrbit& orbit = satellite.GetOrbit();
        m_prnIndex[slot] = static_cast<std::uint8_t>(index);
        m_elements[slot] = orbit.Elements();
        for (std::size_t k = 0; k < m_epochCount; ++k) {
            const std::optional<Ecef> position = orbit.Position(m_epochs[k]);
            const Ecef place = position.value_or(Ecef{});
            m_known[k] |= std::uint32_t{position ? 1U : 0U} << slot;
            m_x[k][slot] = place.x;
            m_y[k][slot] = place.y;
            m_z[k][slot] = place.z;
        }
    }
}

void PlanGrid::ToLocal(const LocalFrame& frame, std::size_t epoch, LocalRows& local) const
{
    const Row& x = m_x[epoch];
    const Row& y = m_y[epoch];
    const Row& z = m_z[epoch];
    for (std::size_t slot = 0; slot < m_slotCount; ++slot) {
        const EastNorthUp enu = frame.ToLocal({x[slot], y[slot], z[slot]});
        local.east[slot] = enu.east;
        local.north[slot] = enu.north;
        local.up[slot] = enu.up;
        local.range[slot] = enu.Range();
    }
}

bool PlanGrid::PassesReference(const LocalFrame& frame, const SkyLimits& limits, std::size_t epoch,
                               std::size_t slot, SkyDirection& direction) const
{
    const std::optional<Ecef> position = ReferencePosition(m_elements[slot], m_epochs[epoch]);
    if (!position) {
        return false;
    }
    direction = ReferenceDirection(frame.GetObserver(), *position).value_or(SkyDirection{});
    return limits.Pass(direction);
}

DopValues PlanGrid::ReferenceDopOf(const LocalFrame& frame, std::size_t epoch,
                                   std::uint32_t visible) const
{
    std::array<Ecef, kMaxPrn> satellites;
    std::size_t count = 0;
    for (std::size_t slot = 0; slot < m_slotCount; ++slot) {
        if ((visible >> m_prnIndex[slot] & 1U) != 0) {
            satellites[count++] =
                ReferencePosition(m_elements[slot], m_epochs[epoch]).value_or(Ecef{});
        }
    }
    return ReferenceDop(frame.Origin(), std::span(satellites).first(count));
}

void PlanGrid::View(const LocalFrame& frame, const SkyLimits& limits, SiteView& view,
                    SkyDirections* directions) const
{
    LocalRows local;
    for (std::size_t k = 0; k < m_epochCount; ++k) {
        ToLocal(frame, k, local);
        std::uint32_t visible = 0;
        DopSums sums;
        for (std::size_t slot = 0; slot < m_slotCount; ++slot) {
            const EastNorthUp enu{local.east[slot], local.north[slot], local.up[slot]};
            const double range = local.range[slot];
            const SkyLimits::Verdict verdict = limits.Judge(enu, range);
            if (verdict == SkyLimits::Verdict::Hidden || (m_known[k] >> slot & 1U) == 0) {
                continue;
            }
            const std::size_t prnIndex = m_prnIndex[slot];
            SkyDirection direction;
            if (verdict == SkyLimits::Verdict::TooClose) {
                if (!PassesReference(frame, limits, k, slot, direction)) {
                    continue;
                }
            } else if (directions != nullptr) {
                direction = enu.ToDirection(range);
            }
            visible |= std::uint32_t{1} << prnIndex;
            sums.Add(enu.east / range, enu.north / range, enu.up / range);
            if (directions != nullptr) {
                (*directions)[k][prnIndex] = {NormalisedAzimuth(direction.azimuthRad),
                                              direction.elevationRad};
            }
        }
        const int count = std::popcount(visible);
        view.visible[k] = visible;
        view.count[k] = static_cast<std::uint8_t>(count);
        view.dop[k] = kNoDop;
        if (count >= kSatellitesForDop) {
            const std::optional<DopValues> values = sums.Solve();
            view.dop[k] = values ? *values : ReferenceDopOf(frame, k, visible);
        }
    }
}

} // namespace fieldcore
