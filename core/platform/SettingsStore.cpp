#include "core/platform/SettingsStore.h"

#include <algorithm>

namespace fieldcore {

std::string SettingsNotice::Words() const
{
    switch (kind) {
    case Kind::None:
        break;
    case Kind::NotKept:
        return "Settings cannot be saved and last only until the program ends: " + file + ": " +
               reason + ".";
    case Kind::NotRead:
        return "Settings can be neither read nor saved: " + file + ": " + reason + ".";
    case Kind::SetAside:
        return "The settings file was damaged. It is kept as " + file +
               ", and the settings start anew.";
    }
    return {};
}

namespace {

/// A row of capitals beyond ASCII, whose small letters follow in the same order.
struct Capitals
{
    wchar_t first;
    wchar_t last;
    wchar_t smallFirst;
};

constexpr Capitals kCapitals[] = {
    {L'\u0391', L'\u03A9', L'\u03B1'}, // Greek
    {L'\u0410', L'\u042F', L'\u0430'}, // Cyrillic
    {L'\u0401', L'\u0401', L'\u0451'}, // Cyrillic Io, which stands apart
    {L'\uFF21', L'\uFF3A', L'\uFF41'}, // full-width Latin
    {L'\u2160', L'\u2169', L'\u2170'}, // Roman numerals
};

wchar_t Small(wchar_t letter)
{
    if (letter < kCapitals[0].first) { // nearly all that is asked for
        return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a')
                                                : letter;
    }
    for (const Capitals& row : kCapitals) {
        if (letter >= row.first && letter <= row.last) {
            return static_cast<wchar_t>(letter - row.first + row.smallFirst);
        }
    }
    return letter;
}

} // namespace

SettingsBatch::SettingsBatch(SettingsStore& store) : m_store(store), m_open(store.Begin()) {}

SettingsBatch::~SettingsBatch()
{
    if (m_open) {
        m_store.Rollback();
    }
}

bool SettingsBatch::Commit()
{
    if (!m_open) {
        return false;
    }
    m_open = false;
    return m_store.Commit();
}

std::wstring FoldCase(std::wstring_view name)
{
    std::wstring folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), Small);
    return folded;
}

} // namespace fieldcore
