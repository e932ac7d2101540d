#include "core/planning/AlmanacTime.h"

#include "core/planning/CalendarTime.h"

namespace fieldcore {

CGPSTime AlmanacTime(const CSurveyPlanCalc& calc)
{
    const CGPSTime none(0, 0.0);
    CGPSTime latest = none;
    for (int i = 0; i < CSurveyPlanCalc::kSatellites; ++i) {
        if (calc.IsValid(i) != 0) {
            const KeplerElements& elements = calc.GetSatellite(i).GetOrbit().Elements();
            CGPSTime time = none; // stays where the record has no usable time
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
