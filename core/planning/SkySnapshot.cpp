#include "core/planning/SkySnapshot.h"

#include "core/planning/CalendarTime.h"

namespace fieldcore {

namespace {

std::vector<SkySatellite> SkyOfSystems(const ObservationPlan& plan, std::chrono::seconds sinceStart)
{
    const CSurveyPlanCalc& calc = plan.Calc();
    const std::span<const Ecef> positions = plan.PositionsAt(sinceStart);
    std::vector<SkySatellite> sky;
    for (std::size_t k = 0; k < positions.size(); ++k) {
        const EastNorthUp enu = calc.GetFrame().ToLocal(positions[k]);
        SkyDirection direction = enu.ToDirection(enu.Range());
        if (direction.elevationRad >= 0.0) { // which what is not known is not
            direction.azimuthRad = NormalisedAzimuth(direction.azimuthRad);
            sky.push_back({plan.Satellites()[k], direction, calc.GetLimits().Pass(direction)});
        }
    }
    return sky;
}

} // namespace

std::vector<SkySatellite> SkyAt(const ObservationPlan& plan, std::chrono::seconds sinceStart)
{
    if (!plan.IsGpsAlone()) {
        return SkyOfSystems(plan, sinceStart);
    }
    const CSurveyPlanCalc& calc = plan.Calc();
    CGPSTime time = plan.Computed().Start();
    time += CTimeSpan(sinceStart.count());
    std::vector<SkySatellite> sky;
    for (int index = 0; index < kMaxPrn; ++index) {
        if (calc.IsValid(index) == 0) {
            continue;
        }
        CAlmanacSatellite satellite = calc.GetSatellite(index);
        satellite.SetObserver(calc.GetFrame());
        satellite.SetTime(ToEpoch(time));
        if (satellite.Compute()) {
            const SkyDirection direction{satellite.GetAzimuth(), satellite.GetElevation()};
            const bool isVisible = satellite.TestVisibility(calc.GetLimits());
            sky.push_back(
                {plan.Satellites()[static_cast<std::size_t>(index)], direction, isVisible});
        }
    }
    return sky;
}

} // namespace fieldcore
