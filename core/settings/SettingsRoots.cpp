#include "core/settings/SettingsRoots.h"

#include "core/platform/SqliteSettingsStore.h"

#include <cstddef>
#include <utility>

namespace fieldcore {

SettingsRoots::SettingsRoots(const Folders& folders) : m_folders(folders)
{
    Use(folders);
}

SettingsRoots::~SettingsRoots() = default;

void SettingsRoots::Use(const Folders& folders)
{
    m_folders = folders;
    m_roots[0] = {folders.Settings() / "user.db", nullptr};
    m_roots[1] = {folders.MachineSettings() / "machine.db", nullptr};
}

SettingsStore& SettingsRoots::Store(RootKey root)
{
    Root& entry = m_roots[static_cast<std::size_t>(root)];
    if (!entry.store) {
        entry.store = std::make_unique<SqliteSettingsStore>(
            entry.file,
            root == RootKey::LocalMachine ? SettingsSharing::Shared : SettingsSharing::Private);
    }
    return *entry.store;
}

const std::filesystem::path& SettingsRoots::File(RootKey root) const
{
    return m_roots[static_cast<std::size_t>(root)].file;
}

std::vector<SettingsNotice> SettingsRoots::TakeNotices()
{
    std::vector<SettingsNotice> notices;
    for (const Root& root : m_roots) {
        SettingsNotice notice = root.store ? root.store->TakeNotice() : SettingsNotice{};
        if (!notice.IsEmpty()) {
            notices.push_back(std::move(notice));
        }
    }
    return notices;
}

SettingsRoots& SettingsRoots::Instance()
{
    static SettingsRoots instance;
    return instance;
}

} // namespace fieldcore
