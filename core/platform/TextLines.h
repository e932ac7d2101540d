#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

// What the texts that are read have in common: lines, fields, numbers.

/// No text that is read is longer, bytes.
inline constexpr std::size_t kMostText = std::size_t{1} << 20;

/// The lines of a text, with LF or CR LF behind them. A view: the text must outlive it.
class TextLines
{
public:
    explicit TextLines(std::string_view text);

    /// The next line, without white space at both ends.
    /// @return nothing behind the last
    [[nodiscard]] std::optional<std::string_view> Next();
    /// The same with the white space at its start: for texts whose columns mean something.
    [[nodiscard]] std::optional<std::string_view> NextWhole();

    /// Of the line that Next() gave, from 1; 0 before the first.
    [[nodiscard]] int Number() const { return m_number; }

private:
    std::string_view m_rest;
    int m_number = 0;
};

/// @return @p text without white space at both ends
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// What stands between white space.
[[nodiscard]] std::vector<std::string_view> Words(std::string_view line);

/// @p text for a message: cut after 40 characters, and "?" for what is not printable ASCII.
[[nodiscard]] std::string Shown(std::string_view text);

/// Which numbers a field may have.
struct FieldRange
{
    double least;
    double most;           ///< included
    bool whole;            ///< without a fraction
    std::string_view text; ///< the range for a person, with its unit
};

/// Reads a decimal number: digits with or without a sign, a point and an exponent, whose letter may
/// be a D. Nothing else is a number, whatever the language of the user's session.
/// @return what is wrong with it; nothing if @p value has it
[[nodiscard]] std::optional<std::string> ReadNumber(std::string_view word, const FieldRange& range,
                                                    double& value);

} // namespace fieldcore
