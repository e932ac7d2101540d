#pragma once

#include "core/resources/Texts.h"

#include <concepts>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace fieldcore {

// The texts that the library shows, each under its number (namespace text, made of texts.tsv).
// Whoever shows a text looks it up, so that a host finds all of them in one place. Texts with % are
// formats for FormatText().

enum class Language
{
    Japanese,
    English,
};

/// The language of the texts that are looked up from now on; those that are shown already stay.
/// Japanese unless it is set. Any thread.
void SetLanguage(Language language);
[[nodiscard]] Language CurrentLanguage();
/// The variable of the environment that says the language of a program whose options do not.
inline constexpr const char* kLanguageVariable = "FIELDCORE_LANGUAGE";
/// "ja" or "en"; nothing if @p name is neither. Any thread.
[[nodiscard]] std::optional<Language> LanguageNamed(std::string_view name);

/// @return the text under @p id in the current language; empty if there is none. Any thread.
[[nodiscard]] const wchar_t* Text(int id);
/// The same in a language of its own.
[[nodiscard]] const wchar_t* Text(int id, Language language);

/// What fills a place of a format: a whole number, one with decimals, or a text, which has to live
/// for as long as the call.
using TextValue = std::variant<long long, unsigned long long, double, std::wstring_view>;

/// The text under @p id as a format of printf, filled in with a decimal point whatever the user's
/// locale. Lengths in the format (%ld, %ls) mean nothing: the value knows its type.
/// @return the text as it stands if @p values do not fit it. Any thread.
[[nodiscard]] std::wstring FillText(int id, std::initializer_list<TextValue> values);

template <typename... Values>
[[nodiscard]] std::wstring FormatText(int id, const Values&... values)
{
    const auto value = [](const auto& given) -> TextValue {
        using Given = std::decay_t<decltype(given)>;
        if constexpr (std::floating_point<Given>) {
            return static_cast<double>(given);
        } else if constexpr (std::unsigned_integral<Given>) {
            return static_cast<unsigned long long>(given);
        } else if constexpr (std::integral<Given>) {
            return static_cast<long long>(given);
        } else {
            return std::wstring_view(given);
        }
    };
    return FillText(id, {value(values)...});
}

} // namespace fieldcore
