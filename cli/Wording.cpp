#include "cli/Wording.h"

#include "core/platform/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace fieldcore::cli {

namespace {

/// @param parts  stand in place of %1, %2 and so on
std::string Filled(std::string_view pattern, std::span<const std::string> parts)
{
    std::string words;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const auto part = at + 1 < pattern.size() && pattern[at] == '%'
                              ? static_cast<std::size_t>(pattern[at + 1] - '1')
                              : parts.size();
        if (part < parts.size()) {
            words += parts[part];
            ++at;
        } else {
            words += pattern[at];
        }
    }
    return words;
}

/// Whether @p text is what @p pattern makes of some parts, which are then found: each ends where
/// what follows it in the pattern begins.
bool Fits(std::string_view pattern, std::string_view text, std::vector<std::string>& parts)
{
    while (!pattern.empty()) {
        const std::size_t hole = std::min(pattern.find('%'), pattern.size());
        if (!text.starts_with(pattern.substr(0, hole))) {
            return false;
        }
        text.remove_prefix(hole);
        if (hole == pattern.size()) {
            break;
        }
        pattern.remove_prefix(std::min(hole + 2, pattern.size()));
        const std::string_view next = pattern.substr(0, pattern.find('%'));
        const std::size_t length = next.empty() ? text.size() : text.find(next);
        if (length == std::string_view::npos) {
            return false;
        }
        parts.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return text.empty();
}

} // namespace

bool IsEnglish()
{
    return CurrentLanguage() == Language::English;
}

std::string Worded(int id, std::initializer_list<std::string> parts)
{
    return Filled(ToUtf8(Text(id)), parts);
}

std::string InEnglish(int id, std::initializer_list<std::string> parts)
{
    return Filled(ToUtf8(Text(id, Language::English)), parts);
}

std::string Joined(std::span<const std::string> words, std::size_t most)
{
    std::string text;
    for (const std::string& word : words.first(std::min(most, words.size()))) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return words.size() > most ? text + ", ..." : text;
}

std::string Translated(const std::string& english)
{
    if (IsEnglish()) {
        return english;
    }
    static const std::vector<std::string> patterns = [] {
        std::vector<std::string> all;
        for (int id = text::kEnglishFirst; id <= text::kEnglishLast; ++id) {
            all.push_back(InEnglish(id));
        }
        return all;
    }();
    for (std::size_t at = 0; at < patterns.size(); ++at) {
        std::vector<std::string> parts;
        if (Fits(patterns[at], english, parts)) {
            std::transform(parts.begin(), parts.end(), parts.begin(), Translated);
            return Filled(ToUtf8(Text(text::kEnglishFirst + static_cast<int>(at))), parts);
        }
    }
    return english;
}

std::string WordedOr(const std::string& english, const std::string& words)
{
    return IsEnglish() || words.empty() ? english : words;
}

std::string WordedOr(const char* english, int id)
{
    return WordedOr(std::string(english), id != 0 ? Worded(id) : std::string());
}

} // namespace fieldcore::cli
