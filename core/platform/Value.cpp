#include "core/platform/Value.h"

#include "core/platform/Utf8.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace fieldcore {

namespace {

constexpr std::string_view kUnknown = "--";

/// The digits of a number, with a decimal point whatever the user's locale.
/// @param decimals  less than 0: as many as it takes
std::string Digits(double number, int decimals)
{
    std::array<char, 512> buffer{}; // the largest double has 309 digits before the point
    char* const first = buffer.data();
    char* const last = first + buffer.size();
    const std::to_chars_result end =
        decimals < 0 ? std::to_chars(first, last, number)
                     : std::to_chars(first, last, number, std::chars_format::fixed, decimals);
    return {first, end.ptr};
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += joined.empty() ? "" : ", ";
        joined += Printable(text);
    }
    return joined.empty() ? "none" : joined;
}

} // namespace

// The data are put in place: moved as a whole, GCC 12 takes the alternatives that are not there for
// uninitialized ones.

Value Value::Unknown()
{
    return {};
}

Value Value::Text(std::string utf8, std::string none)
{
    Value value;
    if (utf8.empty()) {
        value.m_words = std::move(none);
    } else {
        value.m_data.emplace<std::string>(std::move(utf8));
    }
    return value;
}

Value Value::Text(std::wstring_view text)
{
    return Text(ToUtf8(text));
}

Value Value::Integer(std::int64_t number, std::string unit)
{
    Value value;
    value.m_data.emplace<std::int64_t>(number);
    value.m_unit = std::move(unit);
    return value;
}

Value Value::Real(double number, int decimals, std::string unit)
{
    if (!std::isfinite(number)) {
        return Unknown();
    }
    const std::string digits = Digits(number, decimals);
    double rounded = 0.0;
    std::from_chars(digits.data(), digits.data() + digits.size(), rounded);
    // No "-0.00": a hair below nothing is nothing.
    Value value = Exact(rounded == 0.0 ? 0.0 : rounded, std::move(unit));
    value.m_decimals = decimals;
    return value;
}

Value Value::Exact(double number, std::string unit)
{
    Value value;
    if (std::isfinite(number)) {
        value.m_data.emplace<double>(number);
        value.m_unit = std::move(unit);
    }
    return value;
}

Value Value::YesNo(bool yes)
{
    Value value;
    value.m_data.emplace<bool>(yes);
    return value;
}

Value Value::List(std::vector<std::string> texts, std::string words)
{
    Value value;
    value.m_words = std::move(words);
    value.m_data.emplace<std::vector<std::string>>(std::move(texts));
    return value;
}

Value Value::Word(std::string code, std::string words)
{
    Value value;
    value.m_data.emplace<std::string>(std::move(code));
    value.m_words = std::move(words);
    return value;
}

std::string Value::Words() const
{
    if (!m_words.empty()) {
        return Printable(m_words);
    }
    std::string text(kUnknown);
    if (const auto* yes = std::get_if<bool>(&m_data)) {
        text = *yes ? "yes" : "no";
    } else if (const auto* integer = std::get_if<std::int64_t>(&m_data)) {
        text = std::to_string(*integer);
    } else if (const auto* real = std::get_if<double>(&m_data)) {
        text = Digits(*real, m_decimals);
    } else if (const auto* words = std::get_if<std::string>(&m_data)) {
        text = Printable(*words);
    } else if (const auto* list = std::get_if<std::vector<std::string>>(&m_data)) {
        text = Joined(*list);
    }
    return m_unit.empty() ? text : text + " " + m_unit;
}

} // namespace fieldcore
