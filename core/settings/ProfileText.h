#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

enum class ProfileEncoding
{
    Cp932, ///< without a byte order mark; also what a new file gets
    Utf8,  ///< with a byte order mark
    Utf16  ///< little-endian, with a byte order mark
};

/// A key with its value.
struct ProfileEntry
{
    std::wstring_view key;
    std::wstring_view value;
};

/// A section with all its entries.
struct ProfileSection
{
    std::wstring_view name;
    std::span<const ProfileEntry> entries;
};

/// The content of a profile file: section lines "[name]" and below each its entries "key=value".
/// There are no comments, no trimming and no quoting. A line ends with CR LF or LF and counts for
/// its first 256 characters. Sections and keys are compared exactly, as they are in the encoding of
/// the file.
///
/// A section starts with the first line that names it and ends at the next line that starts with
/// "[". Its name is what stands between that and the last character of the line, so that blanks
/// behind the bracket make it another name.
///
/// Any bytes may be given to it.
class ProfileText
{
public:
    static constexpr std::size_t kMaxLine = 256; ///< characters, without the line end

    explicit ProfileText(std::string bytes);

    /// The value of the first entry of @p key in the section: what follows the first "=". A value
    /// should not contain a "=": it then ends there and loses its last two characters besides.
    /// @return nothing if there is no such entry
    [[nodiscard]] std::optional<std::wstring> Value(std::wstring_view section,
                                                    std::wstring_view key) const;

    /// Hands over every entry of some sections in one pass, in the order of the file. Of a section
    /// the first counts, and of an entry that is there twice the first is what Value() finds.
    /// @param sections  no two alike
    /// @param entry     gets the position in @p sections, key and value; these views end with it
    void Visit(std::span<const std::wstring> sections,
               const std::function<void(std::size_t section, std::wstring_view key,
                                        std::wstring_view value)>& entry) const;

    /// The names of the sections, in their order, each once.
    [[nodiscard]] std::vector<std::wstring> Sections() const;

    /// The content with one entry set, in the encoding it has; all other lines stay as they are. An
    /// entry of the key is replaced. A new one goes before the first empty line of the section, or
    /// to its end; a section that does not exist is started at the end of the file.
    /// @return nothing if the entry could not be found again: the key contains "=" or starts with
    /// "[", the line would be too long, or there is a line end or NUL in a text
    [[nodiscard]] std::optional<std::string>
    WithEntry(std::wstring_view section, std::wstring_view key, std::wstring_view value) const;

    /// The content with entries set as above: thousands of sections, known or new, cost one pass.
    /// @return nothing if one of the entries could not be found again, or a new section is there
    /// twice
    [[nodiscard]] std::optional<std::string>
    WithSections(std::span<const ProfileSection> sections) const;

    /// The content without the lines from the first section line of that name up to the next
    /// section line.
    /// @return nothing if there is no such section
    [[nodiscard]] std::optional<std::string> WithoutSection(std::wstring_view section) const;

private:
    struct Line;
    struct Change;

    [[nodiscard]] Line LineAt(std::size_t start) const;
    [[nodiscard]] std::wstring Decode(std::string_view bytes) const;
    [[nodiscard]] std::string Encode(std::wstring_view text) const;
    /// The content with the entries of sections that are there, in one pass.
    [[nodiscard]] std::string WithChanges(std::map<std::wstring, Change>& changes) const;

    std::string m_bytes;
    ProfileEncoding m_encoding = ProfileEncoding::Cp932;
    std::size_t m_start = 0; ///< of the first line, behind the byte order mark
};

} // namespace fieldcore
