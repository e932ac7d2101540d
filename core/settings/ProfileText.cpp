#include "core/settings/ProfileText.h"

#include "core/platform/Cp932.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace fieldcore {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::wstring_view kLineEnd = L"\r\n";

std::uint16_t Utf16Unit(std::string_view bytes, std::size_t at)
{
    const auto low = static_cast<std::uint8_t>(bytes[at]);
    const auto high = static_cast<std::uint8_t>(bytes[at + 1]);
    return static_cast<std::uint16_t>(low | (high << 8U));
}

std::wstring FromUtf16(std::string_view bytes)
{
    std::wstring text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const std::uint32_t unit = Utf16Unit(bytes, at);
        if (unit < 0xD800 || unit > 0xDFFF) {
            text += static_cast<wchar_t>(unit);
            continue;
        }
        const std::uint32_t next = at + 3 < bytes.size() ? Utf16Unit(bytes, at + 2) : 0U;
        if (unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
            text += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00));
            at += 2;
        } else {
            text += L'?'; // half a pair
        }
    }
    return text;
}

std::string ToUtf16(std::wstring_view text)
{
    std::string bytes;
    const auto append = [&bytes](std::uint32_t unit) {
        bytes += static_cast<char>(unit & 0xFFU);
        bytes += static_cast<char>(unit >> 8U);
    };
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            append(0x3F); // a question mark
        } else if (code > 0xFFFF) {
            append(0xD800 + ((code - 0x10000) >> 10U));
            append(0xDC00 + ((code - 0x10000) & 0x3FFU));
        } else {
            append(code);
        }
    }
    return bytes;
}

/// The value of an entry's line.
std::wstring ValueOf(std::wstring_view line)
{
    std::wstring_view value = line.substr(line.find(L'=') + 1);
    const std::size_t end = value.find(L'=');
    if (end != std::wstring_view::npos) {
        // The two characters that a line end would have taken are taken here as well. Files in
        // the field rely on what reading them has always given.
        value = value.substr(0, end - std::min<std::size_t>(end, 2));
    }
    return std::wstring(value);
}

bool StartsSection(std::wstring_view line)
{
    return line.starts_with(L'[');
}

/// Whether @p line is the section line of @p name. Its last character closes the name, whatever
/// it is.
bool NamesSection(std::wstring_view line, std::wstring_view name)
{
    return line.size() == name.size() + 2 && StartsSection(line) &&
           line.substr(1, name.size()) == name;
}

bool HoldsEntry(std::wstring_view line, std::wstring_view key)
{
    return line.size() > key.size() && line[key.size()] == L'=' && line.starts_with(key) &&
           key.find(L'=') == std::wstring_view::npos;
}

bool BreaksLine(std::wstring_view text)
{
    constexpr std::wstring_view kBreaks(L"\r\n\0", 3);
    return text.find_first_of(kBreaks) != std::wstring_view::npos;
}

/// Whether an entry would be lost among the lines.
bool IsLost(std::wstring_view section, const ProfileEntry& entry)
{
    return BreaksLine(section) || BreaksLine(entry.key) || BreaksLine(entry.value) ||
           entry.key.find(L'=') != std::wstring_view::npos || StartsSection(entry.key) ||
           section.size() + 2 > ProfileText::kMaxLine ||
           entry.key.size() + 1 + entry.value.size() > ProfileText::kMaxLine;
}

} // namespace

struct ProfileText::Line
{
    std::size_t start = 0;
    std::size_t end = 0; ///< where the next line starts
    std::wstring text;   ///< without the line end, cut to kMaxLine

    [[nodiscard]] std::size_t Size() const { return end - start; }
};

ProfileText::ProfileText(std::string bytes) : m_bytes(std::move(bytes))
{
    if (m_bytes.starts_with(kUtf8Mark)) {
        m_encoding = ProfileEncoding::Utf8;
        m_start = kUtf8Mark.size();
    } else if (m_bytes.starts_with(kUtf16Mark)) {
        m_encoding = ProfileEncoding::Utf16;
        m_start = kUtf16Mark.size();
        // Half a character at the end would shift all that is written behind it.
        m_bytes.resize(m_bytes.size() - m_bytes.size() % 2);
    }
}

std::wstring ProfileText::Decode(std::string_view bytes) const
{
    switch (m_encoding) {
    case ProfileEncoding::Utf8:
        return FromUtf8(bytes);
    case ProfileEncoding::Utf16:
        return FromUtf16(bytes);
    case ProfileEncoding::Cp932:
        break;
    }
    return FromCp932(bytes);
}

std::string ProfileText::Encode(std::wstring_view text) const
{
    switch (m_encoding) {
    case ProfileEncoding::Utf8:
        return ToUtf8(text);
    case ProfileEncoding::Utf16:
        return ToUtf16(text);
    case ProfileEncoding::Cp932:
        break;
    }
    return ToCp932(text);
}

ProfileText::Line ProfileText::LineAt(std::size_t start) const
{
    // Neither byte of a line end is ever part of a longer character, except in UTF-16.
    const std::size_t width = m_encoding == ProfileEncoding::Utf16 ? 2 : 1;
    const auto isAt = [&](std::size_t at, char character) {
        return m_bytes[at] == character && (width == 1 || m_bytes[at + 1] == '\0');
    };
    std::size_t feed = m_bytes.find('\n', start);
    while (feed != std::string::npos && ((feed - start) % width != 0 || !isAt(feed, '\n'))) {
        feed = m_bytes.find('\n', feed + 1);
    }
    Line line;
    line.start = start;
    line.end = feed == std::string::npos ? m_bytes.size() : feed + width;
    std::size_t end = feed == std::string::npos ? m_bytes.size() : feed;
    if (feed != std::string::npos && end > start && isAt(end - width, '\r')) {
        end -= width;
    }
    constexpr std::size_t kLongestCharacter = 4; // bytes, in any of the encodings
    line.text = Decode(std::string_view(m_bytes).substr(
        start, std::min(end - start, kMaxLine * kLongestCharacter)));
    line.text.resize(std::min(line.text.size(), kMaxLine));
    return line;
}

std::optional<std::wstring> ProfileText::Value(std::wstring_view section,
                                               std::wstring_view key) const
{
    const std::wstring wanted(section);
    // As it comes back from a file of this encoding, which may have another form of a sign.
    const std::wstring wantedKey = Decode(Encode(key));
    std::optional<std::wstring> found;
    Visit(std::span(&wanted, 1), [&](std::size_t, std::wstring_view each, std::wstring_view value) {
        if (!found && each == wantedKey) {
            found = value;
        }
    });
    return found;
}

void ProfileText::Visit(std::span<const std::wstring> sections,
                        const std::function<void(std::size_t section, std::wstring_view key,
                                                 std::wstring_view value)>& entry) const
{
    std::map<std::wstring, std::size_t> wanted; // and not seen yet
    for (std::size_t at = 0; at < sections.size(); ++at) {
        wanted.emplace(Decode(Encode(sections[at])), at);
    }
    const std::size_t none = sections.size();
    std::size_t current = none;
    for (std::size_t at = m_start; at < m_bytes.size() && (current != none || !wanted.empty());) {
        const Line line = LineAt(at);
        at = line.end;
        if (StartsSection(line.text)) {
            current = none;
            const std::wstring name =
                line.text.size() < 2 ? std::wstring() : line.text.substr(1, line.text.size() - 2);
            if (const auto found = wanted.find(name);
                found != wanted.end() && NamesSection(line.text, name)) {
                current = found->second;
                wanted.erase(found);
            }
        } else if (const std::size_t equals = line.text.find(L'=');
                   current != none && equals != std::wstring::npos) {
            entry(current, std::wstring_view(line.text).substr(0, equals), ValueOf(line.text));
        }
    }
}

std::vector<std::wstring> ProfileText::Sections() const
{
    std::vector<std::wstring> names;
    std::set<std::wstring> known;
    for (std::size_t at = m_start; at < m_bytes.size();) {
        const Line line = LineAt(at);
        at = line.end;
        if (StartsSection(line.text) && line.text.size() >= 2) {
            std::wstring name = line.text.substr(1, line.text.size() - 2);
            if (known.insert(name).second) {
                names.push_back(std::move(name));
            }
        }
    }
    return names;
}

std::optional<std::string> ProfileText::WithEntry(std::wstring_view section, std::wstring_view key,
                                                  std::wstring_view value) const
{
    const ProfileEntry entry{key, value};
    const ProfileSection changed{section, std::span(&entry, 1)};
    return WithSections(std::span(&changed, 1));
}

/// The entries that one section is to have.
struct ProfileText::Change
{
    struct Entry
    {
        std::wstring key;
        std::string line; ///< as it stands in the file
        bool isPlaced = false;
    };
    std::vector<Entry> entries;
    bool isSeen = false; ///< its section

    void Set(std::wstring key, std::string line)
    {
        const auto known = std::find_if(entries.begin(), entries.end(),
                                        [&](const Entry& entry) { return entry.key == key; });
        if (known != entries.end()) {
            known->line = std::move(line);
        } else {
            entries.push_back({std::move(key), std::move(line)});
        }
    }
    /// The entry that takes the place of @p line; nullptr if it stays.
    Entry* Replaces(std::wstring_view line)
    {
        const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
            return !entry.isPlaced && HoldsEntry(line, entry.key);
        });
        return found != entries.end() ? &*found : nullptr;
    }
};

std::string ProfileText::WithChanges(std::map<std::wstring, Change>& changes) const
{
    std::string changed = m_bytes.substr(0, m_start);
    Change* current = nullptr;
    std::optional<std::size_t> emptyLine; // in the section
    const auto finish = [&] {
        std::string added;
        for (Change::Entry& entry :
             current != nullptr ? current->entries : std::vector<Change::Entry>()) {
            added += entry.isPlaced ? std::string() : entry.line;
        }
        if (!added.empty()) {
            const std::size_t at = emptyLine.value_or(changed.size());
            if (at == changed.size() && !changed.ends_with(Encode(L"\n"))) {
                added.insert(0, Encode(kLineEnd)); // the last line has none
            }
            changed.insert(at, added);
        }
        current = nullptr;
        emptyLine.reset();
    };
    for (std::size_t at = m_start; at < m_bytes.size();) {
        const Line line = LineAt(at);
        at = line.end;
        if (StartsSection(line.text)) {
            finish();
            const auto named = line.text.size() < 2
                                   ? changes.end()
                                   : changes.find(line.text.substr(1, line.text.size() - 2));
            if (named != changes.end() && !std::exchange(named->second.isSeen, true)) {
                current = &named->second;
            }
        } else if (current != nullptr) {
            if (Change::Entry* const entry = current->Replaces(line.text)) {
                entry->isPlaced = true;
                changed += entry->line;
                continue;
            }
            if (line.text.empty() && !emptyLine) {
                emptyLine = changed.size();
            }
        }
        changed.append(m_bytes, line.start, line.end - line.start);
    }
    finish();
    return changed;
}

std::optional<std::string> ProfileText::WithSections(std::span<const ProfileSection> sections) const
{
    const std::vector<std::wstring> names = Sections();
    const std::set<std::wstring> known(names.begin(), names.end());
    std::set<std::wstring> added;
    std::map<std::wstring, Change> changes; // of sections that are there
    std::wstring text;                      // of those that are not
    for (const ProfileSection& section : sections) {
        // As it comes back from a file of this encoding, which may have another form of a sign.
        const std::wstring name = Decode(Encode(section.name));
        const bool isKnown = known.contains(name);
        if (!isKnown && !added.insert(name).second) {
            return std::nullopt; // given twice: which of them is meant?
        }
        if (!isKnown) {
            text.append(L"[").append(name).append(L"]").append(kLineEnd);
        }
        for (const ProfileEntry& entry : section.entries) {
            if (IsLost(section.name, entry)) {
                return std::nullopt;
            }
            const std::wstring line =
                std::wstring(entry.key).append(L"=").append(entry.value).append(kLineEnd);
            if (isKnown) {
                changes[name].Set(Decode(Encode(entry.key)), Encode(line));
            } else {
                text += line;
            }
        }
    }
    std::string changed = WithChanges(changes);
    if (!text.empty() && changed.size() > m_start && !changed.ends_with(Encode(L"\n"))) {
        text.insert(0, kLineEnd); // the last line has none
    }
    return changed + Encode(text);
}

std::optional<std::string> ProfileText::WithoutSection(std::wstring_view section) const
{
    const std::wstring wanted = Decode(Encode(section));
    std::optional<std::size_t> start;
    std::size_t at = m_start;
    while (at < m_bytes.size()) {
        const Line line = LineAt(at);
        if (start && StartsSection(line.text)) {
            break;
        }
        if (!start && NamesSection(line.text, wanted)) {
            start = at;
        }
        at = line.end;
    }
    if (!start) {
        return std::nullopt;
    }
    std::string changed = m_bytes;
    return changed.erase(*start, at - *start);
}

} // namespace fieldcore
