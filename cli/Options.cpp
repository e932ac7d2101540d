#include "cli/Options.h"

#include "cli/Command.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace fieldcore::cli {

namespace {

std::string Shortest(double number)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), std::abs(number) < 1e9 ? "%.10g" : "%g", number);
    return text.data();
}

} // namespace

std::string LimitWords(const Limits& limits)
{
    return Worded(text::kSayLimits, {Shortest(limits.lowest), Shortest(limits.highest)}) +
           (limits.unit.empty() ? "" : " " + limits.unit) +
           (limits.fallback.empty() ? "" : Worded(text::kSayFallback, {limits.fallback}));
}

CLI::Validator Within(const Limits& limits)
{
    return {[limits](const std::string& text) -> std::string {
                double number = 0.0;
                const char* const end = text.data() + text.size();
                const auto [stop, error] = std::from_chars(text.data(), end, number);
                const bool fits = error == std::errc() && stop == end && number >= limits.lowest &&
                                  number <= limits.highest;
                return fits ? "" : "out of range";
            },
            ""};
}

void AddConsent(CLI::App& app, bool& yes, int dryRunPurpose)
{
    CLI::Option* const agreed = AddFlag(app, "--yes", yes, text::kOptYes);
    AddDryRun(app, dryRunPurpose, agreed);
}

} // namespace fieldcore::cli
