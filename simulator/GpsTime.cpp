#include "simulator/GpsTime.h"

#include <chrono>
#include <cmath>

namespace fieldcore::simulator {

GpsTime ToGpsTime(Clock::UtcTime utc, int utcOffsetS)
{
    using namespace std::chrono;
    constexpr sys_days kEpoch{year(1980) / January / 6};
    constexpr double kWeekS = 604800.0;
    const duration<double> sinceEpoch = utc - kEpoch + seconds(utcOffsetS);
    const double week = std::floor(sinceEpoch.count() / kWeekS);
    return {static_cast<int>(week), sinceEpoch.count() - week * kWeekS};
}

} // namespace fieldcore::simulator
