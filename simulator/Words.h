#pragma once

#include "core/platform/Clock.h"

#include <string>
#include <string_view>

namespace fieldcore::simulator {

/// The words of one line, taken from left to right. Each reader answers false when the word is
/// missing or wrong and then has said why, so that readers can be joined with &&.
class Words
{
public:
    explicit Words(std::string_view line);

    [[nodiscard]] bool AtEnd() const { return m_rest.empty(); }
    /// The next word; empty at the end.
    [[nodiscard]] std::string_view Peek() const;
    std::string_view Take();
    /// Everything that is left, blanks within included.
    std::string_view TakeRest();

    /// @param what  what the word means, for the error
    [[nodiscard]] bool Integer(std::string_view what, long min, long max, long& value);
    [[nodiscard]] bool Integer(std::string_view what, long min, long max, int& value);
    [[nodiscard]] bool Real(std::string_view what, double min, double max, double& value);
    [[nodiscard]] bool YesNo(std::string_view what, bool& value);
    /// A date and a time of day: 2026-03-14 01:30:00, from 1980 to 2099; seconds may be left out.
    /// UTC.
    [[nodiscard]] bool Moment(std::string_view what, Clock::UtcTime& value);
    /// All that is left, as printable ASCII of at most @p width characters.
    [[nodiscard]] bool Text(std::string_view what, std::size_t width, std::string& value);
    /// All that is left, as UTF-8 of at most @p width bytes without control characters.
    [[nodiscard]] bool Utf8Text(std::string_view what, std::size_t width, std::string& value);
    /// Fails if words are left over.
    [[nodiscard]] bool End();

    /// Remembers why; always false.
    bool Fail(std::string cause);
    [[nodiscard]] const std::string& Error() const { return m_error; }

private:
    bool FailAt(std::string_view what, std::string_view wanted, std::string_view word);

    std::string_view m_rest;
    std::string m_error;
};

} // namespace fieldcore::simulator
