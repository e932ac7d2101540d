#include "core/platform/TextLines.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // some editors put it in front

std::size_t Digits(std::string_view& rest)
{
    const std::size_t count = std::min(rest.find_first_not_of("0123456789"), rest.size());
    rest.remove_prefix(count);
    return count;
}

void Sign(std::string_view& rest)
{
    if (!rest.empty() && (rest.front() == '+' || rest.front() == '-')) {
        rest.remove_prefix(1);
    }
}

bool IsDecimal(std::string_view rest)
{
    Sign(rest);
    std::size_t digits = Digits(rest);
    if (!rest.empty() && rest.front() == '.') {
        rest.remove_prefix(1);
        digits += Digits(rest);
    }
    if (digits == 0) {
        return false;
    }
    if (!rest.empty() && std::string_view("eEdD").find(rest.front()) != std::string_view::npos) {
        rest.remove_prefix(1);
        Sign(rest);
        if (Digits(rest) == 0) {
            return false;
        }
    }
    return rest.empty();
}

} // namespace

TextLines::TextLines(std::string_view text) : m_rest(text)
{
    if (m_rest.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        m_rest.remove_prefix(kByteOrderMark.size());
    }
}

std::optional<std::string_view> TextLines::Next()
{
    const std::optional<std::string_view> line = NextWhole();
    return line ? std::optional(Trimmed(*line)) : std::nullopt;
}

std::optional<std::string_view> TextLines::NextWhole()
{
    if (m_rest.empty()) {
        return std::nullopt;
    }
    const std::string_view line = m_rest.substr(0, m_rest.find('\n'));
    m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
    ++m_number;
    return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> Words(std::string_view line)
{
    std::vector<std::string_view> words;
    for (line = Trimmed(line); !line.empty(); line = Trimmed(line)) {
        words.push_back(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

std::string Shown(std::string_view text)
{
    constexpr std::size_t kMost = 40;
    std::string shown(text.substr(0, kMost));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text.size() > kMost ? shown + "..." : shown;
}

std::optional<std::string> ReadNumber(std::string_view word, const FieldRange& range, double& value)
{
    if (word.empty()) {
        return "has no number";
    }
    if (!IsDecimal(word)) {
        return "\"" + Shown(word) + "\" is not a number";
    }
    std::wstring text(word.begin(), word.end());
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c == L'd' || c == L'D'; }, L'E');
    value = ParseReal(text.c_str());
    if (!(value >= range.least && value <= range.most) ||
        (range.whole && value != std::floor(value))) {
        return "must be " + std::string(range.whole ? "a whole number, " : "") +
               std::string(range.text) + ", not " + Shown(word);
    }
    return std::nullopt;
}

} // namespace fieldcore
