#include "core/planning/AlmanacState.h"

#include "core/planning/AlmanacTime.h"
#include "core/planning/CalendarTime.h"

namespace fieldcore {

AlmanacState StateOfAlmanac(const ObservationPlan& plan)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kGpsEpoch = 1980y / std::chrono::January / 6;
    const CGPSTime time = AlmanacTime(plan.Calc());
    const auto sinceEpoch = time.GetUtcTime() - CGPSTime::m_OriginalTime;
    AlmanacState state;
    state.source = plan.Calc().Source();
    state.time = kGpsEpoch + std::chrono::seconds(sinceEpoch.GetTotalSeconds());
    const CGPSTime start = plan.Period().Start();
    state.ageDays =
        static_cast<double>((start.GetUtcTime() - time.GetUtcTime()).GetTotalSeconds()) / 86400.0;
    state.isOld = IsAlmanacOld(time, start);
    for (int index = 0; index < kMaxPrn; ++index) {
        state.satellites += plan.Calc().IsValid(index);
        state.healthy +=
            plan.Calc().IsValid(index) != 0 ? plan.Calc().GetSatellite(index).IsHealthy() : 0;
    }
    return state;
}

} // namespace fieldcore
