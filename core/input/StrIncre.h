#pragma once

#include <cstdint>
#include <string>

namespace fieldcore {

/// Counts a name up, one character at a time from the right, like an odometer whose wheels are
/// digits, capital letters or small letters. SetMaxLength() comes before the first Increment().
class CStrIncre
{
public:
    /// At the last character of @p name.
    explicit CStrIncre(const std::wstring& name);
    virtual ~CStrIncre() = default;
    CStrIncre(const CStrIncre&) = default;
    CStrIncre& operator=(const CStrIncre&) = default;

    /// @param p  counted from the right end: 0 is the last character
    void SetPosition(int p);

    /// Counts the character at the position up. Where there is no digit and no letter, the
    /// character that is carried goes behind what is there; left of the name it goes in front. A
    /// name that would become too long goes back to what it was at first.
    /// @return 1 if the character wrapped around and the next one is to count; 0 if that was all
    int Increment();

    /// The name as it is now.
    [[nodiscard]] const std::wstring& GetString() const { return m_name; }

    /// 1 after a character wrapped around, until it is set again.
    [[nodiscard]] int GetIncreFlag() const { return m_carry; }
    void SetIncreFlag(int flag) { m_carry = flag; }

    /// Longest name, characters.
    [[nodiscard]] std::uint8_t GetMaxLength() const { return m_maxLength; }
    void SetMaxLength(std::uint8_t length) { m_maxLength = length; }

protected:
    /// What Increment() does at a character that counts, at another one, and left of the name.
    int stNormalIncre();
    int stAddIncre();
    int stNegaIncre();

private:
    int m_carry = 0;
    std::wstring m_name;
    std::wstring m_given;
    std::int32_t m_position;
    wchar_t m_carried = L'\0'; // '1', 'A' or 'a' after a wrap: what makes the name longer
    std::uint8_t m_maxLength = 0;
};

/// Replaces the name of a point by the one after it: P1 by P2, A-9 by A-10, Z by AA. Digits and
/// letters carry into each other: P9 becomes Q0. A name that would need more than @p maxLength
/// characters stays, as does one that ends with neither digit nor letter.
void PointNameIncre(std::wstring& name, std::uint8_t maxLength);

} // namespace fieldcore
