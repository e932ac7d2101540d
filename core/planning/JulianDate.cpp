#include "core/planning/JulianDate.h"

#include <cmath>

namespace fieldcore {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr double kUnixEpochJulianDate = 2440587.5; // 1970-01-01 00:00

constexpr sys_days kFirst{year::min() / std::chrono::January / 1};
constexpr sys_days kLast{year::max() / std::chrono::December / 31};

} // namespace

std::optional<year_month_day> CalendarDateOfJulian(double julianDate) noexcept
{
    const double day = std::floor(julianDate - kUnixEpochJulianDate);
    if (!(day >= kFirst.time_since_epoch().count() && day <= kLast.time_since_epoch().count())) {
        return std::nullopt;
    }
    return year_month_day(sys_days(days(static_cast<days::rep>(day))));
}

} // namespace fieldcore
