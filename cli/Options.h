#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

/// What a number of the command line may be, both ends included.
struct Limits
{
    double lowest;
    double highest;
    const char* unit = "";     ///< behind the numbers
    const char* fallback = ""; ///< what counts if none is given, in words
};

/// "1 to 30000 h (720)": so that help and complaint tell what is right.
[[nodiscard]] std::string LimitWords(const Limits& limits);
/// A finite number within the limits.
[[nodiscard]] CLI::Validator Within(const Limits& limits);

/// @param purpose  to which the limits are added
template <typename Number>
CLI::Option* AddNumber(CLI::App& app, const char* name, Number& value, const Limits& limits,
                       const char* type, const std::string& purpose)
{
    return app.add_option(name, value, purpose + ", " + LimitWords(limits))
        ->check(Within(limits))
        ->type_name(type);
}

/// An option that is one of some words; the purpose names them.
inline CLI::Option* AddWord(CLI::App& app, const char* name, std::string& value,
                            const std::vector<std::string>& words, const char* type,
                            const std::string& purpose)
{
    return app.add_option(name, value, purpose)
        ->check(CLI::IsMember(words).description(""))
        ->type_name(type);
}

/// An option that is a text of any kind.
template <typename Words>
CLI::Option* AddText(CLI::App& app, const char* name, Words& value, const char* type,
                     const std::string& purpose)
{
    return app.add_option(name, value, purpose)->type_name(type);
}

/// --yes and --dry-run, which do not go together.
void AddConsent(CLI::App& app, bool& yes, const std::string& dryRunPurpose);

} // namespace fieldcore::cli
