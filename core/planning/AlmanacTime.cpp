#include "core/planning/AlmanacTime.h"

#include "core/planning/CalendarTime.h"
#include "core/platform/Calendar.h"

namespace fieldcore {

namespace {

bool HasTime(const KeplerElements& elements)
{
    return elements.week >= 0 && elements.toaS >= 0.0 && elements.toaS <= kWeekS;
}

} // namespace

CGPSTime AlmanacTime(const CSurveyPlanCalc& calc)
{
    CGPSTime latest(0, 0.0);
    for (int i = 0; i < CSurveyPlanCalc::kSatellites; ++i) {
        const KeplerElements& elements = calc.GetSatellite(i).GetOrbit().Elements();
        if (calc.IsValid(i) != 0 && HasTime(elements)) {
            CGPSTime time = latest;
            time.SetGpsTime(elements.week, elements.toaS);
            if (time > latest) {
                latest = time;
            }
        }
    }
    return latest;
}

bool IsAlmanacOld(const CGPSTime& almanac, const CGPSTime& start)
{
    return start.GetUtcTime() - almanac.GetUtcTime() > CTimeSpan(30, 0, 0, 0);
}

} // namespace fieldcore
