#include "cli/Options.h"

#include "cli/Command.h"

#include "core/planning/PlanPeriod.h"
#include "core/platform/NumberText.h"

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
    if (text.size() != kForm.size() || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    const auto year = NumberOf<unsigned>(text.substr(0, 4));
    const auto month = NumberOf<unsigned>(text.substr(5, 2));
    const auto day = NumberOf<unsigned>(text.substr(8));
    if (!year || !month || !day) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day)};
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
    const std::optional<double> number = NumberOf<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
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
