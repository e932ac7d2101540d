#include "cli/Options.h"

#include "cli/Command.h"

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
    const auto behind = [](const std::string& words, const char* before, const char* after) {
        return words.empty() ? words : before + words + after;
    };
    return Shortest(limits.lowest) + " to " + Shortest(limits.highest) +
           behind(limits.unit, " ", "") + behind(limits.fallback, " (", ")");
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

void AddConsent(CLI::App& app, bool& yes, const std::string& dryRunPurpose)
{
    CLI::Option* const agreed = app.add_flag("--yes", yes, "Do not ask");
    AddDryRun(app, dryRunPurpose, agreed);
}

} // namespace fieldcore::cli
