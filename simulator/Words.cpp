#include "simulator/Words.h"

#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace fieldcore::simulator {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view WithoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Short(double value)
{
    return fmt::format("{:g}", value);
}

} // namespace

Words::Words(std::string_view line) : m_rest(WithoutBlanks(line)) {}

std::string_view Words::Peek() const
{
    return m_rest.substr(0, m_rest.find_first_of(kBlanks));
}

std::string_view Words::Take()
{
    const std::string_view word = Peek();
    m_rest = WithoutBlanks(m_rest.substr(word.size()));
    return word;
}

std::string_view Words::TakeRest()
{
    return std::exchange(m_rest, {});
}

bool Words::Integer(std::string_view what, long min, long max, long& value)
{
    const std::string_view word = Take();
    const auto read = NumberOf<long>(word);
    if (!read || *read < min || *read > max) {
        return FailAt(what,
                      "a whole number from " + std::to_string(min) + " to " + std::to_string(max),
                      word);
    }
    value = *read;
    return true;
}

bool Words::Integer(std::string_view what, long min, long max, int& value)
{
    long read = 0;
    if (!Integer(what, min, max, read)) {
        return false;
    }
    value = static_cast<int>(read);
    return true;
}

bool Words::Real(std::string_view what, double min, double max, double& value)
{
    const std::string_view word = Take();
    const auto read = NumberOf<double>(word);
    if (!read || !std::isfinite(*read) || *read < min || *read > max) {
        return FailAt(what, "a number from " + Short(min) + " to " + Short(max), word);
    }
    value = *read;
    return true;
}

bool Words::YesNo(std::string_view what, bool& value)
{
    const std::string_view word = Take();
    if (word != "yes" && word != "no") {
        return FailAt(what, "yes or no", word);
    }
    value = word == "yes";
    return true;
}

bool Words::Moment(std::string_view what, Clock::UtcTime& value)
{
    using namespace std::chrono;
    const std::string date(Take());
    const std::string text = date + " " + std::string(Take());
    int part[6] = {};
    int used = 0;
    int usedAll = 0;
    // The letters of a date are few enough for one scan; what it leaves over is no date.
    const int fields = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d%n:%2d%n", &part[0], &part[1],
                                   &part[2], &part[3], &part[4], &used, &part[5], &usedAll);
    const year_month_day day{year(part[0]), month(static_cast<unsigned>(part[1])),
                             std::chrono::day(static_cast<unsigned>(part[2]))};
    const int end = fields == 6 ? usedAll : used;
    const bool good = fields >= 5 && end == static_cast<int>(text.size()) && day.ok() &&
                      part[0] >= 1980 && part[0] <= 2099 && part[3] >= 0 && part[3] < 24 &&
                      part[4] >= 0 && part[4] < 60 && part[5] >= 0 && part[5] < 60;
    if (!good) {
        return Fail(std::string(what) +
                    " is a date in UTC such as 2026-03-14 01:30:00, from 1980 to 2099");
    }
    value = sys_days(day) + hours(part[3]) + minutes(part[4]) + seconds(part[5]);
    return true;
}

bool Words::Text(std::string_view what, std::size_t width, std::string& value)
{
    const std::string_view text = TakeRest();
    const bool printable =
        std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (text.empty() || text.size() > width || !printable) {
        return FailAt(what, "1 to " + std::to_string(width) + " ASCII characters", text);
    }
    value = text;
    return true;
}

bool Words::Utf8Text(std::string_view what, std::size_t width, std::string& value)
{
    const std::string_view text = TakeRest();
    const bool hasControl =
        std::any_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; });
    if (text.empty() || text.size() > width || hasControl || ToUtf8(FromUtf8(text)) != text) {
        return FailAt(what, "UTF-8 of 1 to " + std::to_string(width) + " bytes", text);
    }
    value = text;
    return true;
}

bool Words::End()
{
    return AtEnd() || Fail("\"" + std::string(Peek()) + "\" is one word too many");
}

bool Words::Fail(std::string cause)
{
    m_error = std::move(cause);
    return false;
}

bool Words::FailAt(std::string_view what, std::string_view wanted, std::string_view word)
{
    const std::string found = word.empty() ? "nothing" : "\"" + std::string(word) + "\"";
    return Fail(std::string(what) + " must be " + std::string(wanted) + ", not " + found);
}

} // namespace fieldcore::simulator
