#include "core/settings/SettingsText.h"

#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <map>
#include <system_error>
#include <utility>
#include <variant>

namespace fieldcore {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kFirstLine = "fieldcore-settings 1";
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::string_view kTextType = "text";
constexpr std::string_view kNumberType = "number";
constexpr std::string_view kBinaryType = "binary";
constexpr wchar_t kSeparator = L'\\';

/// Characters that do not stand for themselves: those that would end a line or hide on a screen.
bool IsControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The byte of the two digits that @p text begins with.
std::optional<std::uint8_t> HexByte(std::string_view text)
{
    return text.size() < 2 ? std::nullopt : NumberOf<std::uint8_t>(text.substr(0, 2), 16);
}

void AppendHex(std::string& text, unsigned byte)
{
    text += kDigits[byte >> 4U & 0xFU];
    text += kDigits[byte & 0xFU];
}

std::string Escaped(std::wstring_view text)
{
    std::string escaped;
    for (const wchar_t unit : text) {
        const auto code = static_cast<char32_t>(unit);
        if (IsControl(code) || code == U'"' || code == U'%') {
            escaped += '%';
            AppendHex(escaped, static_cast<unsigned>(code));
        } else {
            AppendUtf8(escaped, code);
        }
    }
    return escaped;
}

/// @param fault  set if @p text is no escaped text
std::wstring Unescaped(std::string_view text, std::string& fault)
{
    std::wstring plain;
    while (!text.empty()) {
        const std::optional<char32_t> code = TakeUtf8Character(text);
        if (!code) {
            fault = "There are bytes that are no UTF-8: save the file as UTF-8.";
            return {};
        }
        if (IsControl(*code)) {
            fault = "A control character is written as % and two hexadecimal digits, such as %0A "
                    "for a line feed.";
            return {};
        }
        if (*code != U'%') {
            plain += static_cast<wchar_t>(*code);
            continue;
        }
        const std::optional<std::uint8_t> escaped = HexByte(text);
        if (!escaped || *escaped == 0 || *escaped >= 0xA0) {
            fault = "Behind % stand two hexadecimal digits from 01 to 9F; the sign itself is %25.";
            return {};
        }
        plain += static_cast<wchar_t>(*escaped);
        text.remove_prefix(2);
    }
    return plain;
}

/// Empty names in a path do not count.
std::wstring WithoutEmptyNames(std::wstring_view path, bool& tooLong)
{
    std::wstring clean;
    while (!path.empty()) {
        const std::wstring_view name = path.substr(0, path.find(kSeparator));
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        tooLong = tooLong || name.size() > SettingsStore::kMaxNameLength;
        if (!name.empty()) {
            clean += clean.empty() ? L"" : L"\\";
            clean += name;
        }
    }
    return clean;
}

/// Reads line after line; the first fault ends it.
class Reader
{
public:
    SettingsTextResult Read(std::string_view text);

private:
    void ReadLine(std::string_view line);
    void ReadKey(std::string_view line);
    void ReadValue(std::string_view line);
    /// Takes a text in quotes off the start of @p line.
    std::wstring TakeQuoted(std::string_view& line);
    SettingsValue ReadTyped(std::string_view typed);
    void Keep(std::wstring name, SettingsValue value);
    [[nodiscard]] bool Failed() const { return !m_fault.empty(); }
    void Fail(std::string fault)
    {
        if (!Failed()) {
            m_fault = std::move(fault);
        }
    }

    std::size_t m_line = 0;
    std::string m_fault;
    std::vector<SettingsKey> m_keys;
    std::map<std::wstring, std::size_t> m_lineOf; // of each value, by folded path and name
};

SettingsTextResult Reader::Read(std::string_view text)
{
    m_line = 1;
    if (text.size() > kMaxSettingsText) {
        Fail("The file is too long for settings.");
    }
    if (text.starts_with(kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    for (m_line = 0; !Failed() && !text.empty();) {
        ++m_line;
        const std::size_t length = text.find('\n');
        if (length == std::string_view::npos) {
            Fail("The last line does not end: the file may be cut. If it is whole, put a line end "
                 "there.");
            break;
        }
        std::string_view line = text.substr(0, length);
        text.remove_prefix(length + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        ReadLine(Trimmed(line));
    }
    if (m_line == 0) {
        m_line = 1;
        Fail("The file is empty; settings begin with \"" + std::string(kFirstLine) + "\".");
    }
    if (Failed()) {
        return {{}, SettingsTextFault{m_line, std::move(m_fault)}};
    }
    return {std::move(m_keys), std::nullopt};
}

void Reader::ReadLine(std::string_view line)
{
    if (m_line == 1) {
        if (line != kFirstLine) {
            Fail("These are no settings: the first line should be \"" + std::string(kFirstLine) +
                 "\".");
        }
    } else if (line.empty() || line.starts_with('#')) {
        return;
    } else if (line.starts_with('[')) {
        ReadKey(line);
    } else if (line.starts_with('"')) {
        ReadValue(line);
    } else {
        Fail("A line begins with [ (a key), \" (the name of a value) or # (a comment).");
    }
}

void Reader::ReadKey(std::string_view line)
{
    if (!line.ends_with(']')) {
        Fail("The key does not end with ].");
        return;
    }
    bool tooLong = false;
    std::wstring path =
        WithoutEmptyNames(Unescaped(line.substr(1, line.size() - 2), m_fault), tooLong);
    if (tooLong) {
        Fail("A name in the key is longer than " + std::to_string(SettingsStore::kMaxNameLength) +
             " characters.");
    }
    m_keys.push_back({std::move(path), {}});
}

void Reader::ReadValue(std::string_view line)
{
    std::wstring name = TakeQuoted(line);
    line = Trimmed(line);
    if (m_keys.empty()) {
        Fail("There is no key above this value: put a line such as [Software] there.");
    } else if (name.size() > SettingsStore::kMaxNameLength) {
        Fail("The name is longer than " + std::to_string(SettingsStore::kMaxNameLength) +
             " characters.");
    } else if (!line.starts_with('=')) {
        Fail("Behind the name stands =.");
    } else if (!Failed()) {
        SettingsValue value = ReadTyped(Trimmed(line.substr(1)));
        Keep(std::move(name), std::move(value));
    }
}

std::wstring Reader::TakeQuoted(std::string_view& line)
{
    const std::size_t end = line.find('"', 1);
    if (!line.starts_with('"') || end == std::string_view::npos) {
        Fail("A text stands between two quotation marks; one inside it is written %22.");
        return {};
    }
    const std::string_view inside = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
    return Unescaped(inside, m_fault);
}

SettingsValue Reader::ReadTyped(std::string_view typed)
{
    const std::string_view type = typed.substr(0, typed.find_first_of(" \t\""));
    std::string_view data = Trimmed(typed.substr(type.size()));
    if (type == kTextType) {
        std::wstring text = TakeQuoted(data);
        if (!data.empty()) {
            Fail("Something stands behind the text; a quotation mark inside it is written %22.");
        }
        return text;
    }
    if (type == kNumberType) {
        const std::optional<std::uint32_t> number = ParseSettingNumber(data);
        if (!number) {
            Fail("A number is 0 to 4294967295, or 0x0 to 0xFFFFFFFF.");
        }
        return number.value_or(0);
    }
    if (type == kBinaryType) {
        std::optional<std::vector<std::uint8_t>> bytes = ParseSettingBytes(data);
        if (!bytes) {
            Fail("Bytes are two hexadecimal digits each, such as 00 FF 1A.");
        }
        return std::move(bytes).value_or(std::vector<std::uint8_t>());
    }
    Fail("Behind = stands text, number or binary, and then the value.");
    return std::wstring();
}

void Reader::Keep(std::wstring name, SettingsValue value)
{
    const std::wstring place = FoldCase(m_keys.back().path) + L'\0' + FoldCase(name);
    const auto [found, isNew] = m_lineOf.emplace(place, m_line);
    if (!isNew) {
        Fail("The value stands in line " + std::to_string(found->second) +
             " already; upper and lower case are the same.");
    }
    m_keys.back().values.push_back({std::move(name), std::move(value)});
}

std::wstring Below(const std::wstring& path, const std::wstring& name)
{
    return path.empty() ? name : path + L'\\' + name;
}

} // namespace

SettingsTextResult ParseSettingsText(std::string_view utf8)
{
    return Reader().Read(utf8);
}

std::string FormatSettingsText(std::span<const SettingsKey> keys)
{
    std::string text(kFirstLine);
    text += '\n';
    for (const SettingsKey& key : keys) {
        text += "\n[" + Escaped(key.path) + "]\n";
        for (const NamedSetting& setting : key.values) {
            text += '"' + Escaped(setting.name) + "\" = ";
            if (const auto* words = std::get_if<std::wstring>(&setting.value)) {
                text += std::string(kTextType) + " \"" + Escaped(*words) + '"';
            } else if (const auto* number = std::get_if<std::uint32_t>(&setting.value)) {
                text += std::string(kNumberType) + ' ' + std::to_string(*number);
            } else {
                const auto& bytes = std::get<std::vector<std::uint8_t>>(setting.value);
                text += std::string(kBinaryType) + (bytes.empty() ? "" : " ");
                text += FormatSettingBytes(bytes);
            }
            text += '\n';
        }
    }
    return text;
}

std::optional<std::uint32_t> ParseSettingNumber(std::string_view text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHex ? 2 : 0);
    return NumberOf<std::uint32_t>(text, isHex ? 16 : 10);
}

std::optional<std::vector<std::uint8_t>> ParseSettingBytes(std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    for (text = Trimmed(text); !text.empty(); text = Trimmed(text)) {
        const std::optional<std::uint8_t> byte = HexByte(text);
        if (!byte) {
            return std::nullopt;
        }
        bytes.push_back(*byte);
        text.remove_prefix(2);
    }
    return bytes;
}

std::string FormatSettingBytes(std::span<const std::uint8_t> bytes)
{
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        text += text.empty() ? "" : " ";
        AppendHex(text, byte);
    }
    return text;
}

std::optional<std::vector<SettingsKey>> ReadSettingsTree(SettingsStore& store,
                                                         std::wstring_view path)
{
    // Keeps others from writing meanwhile. Where that cannot be had the tree is read all the same.
    const SettingsBatch still(store);
    std::vector<SettingsKey> keys;
    const bool isThere = store.OpenKey(path, KeyOpening::Existing); // or could not be looked for
    std::vector<std::wstring> waiting{std::wstring(path)};          // the next one last
    while (!waiting.empty()) {
        std::wstring key = std::move(waiting.back());
        waiting.pop_back();
        std::optional<std::vector<std::wstring>> below = store.Keys(key);
        std::optional<std::vector<NamedSetting>> values = store.Values(key);
        if (!below || !values) {
            return std::nullopt;
        }
        if (!isThere && below->empty() && values->empty()) {
            return keys;
        }
        std::reverse(below->begin(), below->end());
        for (const std::wstring& name : *below) {
            waiting.push_back(Below(key, name));
        }
        keys.push_back({std::move(key), std::move(*values)});
    }
    return keys;
}

bool StoreSettings(SettingsStore& store, std::span<const SettingsKey> keys, std::wstring& refused)
{
    refused.clear();
    SettingsBatch batch(store);
    if (!batch.IsOpen()) {
        return false;
    }
    for (const SettingsKey& key : keys) {
        if (!store.OpenKey(key.path, KeyOpening::Create)) {
            refused = key.path;
            return false;
        }
        for (const NamedSetting& setting : key.values) {
            if (!store.Set(key.path, setting.name, setting.value, KeyOpening::Create)) {
                refused = Below(key.path, setting.name);
                return false;
            }
        }
    }
    return batch.Commit();
}

} // namespace fieldcore
