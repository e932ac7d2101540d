#include "core/platform/Calendar.h"

#include <fmt/chrono.h>

namespace fieldcore {

std::string FormatDate(std::chrono::sys_seconds time, const std::string& format)
{
    // Given a time of the system's clock, the library would bring it into the local zone.
    return fmt::format(fmt::runtime("{:" + format + "}"),
                       fmt::gmtime(std::chrono::system_clock::to_time_t(time)));
}

} // namespace fieldcore
