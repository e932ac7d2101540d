#include "core/planning/JulianDate.h"

#include <chrono>
#include <limits>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using std::chrono::year;
using std::chrono::year_month_day;

year_month_day Date(int y, unsigned m, unsigned d)
{
    return year(y) / std::chrono::month(m) / std::chrono::day(d);
}

// Midnights by the day count of the almanacs of astronomy: 2000-01-01 12:00 is 2451545.0, and the
// others lie a counted number of days from it.
TEST(JulianDate, IsACalendarDateAndBack)
{
    struct Row
    {
        const char* fault;
        double julianDate;
        year_month_day date;
    };
    const Row rows[] = {
        {"epoch of the GPS weeks", 2444244.5, Date(1980, 1, 6)},
        {"J2000, its midnight", 2451544.5, Date(2000, 1, 1)},
        {"leap day of a year that 400 divides", 2451603.5, Date(2000, 2, 29)},
        {"last day of a leap year", 2451909.5, Date(2000, 12, 31)},
        {"before the missing leap day", 2488127.5, Date(2100, 2, 28)},
        {"behind the missing leap day", 2488128.5, Date(2100, 3, 1)},
        {"last day of a 32-bit count of GPS seconds", 2493954.5, Date(2116, 2, 12)},
        {"first Gregorian day", 2299160.5, Date(1582, 10, 15)},
        {"before the Unix epoch", 2415020.5, Date(1900, 1, 1)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(CalendarDateOfJulian(row.julianDate), row.date);
        EXPECT_EQ(CalendarDateOfJulian(row.julianDate + 0.99999), row.date) << "23:59:59";
    }
}

TEST(JulianDate, WithoutACalendarDate)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double none :
         {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity, 1e300, 1e8, -1e8}) {
        EXPECT_EQ(CalendarDateOfJulian(none), std::nullopt) << none;
    }
}

} // namespace
} // namespace fieldcore
