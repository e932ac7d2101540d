#include "simulator/Scenario.h"
#include "simulator/ShippedScenarios.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace fieldcore::simulator {

namespace {

std::string ShippedNames()
{
    std::string names;
    for (const ShippedScenario& shipped : AllShippedScenarios()) {
        names += (names.empty() ? "" : ", ") + std::string(shipped.name);
    }
    return names;
}

/// @return nothing, with @p error set, if it is no readable file or too big for a scenario
std::optional<std::string> ReadFile(const std::string& path, std::string& error)
{
    constexpr std::uintmax_t kMaxSize = 1U << 20U;
    std::error_code failure;
    if (!std::filesystem::exists(path, failure)) {
        error = "there is no scenario and no file named \"" + path + "\"; the scenarios are " +
                ShippedNames();
        return std::nullopt;
    }
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure || size > kMaxSize) {
        error = path + ": " + (failure ? failure.message() : "too big for a scenario");
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        error = path + ": cannot be read";
        return std::nullopt;
    }
    return text;
}

} // namespace

std::optional<Scenario> LoadScenario(const std::string& name, std::string& error)
{
    const std::string wanted = name.empty() ? "lark" : name;
    for (const ShippedScenario& shipped : AllShippedScenarios()) {
        if (shipped.name == wanted) {
            return ParseScenario(shipped.text, error);
        }
    }
    const std::optional<std::string> text = ReadFile(wanted, error);
    if (!text) {
        return std::nullopt;
    }
    std::string cause;
    std::optional<Scenario> scenario = ParseScenario(*text, cause);
    if (!scenario) {
        error = wanted + ": " + cause;
    }
    return scenario;
}

std::vector<std::pair<std::string, std::string>> ShippedScenarios()
{
    std::vector<std::pair<std::string, std::string>> all;
    for (const ShippedScenario& shipped : AllShippedScenarios()) {
        std::string error;
        const std::optional<Scenario> scenario = ParseScenario(shipped.text, error);
        all.emplace_back(shipped.name, scenario ? scenario->title : error);
    }
    return all;
}

} // namespace fieldcore::simulator
