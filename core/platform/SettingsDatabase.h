#pragma once

#include "core/platform/SettingsStore.h"
#include "core/platform/SqliteStatement.h"

#include <filesystem>

namespace fieldcore {

/// A database with the tables of a settings store, ready for use.
struct SettingsDatabase
{
    SqliteHandle handle;
    SettingsNotice notice; ///< what the user should know; usually nothing
};

/// Opens the settings file, and makes it and its folder if they are not there.
///
/// A file that SQLite calls damaged or no database is renamed to FILE.damaged-1 (or the next number
/// that is free) and a new one begun. After any other failure, and where no file can be written,
/// nothing is written, and the settings are kept in memory; they start as a copy of the file with
/// its log, if these can be read. The notice tells of all that.
/// Any thread; several processes may open the same file at once.
[[nodiscard]] SettingsDatabase OpenSettingsDatabase(const std::filesystem::path& file,
                                                    SettingsSharing sharing);

} // namespace fieldcore
