#pragma once

#include <initializer_list>
#include <string>
#include <system_error>

namespace fieldcore::cli {

/// Whether the run is in English, as tables are that have no Japanese.
[[nodiscard]] bool IsEnglish();

/// The text under @p id in the language of the run, with @p parts in place of %1, %2 and so on.
[[nodiscard]] std::string Worded(int id, std::initializer_list<std::string> parts = {});

/// The same in English in any run: what programs read of it.
[[nodiscard]] std::string InEnglish(int id, std::initializer_list<std::string> parts = {});

/// What the library or the system says in English, in the language of the run: as it is if there is
/// no such text.
[[nodiscard]] std::string Translated(const std::string& english);

/// Why the system refused.
[[nodiscard]] inline std::string Reason(const std::error_code& error)
{
    return Translated(error.message());
}

/// The text under @p id, or in English what stands in the source: for tables that have both.
/// @param id  0: there is no other
[[nodiscard]] std::string WordedOr(const char* english, int id);

} // namespace fieldcore::cli
