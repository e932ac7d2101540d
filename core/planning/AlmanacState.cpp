#include "core/planning/AlmanacState.h"

#include "core/planning/AlmanacTime.h"
#include "core/planning/CalendarTime.h"
#include "core/platform/Calendar.h"

namespace fieldcore {

AlmanacState StateOfAlmanac(const ObservationPlan& plan)
{
    const CGPSTime time = AlmanacTime(plan.Calc());
    const auto sinceEpoch = time.GetUtcTime() - CGPSTime::m_OriginalTime;
    AlmanacState state;
    state.source = plan.Calc().Source();
    state.time = kGpsEpoch + std::chrono::seconds(sinceEpoch.GetTotalSeconds());
    const CGPSTime start = plan.Period().Start();
    state.ageDays =
        static_cast<double>((start.GetUtcTime() - time.GetUtcTime()).GetTotalSeconds()) / kDayS;
    state.isOld = IsAlmanacOld(time, start);
    for (int index = 0; index < kMaxPrn; ++index) {
        state.satellites += plan.Calc().IsValid(index);
        state.healthy +=
            plan.Calc().IsValid(index) != 0 ? plan.Calc().GetSatellite(index).IsHealthy() : 0;
    }
    return state;
}

} // namespace fieldcore
