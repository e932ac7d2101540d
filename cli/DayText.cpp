#include "cli/DayText.h"

#include "cli/Wording.h"

#include "core/planning/PlanPeriod.h"
#include "core/resources/StringTable.h"

#include <charconv>
#include <string_view>

namespace fieldcore::cli {

namespace {

/// A part of a date, all of whose characters must be digits.
int DatePart(std::string_view text)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, number).ptr == end ? number : -1;
}

std::optional<std::chrono::sys_days> ParseDay(std::string_view text)
{
    using namespace std::chrono_literals;
    constexpr std::string_view kForm = "2026-11-21";
    if (text.size() != kForm.size() || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    const int year = DatePart(text.substr(0, 4));
    const int month = DatePart(text.substr(5, 2));
    const int day = DatePart(text.substr(8));
    if (year < 1980 || year > 2099 || month < 1 || day < 1) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    return date.ok() ? std::optional(std::chrono::sys_days(date)) : std::nullopt;
}

} // namespace

std::optional<Failure> ReadDate(const std::string& text, int days, const World& world,
                                std::chrono::sys_days& day)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kFirst = 1980y / std::chrono::January / 7;
    constexpr std::chrono::sys_days kLast = 2099y / std::chrono::December / 31;
    const std::chrono::sys_days today = JapanDay(world.clock->Utc());
    const std::optional<std::chrono::sys_days> first = text == "today" ? today
                                                       : text == "tomorrow"
                                                           ? today + std::chrono::days(1)
                                                           : ParseDay(text);
    if (!first || *first < kFirst || *first + std::chrono::days(days - 1) > kLast) {
        return UsageFailure({text::kSayCannotBe, {"--date", text}}, text::kSayDateHint);
    }
    day = *first;
    return std::nullopt;
}

} // namespace fieldcore::cli
