#pragma once

#include <initializer_list>
#include <string>

namespace fieldcore::cli {

/// Whether the run is in English, as tables are that have no Japanese.
[[nodiscard]] bool IsEnglish();

/// The text under @p id in the language of the run, with @p parts in place of %1, %2 and so on.
[[nodiscard]] std::string Worded(int id, std::initializer_list<std::string> parts = {});

/// The same, or what stands in the source in English: for tables that have both.
/// @param id  0: there is no other
[[nodiscard]] std::string WordedOr(const char* english, int id);

} // namespace fieldcore::cli
