#pragma once

#include "core/resources/Texts.h"

#include <optional>
#include <string>
#include <string_view>

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

/// The text under @p id as a wprintf format, filled in with a decimal point whatever the user's
/// locale. The arguments must fit the format. Any thread.
[[nodiscard]] std::wstring FormatText(int id, ...);

} // namespace fieldcore
