#pragma once

#include "core/platform/Clock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fieldcore::simulator {

struct Scenario;

enum class FileState : std::uint8_t
{
    Live,
    Open,   ///< being logged: it can be neither read nor deleted
    Deleted ///< in the recycle bin
};

/// A file in the receiver's memory. What is in it is computed when it is asked for, so that a file
/// of gigabytes costs nothing.
struct ReceiverFile
{
    std::string name; ///< up to 14 bytes of any value; a Pica has 8 and no extension
    std::uint32_t size = 0;
    Clock::UtcTime time; ///< UTC
    FileState state = FileState::Live;
    bool hidden = false; ///< a Pica says that it is not to be listed
    bool locked = false; ///< deleting and recovering it is refused
    /// What listings say that the size is; none: the truth.
    std::optional<std::uint32_t> announcedSize;
    std::string text; ///< repeated, it is the content; empty: numbers computed from the name

    bool operator==(const ReceiverFile&) const = default;
};

/// The files that the receiver of @p scenario starts with. A Lark file without an extension has
/// got that of its state: Q00, Q01 or Q02, and Q0D or Q1D in the recycle bin.
[[nodiscard]] std::vector<ReceiverFile> FilesAtStart(const Scenario& scenario);

/// Writes what stands in @p file from @p offset on into @p bytes. The same in every simulator; the
/// extension does not matter, so that deleting and recovering a file leave its content alone.
/// @param offset  may lie behind the file's end, which is not looked at
void ReadFileContent(const ReceiverFile& file, std::uint64_t offset, std::span<std::uint8_t> bytes);

/// Writes every file that FilesAtStart() names into @p folder, which is made if it is not there.
/// Left out are names that no plain file can have ("a/b", "..", control characters) and second
/// files of a name.
/// @param leftOut  these names
/// @param error    what went wrong
/// @return false if a file cannot be written, or stands there already
[[nodiscard]] bool ExportFiles(const Scenario& scenario, const std::filesystem::path& folder,
                               std::vector<std::string>& leftOut, std::string& error);

} // namespace fieldcore::simulator
