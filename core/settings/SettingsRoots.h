#pragma once

#include "core/platform/Folders.h"
#include "core/platform/SettingsStore.h"

#include <array>
#include <filesystem>
#include <memory>
#include <vector>

namespace fieldcore {

/// Which of the two trees of settings.
enum class RootKey
{
    CurrentUser, ///< the user's own
    LocalMachine ///< shared by all users of the machine
};

/// The two settings stores of a process. Each is opened when it is first asked for and stays open.
/// One thread at a time.
class SettingsRoots
{
public:
    explicit SettingsRoots(const Folders& folders = Folders());
    ~SettingsRoots();
    SettingsRoots(const SettingsRoots&) = delete;
    SettingsRoots& operator=(const SettingsRoots&) = delete;

    [[nodiscard]] SettingsStore& Store(RootKey root);
    /// Goes on with the stores of other folders; references to those of before end.
    void Use(const Folders& folders);
    /// Those that the stores are in, and what belongs to them.
    [[nodiscard]] const Folders& GetFolders() const { return m_folders; }

    /// The file of a root's store.
    [[nodiscard]] const std::filesystem::path& File(RootKey root) const;

    /// What the user should know about the stores that were opened: a file was damaged, or cannot
    /// be written and nothing will be kept. Told once, then empty.
    [[nodiscard]] std::vector<SettingsNotice> TakeNotices();

    /// The ones that are used where no others are given.
    static SettingsRoots& Instance();

private:
    struct Root
    {
        std::filesystem::path file;
        std::unique_ptr<SettingsStore> store;
    };

    Folders m_folders;
    std::array<Root, 2> m_roots; // in the order of RootKey
};

} // namespace fieldcore
