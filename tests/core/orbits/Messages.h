#pragma once

#include "core/orbits/NavigationText.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::testing {

/// A navigation text with some messages of each system, as broadcast on one day.
inline std::string Messages()
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/tests/core/orbits/messages.rnx");
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What is wrong with a text, and where.
inline std::string Described(const std::optional<TextError>& error)
{
    return error ? std::to_string(error->line) + " " + error->field + ": " + error->message
                 : "no error";
}

/// Those messages of a satellite.
inline std::vector<NavigationRecord> RecordsOf(std::string_view satellite)
{
    std::vector<NavigationRecord> records = ReadNavigation(Messages()).records;
    std::erase_if(records, [&](const auto& r) { return r.satellite.Text() != satellite; });
    return records;
}

/// A time of that day, 2020-06-25, GPS seconds.
inline double GpsAt(int hour, int minute)
{
    return 14'781 * 86'400.0 + hour * 3600.0 + minute * 60.0;
}

/// @p text with the first @p from replaced.
inline std::string With(std::string text, std::string_view from, std::string_view to)
{
    const std::size_t at = text.find(from);
    if (at == std::string::npos) {
        throw std::invalid_argument(std::string(from) + " is not in the text");
    }
    return text.replace(at, from.size(), to);
}

/// @p text with every @p from become @p to.
[[nodiscard]] inline std::string Replaced(std::string_view text, std::string_view from,
                                          std::string_view to)
{
    std::string result;
    for (std::size_t at = text.find(from); at != std::string_view::npos; at = text.find(from)) {
        result.append(text.substr(0, at)).append(to);
        text.remove_prefix(at + from.size());
    }
    return result.append(text);
}

/// @p text with the first GLONASS satellite in the middle of the earth.
inline std::string WithoutPlace(std::string text)
{
    std::size_t at = text.find("\nR09") + 1;
    for (int line = 1; line <= 3; ++line) {
        at = text.find('\n', at) + 1;
        text.replace(at + 4, 19, " 0.000000000000e+00");
    }
    return text;
}

} // namespace fieldcore::testing
