#pragma once

#include "core/platform/SettingsStore.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

/// A settings store in one SQLite file. The file stays open, and a write costs one sync of its
/// write-ahead log. A process that finds another one writing waits up to five seconds.
///
/// What happens to a damaged file, and where the file cannot be written, is told by TakeNotice().
class SqliteSettingsStore final : public SettingsStore
{
public:
    /// Opens @p file; the store can be used whatever becomes of it.
    explicit SqliteSettingsStore(const std::filesystem::path& file,
                                 SettingsSharing sharing = SettingsSharing::Private);
    ~SqliteSettingsStore() override;
    SqliteSettingsStore(const SqliteSettingsStore&) = delete;
    SqliteSettingsStore& operator=(const SqliteSettingsStore&) = delete;

    [[nodiscard]] bool OpenKey(std::wstring_view key, KeyOpening opening) override;
    [[nodiscard]] SettingsRead Get(std::wstring_view key, std::wstring_view name) override;
    [[nodiscard]] bool Set(std::wstring_view key, std::wstring_view name,
                           const SettingsValue& value, KeyOpening opening) override;
    [[nodiscard]] bool DeleteKey(std::wstring_view key) override;
    [[nodiscard]] bool DeleteValue(std::wstring_view key, std::wstring_view name) override;
    [[nodiscard]] std::optional<std::vector<std::wstring>> Keys(std::wstring_view key) override;
    [[nodiscard]] std::optional<std::vector<NamedSetting>> Values(std::wstring_view key) override;
    [[nodiscard]] bool IsKept() const override;
    [[nodiscard]] StoringFault LastFault() const override;
    [[nodiscard]] SettingsNotice TakeNotice() override;

protected:
    [[nodiscard]] bool Begin() override;
    [[nodiscard]] bool Commit() override;
    void Rollback() override;

private:
    struct Database;

    std::unique_ptr<Database> m_database;
};

} // namespace fieldcore
