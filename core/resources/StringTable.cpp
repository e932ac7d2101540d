#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <clocale>
#include <cstdarg>
#include <cwchar>
#include <iterator>
#include <locale.h>

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

std::wstring FormatText(int id, ...)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(plain);
    std::array<wchar_t, 1024> buffer{};
    va_list arguments;
    va_start(arguments, id);
    const int length = std::vswprintf(buffer.data(), buffer.size(), Text(id), arguments);
    va_end(arguments);
    uselocale(before);
    return length > 0 ? std::wstring(buffer.data(), static_cast<std::size_t>(length))
                      : std::wstring();
}

} // namespace fieldcore
