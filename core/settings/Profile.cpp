#include "core/settings/Profile.h"

#include "core/platform/AtomicFile.h"

#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

/// All bytes of the file; those of a file that is not there are none.
/// @return nothing if it cannot be read, or is no plain file or too large
std::optional<std::string> Load(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found) {
        return std::string();
    }
    if (!fs::is_regular_file(status)) {
        return std::nullopt;
    }
    const std::uintmax_t size = fs::file_size(file, error);
    std::ifstream in(file, std::ios::binary);
    if (error || size > kMaxProfileBytes || !in) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(size), '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (in.bad()) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

/// Replaces the file by what @p change makes of its content.
template <typename Change>
int Edit(const fs::path& file, Change change)
{
    AtomicFile replacement(file, "$#TEMP.TMP");
    if (replacement.Open()) {
        return 0;
    }
    // Read only now that no other writer can come between.
    std::optional<std::string> bytes = Load(file);
    if (!bytes) {
        return 0;
    }
    const std::optional<std::string> changed = change(std::move(*bytes));
    if (!changed || changed->size() > kMaxProfileBytes) {
        return 0;
    }
    return !replacement.Write(*changed) && !replacement.Commit() ? 1 : 0;
}

} // namespace

int ReadProfile(std::wstring_view section, std::wstring_view key, std::wstring_view defaultValue,
                std::wstring& value, const fs::path& file)
{
    const std::optional<ProfileText> profile = LoadProfile(file);
    const std::optional<std::wstring> found = profile ? profile->Value(section, key) : std::nullopt;
    value = found ? *found : std::wstring(defaultValue);
    return found ? 1 : 0;
}

std::vector<std::wstring> ReadProfileSections(const fs::path& file)
{
    const std::optional<ProfileText> profile = LoadProfile(file);
    return profile ? profile->Sections() : std::vector<std::wstring>();
}

std::optional<ProfileText> LoadProfile(const fs::path& file)
{
    std::optional<std::string> bytes = Load(file);
    return bytes ? std::optional(ProfileText(std::move(*bytes))) : std::nullopt;
}

int WriteProfile(std::wstring_view section, std::wstring_view key, std::wstring_view value,
                 const fs::path& file)
{
    return Edit(file, [&](std::string bytes) {
        return ProfileText(std::move(bytes)).WithEntry(section, key, value);
    });
}

int WriteProfile(std::span<const ProfileSection> sections, const fs::path& file)
{
    return Edit(file, [&](std::string bytes) {
        return ProfileText(std::move(bytes)).WithSections(sections);
    });
}

int RemoveProfileSection(std::wstring_view section, const fs::path& file)
{
    return Edit(file, [&](std::string bytes) {
        return ProfileText(std::move(bytes)).WithoutSection(section);
    });
}

} // namespace fieldcore
