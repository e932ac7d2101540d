#include "core/input/StrIncre.h"

#include <cstddef>
#include <limits>

namespace fieldcore {

namespace {

bool IsBetween(wchar_t c, wchar_t first, wchar_t last)
{
    return c >= first && c <= last;
}

} // namespace

CStrIncre::CStrIncre(const std::wstring& name) : m_name(name), m_given(name), m_position(0)
{
    SetPosition(0);
}

void CStrIncre::SetPosition(int p)
{
    m_position =
        static_cast<std::int32_t>(static_cast<std::int64_t>(m_name.size()) - 1 - std::int64_t{p});
}

int CStrIncre::Increment()
{
    if (m_position < 0) {
        return stNegaIncre();
    }
    if (static_cast<std::size_t>(m_position) >= m_name.size()) {
        return 0; // right of the name there is nothing to count
    }
    const wchar_t c = m_name[static_cast<std::size_t>(m_position)];
    const bool counts =
        IsBetween(c, L'0', L'9') || IsBetween(c, L'a', L'z') || IsBetween(c, L'A', L'Z');
    return counts ? stNormalIncre() : stAddIncre();
}

int CStrIncre::stNormalIncre()
{
    wchar_t& c = m_name[static_cast<std::size_t>(m_position)];
    switch (c) {
    case L'9':
        c = L'0';
        m_carried = L'1';
        break;
    case L'Z':
        c = L'A';
        m_carried = L'A';
        break;
    case L'z':
        c = L'a';
        m_carried = L'a';
        break;
    default:
        ++c;
        return 0;
    }
    m_carry = 1;
    return 1;
}

int CStrIncre::stAddIncre()
{
    if (m_maxLength <= m_name.size()) {
        m_name = m_given;
    } else if (m_carried != L'\0') {
        m_name.insert(static_cast<std::size_t>(m_position) + 1, 1, m_carried);
    }
    return 0;
}

int CStrIncre::stNegaIncre()
{
    if (m_maxLength <= m_name.size()) {
        m_name = m_given;
    } else if (m_carried != L'\0') {
        m_name.insert(0, 1, m_carried);
    }
    return 0;
}

void PointNameIncre(std::wstring& name, std::uint8_t maxLength)
{
    CStrIncre counter(name);
    counter.SetMaxLength(maxLength);
    if (counter.Increment() == 0) {
        name = counter.GetString();
        return;
    }
    constexpr int kMostCarries = std::numeric_limits<std::uint8_t>::max();
    for (int p = 1; p <= kMostCarries && counter.GetIncreFlag() != 0; ++p) {
        counter.SetIncreFlag(0);
        counter.SetPosition(p);
        if (counter.Increment() == 0) {
            name = counter.GetString();
            return;
        }
    }
}

} // namespace fieldcore
