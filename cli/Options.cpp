#include "cli/Options.h"

#include "cli/Command.h"

#include "core/planning/PlanPeriod.h"

#include <charconv>
#include <cmath>
#include <cstddef>

#include <fmt/format.h>

namespace fieldcore::cli {

namespace {

std::string Shortest(double number)
{
    return std::abs(number) < 1e9 ? fmt::format("{:.10g}", number) : fmt::format("{:g}", number);
}

/// A day written 2026-11-21.
std::optional<std::chrono::sys_days> ParseDay(std::string_view text)
{
    constexpr std::string_view kForm = "2026-11-21";
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    const auto read = [text](std::size_t at, std::size_t length, auto& number) {
        const char* const end = text.data() + at + length;
        return text[at] != '-' && std::from_chars(text.data() + at, end, number).ptr == end;
    };
    if (text.size() != kForm.size() || text[4] != '-' || text[7] != '-' || !read(0, 4, year) ||
        !read(5, 2, month) || !read(8, 2, day)) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(day)};
    return date.ok() ? std::optional(std::chrono::sys_days(date)) : std::nullopt;
}

} // namespace

std::string LimitWords(const Limits& limits)
{
    return Worded(text::kSayLimits, {Shortest(limits.lowest), Shortest(limits.highest)}) +
           (limits.unit.empty() ? "" : " " + limits.unit) +
           (limits.fallback.empty() ? "" : Worded(text::kSayFallback, {limits.fallback}));
}

std::optional<double> ParseReal(std::string_view text)
{
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

CLI::Validator Within(const Limits& limits)
{
    return {[limits](const std::string& text) -> std::string {
                const std::optional<double> number = ParseReal(text);
                const bool fits = number && *number >= limits.lowest && *number <= limits.highest;
                return fits ? "" : "out of range";
            },
            ""};
}

void AddConsent(CLI::App& app, bool& yes, int dryRunPurpose)
{
    CLI::Option* const agreed = AddFlag(app, "--yes", yes, text::kOptYes);
    AddDryRun(app, dryRunPurpose, agreed);
}

std::optional<Failure> ReadDate(const std::string& text, int days, const World& world,
                                std::chrono::sys_days& day)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kFirst = 1980y / std::chrono::January / 7;
    constexpr std::chrono::sys_days kLast = 2099y / std::chrono::December / 31;
    const std::chrono::sys_days today = JapanDay(world.GetClock().Utc());
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
