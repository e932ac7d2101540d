#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

/// What Folders works its answers out from; a test makes one up.
struct FolderSources
{
    /// An environment variable, nothing if it is not set.
    std::function<std::optional<std::string>(const std::string& name)> variable;
    std::filesystem::path passwdHome; ///< home folder of the user's account; empty if unknown
    std::string userName;             ///< login name; empty if unknown
    std::filesystem::path mountTable; ///< what is mounted where, as the kernel writes it
    /// What a simulated receiver leads to stays apart: almanac, profiles and both trees of settings
    /// stand in a folder of their own below the real ones.
    bool isSimulated = false;

    /// This process's environment and account.
    static FolderSources System();
};

/// Where things are kept on this machine. Asking creates nothing: who wants to write calls
/// Create() first. Empty variables count as not set, and so does an XDG variable that is not
/// an absolute path; without $HOME the account's home folder counts. Any thread, as long as
/// nobody changes the environment meanwhile.
class Folders
{
public:
    /// @param sources  of this process, or made up by a test
    explicit Folders(FolderSources sources = FolderSources::System());

    /// Almanac, antenna catalogue, profiles: $FIELDCORE_HOME, else $XDG_DATA_HOME/fieldcore.
    [[nodiscard]] std::filesystem::path Program() const;

    /// The user's documents, as the desktop's user-dirs.dirs names them, else ~/Documents.
    [[nodiscard]] std::filesystem::path Documents() const;

    /// What a handheld keeps in its built-in storage, such as the exchange log:
    /// $XDG_STATE_HOME/fieldcore.
    [[nodiscard]] std::filesystem::path BuiltInStorage() const;

    /// The user's settings: $XDG_CONFIG_HOME/fieldcore.
    [[nodiscard]] std::filesystem::path Settings() const;

    /// The settings that all users of the machine share: $FIELDCORE_MACHINE_STORE, else the folder
    /// of the user's own.
    [[nodiscard]] std::filesystem::path MachineSettings() const;

    /// The removable media that are mounted for this user now, by name. A folder that is only left
    /// over from a card that was taken out is not among them.
    [[nodiscard]] std::vector<std::filesystem::path> StorageCards() const;

    /// Makes sure that @p folder is there and may be written to; missing parents are created.
    /// @return what prevents it: not_a_directory, permission_denied, read_only_file_system...
    [[nodiscard]] static std::error_code Create(const std::filesystem::path& folder);

private:
    [[nodiscard]] std::optional<std::string> Variable(const std::string& name) const;
    [[nodiscard]] std::filesystem::path Home() const;
    [[nodiscard]] std::filesystem::path Own(const std::filesystem::path& folder) const;
    [[nodiscard]] std::filesystem::path XdgBase(const std::string& variable,
                                                const std::filesystem::path& belowHome) const;
    [[nodiscard]] std::optional<std::filesystem::path> Named(const std::string& variable) const;

    FolderSources m_sources;
};

} // namespace fieldcore
