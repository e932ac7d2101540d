#pragma once

#include "core/resources/StringTable.h" // whoever words something names a text

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <system_error>
#include <utility>

namespace fieldcore::cli {

/// Whether the run is in English, as tables are that have no Japanese.
[[nodiscard]] bool IsEnglish();

/// The text under @p id in the language of the run, with @p parts in place of %1, %2 and so on.
[[nodiscard]] std::string Worded(int id, std::initializer_list<std::string> parts = {});

/// "a, b, c"; behind @p most of them "...".
[[nodiscard]] std::string Joined(std::span<const std::string> words,
                                 std::size_t most = std::string::npos);

/// What a person reads: a text by its number, or words that stand already.
struct Wording : std::string
{
    Wording() = default;
    Wording(int id, std::initializer_list<std::string> parts = {}) : std::string(Worded(id, parts))
    {}
    Wording(std::string words) : std::string(std::move(words)) {}
    Wording(const char* words) : std::string(words) {}
};

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

/// What stands in the source in English, or in another language @p words, if there are any: for
/// tables that have both.
[[nodiscard]] std::string WordedOr(const std::string& english, const std::string& words);
/// @param id  0: there is no other
[[nodiscard]] std::string WordedOr(const char* english, int id);

} // namespace fieldcore::cli
