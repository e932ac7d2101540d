#include "core/planning/SkySnapshot.h"

#include "core/planning/CalendarTime.h"

namespace fieldcore {

std::vector<SkySatellite> SkyAt(const ObservationPlan& plan, std::chrono::seconds sinceStart)
{
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
            sky.push_back({index + 1, direction, isVisible});
        }
    }
    return sky;
}

} // namespace fieldcore
