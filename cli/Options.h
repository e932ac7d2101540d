#pragma once

#include "cli/Failure.h"
#include "cli/World.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

/// What a number of the command line may be, both ends included.
struct Limits
{
    double lowest;
    double highest;
    std::string unit = "";     ///< behind the numbers
    std::string fallback = ""; ///< what counts if none is given, in words
};

/// "1 to 30000 h (720)": so that help and complaint tell what is right.
[[nodiscard]] std::string LimitWords(const Limits& limits);
/// A finite number within the limits.
[[nodiscard]] CLI::Validator Within(const Limits& limits);

/// @p text as a finite number, with nothing before or behind it.
[[nodiscard]] std::optional<double> ParseReal(std::string_view text);

/// The groups of options that several commands have.
inline constexpr const char* kPortGroup = "Port";
inline constexpr const char* kPlanGroup = "Plan";

// What an option is for is the number of a text.

inline CLI::Option* AddFlag(CLI::App& app, const char* name, bool& value, int purpose)
{
    return app.add_flag(name, value, Worded(purpose));
}

/// @param purpose  to which the limits are added
template <typename Number>
CLI::Option* AddNumber(CLI::App& app, const char* name, Number& value, const Limits& limits,
                       const char* type, int purpose)
{
    return app
        .add_option(name, value,
                    Worded(text::kSayWithLimits, {Worded(purpose), LimitWords(limits)}))
        ->check(Within(limits))
        ->type_name(type);
}

/// An option that is one of some words; the purpose names them.
inline CLI::Option* AddWord(CLI::App& app, const char* name, std::string& value,
                            const std::vector<std::string>& words, const char* type, int purpose)
{
    return app.add_option(name, value, Worded(purpose))
        ->check(CLI::IsMember(words).description(""))
        ->type_name(type);
}

/// An option that is a text of any kind.
template <typename Text>
CLI::Option* AddText(CLI::App& app, const char* name, Text& value, const char* type, int purpose)
{
    return app.add_option(name, value, Worded(purpose))->type_name(type);
}

/// --yes and --dry-run, which do not go together.
void AddConsent(CLI::App& app, bool& yes, int dryRunPurpose);

/// What stands behind --date: a day written 2026-11-21, today or tomorrow in Japan.
/// @param days  so many from that day on must lie in 1980-01-07 to 2099-12-31
/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadDate(const std::string& text, int days, const World& world,
                                              std::chrono::sys_days& day);

} // namespace fieldcore::cli
