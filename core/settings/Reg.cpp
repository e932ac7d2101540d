#include "core/settings/Reg.h"

#include <algorithm>
#include <utility>
#include <variant>
#include <vector>

namespace fieldcore {

namespace {

/// A path of two parts of which either may be empty.
std::wstring Joined(std::wstring_view upper, std::wstring_view lower)
{
    std::wstring path;
    path.reserve(upper.size() + 1 + lower.size());
    path += upper;
    if (!upper.empty() && !lower.empty()) {
        path += L'\\';
    }
    path += lower;
    return path;
}

std::size_t Utf16Length(std::wstring_view text)
{
    const auto pairs = std::count_if(text.begin(), text.end(), [](wchar_t character) {
        return static_cast<char32_t>(character) > 0xFFFF;
    });
    return text.size() + static_cast<std::size_t>(pairs);
}

} // namespace

CReg::CReg(SettingsRoots& roots) : m_roots(roots) {}

bool CReg::FitsText(std::wstring_view text)
{
    return Utf16Length(text) <= kMaxText && text.find(L'\0') == std::wstring_view::npos;
}

int CReg::SetRootKey(RootKey root, int create)
{
    m_root = root;
    m_opening = create != 0 ? KeyOpening::Create : KeyOpening::Existing;
    return 1;
}

int CReg::SetBasePath(std::wstring_view path)
{
    if (path.size() > kMaxBasePath) {
        return 0;
    }
    m_basePath = path;
    return 1;
}

int CReg::ReadString(std::wstring_view subkey, std::wstring_view name, std::wstring& text,
                     std::wstring_view defaultText) const
{
    SettingsRead read = Read(subkey, name);
    auto* stored = std::get_if<std::wstring>(&read.value);
    if (read.state != SettingsReadState::Found || stored == nullptr ||
        Utf16Length(*stored) > kMaxText) {
        text = defaultText;
        return 0;
    }
    text = std::move(*stored);
    return 1;
}

int CReg::WriteString(std::wstring_view subkey, std::wstring_view name,
                      std::wstring_view text) const
{
    return Write(subkey, name, std::wstring(text));
}

int CReg::ReadNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t& number,
                     std::uint32_t defaultNumber) const
{
    const SettingsRead read = Read(subkey, name);
    const auto* stored = std::get_if<std::uint32_t>(&read.value);
    const bool found = read.state == SettingsReadState::Found && stored != nullptr;
    number = found ? *stored : defaultNumber;
    return found ? 1 : 0;
}

int CReg::ReadOrStoreNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t& number,
                            std::uint32_t defaultNumber) const
{
    const SettingsRead read = Read(subkey, name);
    number = defaultNumber;
    if (read.state == SettingsReadState::Missing) {
        return WriteNumber(subkey, name, defaultNumber);
    }
    const auto* stored = std::get_if<std::uint32_t>(&read.value);
    if (read.state != SettingsReadState::Found || stored == nullptr) {
        return 0;
    }
    number = *stored;
    return 1;
}

int CReg::WriteNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t number) const
{
    return Write(subkey, name, number);
}

int CReg::ReadBinary(std::wstring_view subkey, std::wstring_view name,
                     std::span<std::uint8_t> bytes,
                     std::span<const std::uint8_t> defaultBytes) const
{
    const SettingsRead read = Read(subkey, name);
    const std::size_t defaults = std::min(bytes.size(), defaultBytes.size());
    std::copy_n(defaultBytes.begin(), defaults, bytes.begin());
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(defaults), bytes.end(), std::uint8_t{0});
    if (read.state == SettingsReadState::Missing) {
        return WriteBinary(subkey, name, bytes);
    }
    const auto* stored = std::get_if<std::vector<std::uint8_t>>(&read.value);
    if (read.state != SettingsReadState::Found || stored == nullptr ||
        stored->size() > bytes.size()) {
        return 0;
    }
    std::copy(stored->begin(), stored->end(), bytes.begin());
    return 1;
}

int CReg::WriteBinary(std::wstring_view subkey, std::wstring_view name,
                      std::span<const std::uint8_t> bytes) const
{
    return Write(subkey, name, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

int CReg::DeleteKey(std::wstring_view subkey, std::wstring_view name) const
{
    // Only separators are no name either: they would stand for the opened key itself.
    if (name.find_first_not_of(L'\\') == std::wstring_view::npos) {
        return 0;
    }
    const std::wstring key = KeyPath(subkey);
    return Store().OpenKey(key, m_opening) && Store().DeleteKey(Joined(key, name)) ? 1 : 0;
}

std::wstring CReg::KeyPath(std::wstring_view subkey) const
{
    return Joined(m_basePath, subkey);
}

SettingsRead CReg::Read(std::wstring_view subkey, std::wstring_view name) const
{
    const std::wstring key = KeyPath(subkey);
    // A value that is found has its key: only without one there is a key to look for.
    SettingsRead read = Store().Get(key, name);
    if (read.state == SettingsReadState::Missing && !Store().OpenKey(key, m_opening)) {
        read.state = SettingsReadState::Failed;
    }
    return read;
}

int CReg::Write(std::wstring_view subkey, std::wstring_view name, const SettingsValue& value) const
{
    return Store().Set(KeyPath(subkey), name, value, m_opening) ? 1 : 0;
}

} // namespace fieldcore
