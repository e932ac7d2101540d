#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>

#include <fmt/args.h>
#include <fmt/printf.h>
#include <fmt/xchar.h>

namespace fieldcore {

namespace {

struct Entry
{
    int id;
    std::array<const wchar_t*, 2> texts; // by Language
};

// By rising number: Text() searches by halves.
constexpr Entry kEntries[] = {
#include "core/resources/Texts.inc"
};

static_assert(std::adjacent_find(std::begin(kEntries), std::end(kEntries),
                                 [](const Entry& a, const Entry& b) { return a.id >= b.id; }) ==
                  std::end(kEntries),
              "two texts have one number");

std::atomic<Language> language{Language::Japanese};

} // namespace

void SetLanguage(Language wanted)
{
    language = wanted;
}

Language CurrentLanguage()
{
    return language;
}

std::optional<Language> LanguageNamed(std::string_view name)
{
    return name == "ja"   ? std::optional(Language::Japanese)
           : name == "en" ? std::optional(Language::English)
                          : std::nullopt;
}

const wchar_t* Text(int id)
{
    return Text(id, language);
}

const wchar_t* Text(int id, Language wantedLanguage)
{
    const auto* entry = std::lower_bound(std::begin(kEntries), std::end(kEntries), id,
                                         [](const Entry& e, int wanted) { return e.id < wanted; });
    return entry != std::end(kEntries) && entry->id == id
               ? entry->texts[static_cast<std::size_t>(wantedLanguage)]
               : L"";
}

std::wstring FillText(int id, std::initializer_list<TextValue> values)
{
    const std::wstring_view format = Text(id);
    fmt::dynamic_format_arg_store<fmt::wprintf_context> arguments;
    for (const TextValue& value : values) {
        std::visit([&](const auto& filled) { arguments.push_back(filled); }, value);
    }
    try {
        return fmt::vsprintf(format, fmt::basic_format_args<fmt::wprintf_context>(arguments));
    } catch (const fmt::format_error&) {
        return std::wstring(format);
    }
}

} // namespace fieldcore
