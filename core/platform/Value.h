#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fieldcore {

/// One value of a report, for a person and for a program alike. What is not known is "--" to the
/// one and null to the other, never 0.
class Value
{
public:
    using Data = std::variant<std::monostate, bool, std::int64_t, double, std::string,
                              std::vector<std::string>>;

    static Value Unknown();
    /// @param none  what a person reads in place of an empty text
    static Value Text(std::string utf8, std::string none = "--");
    static Value Text(std::wstring_view text);
    static Value Integer(std::int64_t number, std::string unit = {});
    /// Both read the number rounded to @p decimals. One that is not finite is unknown.
    static Value Real(double number, int decimals, std::string unit = {});
    /// The number with as many digits as it takes to tell it from any other.
    static Value Exact(double number, std::string unit = {});
    static Value YesNo(bool yes);
    /// @param words  what a person reads; empty: the texts
    static Value List(std::vector<std::string> texts, std::string words = {});
    /// @param code   what a program reads
    /// @param words  what a person reads
    static Value Word(std::string code, std::string words);

    [[nodiscard]] const Data& GetData() const { return m_data; }
    [[nodiscard]] const std::string& Unit() const { return m_unit; }
    [[nodiscard]] bool IsUnknown() const { return m_data.index() == 0; }
    /// What a person reads: printable, with the unit.
    [[nodiscard]] std::string Words() const;

private:
    Value() = default;

    Data m_data;
    std::string m_unit;
    std::string m_words; // empty: made from the data
    int m_decimals = -1; // less than 0: exact
};

} // namespace fieldcore
