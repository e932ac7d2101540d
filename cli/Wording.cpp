#include "cli/Wording.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <cstddef>

namespace fieldcore::cli {

bool IsEnglish()
{
    return CurrentLanguage() == Language::English;
}

std::string Worded(int id, std::initializer_list<std::string> parts)
{
    const std::string pattern = ToUtf8(Text(id));
    std::string words;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const auto part = at + 1 < pattern.size() && pattern[at] == '%'
                              ? static_cast<std::size_t>(pattern[at + 1] - '1')
                              : parts.size();
        if (part < parts.size()) {
            words += parts.begin()[part];
            ++at;
        } else {
            words += pattern[at];
        }
    }
    return words;
}

std::string WordedOr(const char* english, int id)
{
    return id != 0 && !IsEnglish() ? Worded(id) : english;
}

} // namespace fieldcore::cli
