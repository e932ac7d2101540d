#pragma once

#include "core/settings/ProfileText.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

/// Profile files: see ProfileText for what is in them. Any thread, and several processes may write
/// the same file. A file of more than kMaxProfileBytes is none: it is neither read nor written.
inline constexpr std::uintmax_t kMaxProfileBytes = 16U << 20U;

/// Reads one entry.
/// @param value  its value, or @p defaultValue if it was not found
/// @return 1 if it was found, else 0
int ReadProfile(std::wstring_view section, std::wstring_view key, std::wstring_view defaultValue,
                std::wstring& value, const std::filesystem::path& file);

/// The names of the sections, in the order of the file; see ProfileText::Sections(). None if it
/// cannot be read.
[[nodiscard]] std::vector<std::wstring> ReadProfileSections(const std::filesystem::path& file);

/// The whole content, for who reads much of it; see ProfileText. That of a file that is not there
/// is empty.
/// @return nothing if it cannot be read
[[nodiscard]] std::optional<ProfileText> LoadProfile(const std::filesystem::path& file);

/// Writes one entry. The new content is built in "$#TEMP.TMP" in the file's folder, which must be
/// there, and takes the file's place when it is safely on the disk: a file that is not there is
/// made, and whatever happens the file is either the old or the new one.
/// @return 1 if the entry is on the disk; 0 with the old file kept if it is not, or could not be
/// found again (see ProfileText::WithEntry)
int WriteProfile(std::wstring_view section, std::wstring_view key, std::wstring_view value,
                 const std::filesystem::path& file);

/// Writes the entries of several sections, all of them or none; else as above.
int WriteProfile(std::span<const ProfileSection> sections, const std::filesystem::path& file);

/// Removes a section with all its lines.
/// @return 1 if it is gone; 0 with the old file kept if there was none, or it could not be written
int RemoveProfileSection(std::wstring_view section, const std::filesystem::path& file);

} // namespace fieldcore
