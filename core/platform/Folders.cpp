#include "core/platform/Folders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <string_view>
#include <utility>

#include <pwd.h>
#include <unistd.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

const fs::path kOwnFolder = "fieldcore";
const fs::path kSimulatorFolder = "simulator";

/// The value of a line like XDG_DOCUMENTS_DIR="$HOME/Documents": shell text in double quotes that
/// is an absolute path or starts at the home folder; anything else does not count.
std::optional<fs::path> UserDirValue(std::string_view line, std::string_view name,
                                     const fs::path& home)
{
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos || !line.substr(start).starts_with(name)) {
        return std::nullopt;
    }
    line.remove_prefix(start + name.size());
    if (!line.starts_with("=\"")) {
        return std::nullopt;
    }
    std::string value;
    for (std::size_t at = 2; at < line.size() && line[at] != '"'; ++at) {
        if (line[at] == '\\' && at + 1 < line.size()) {
            ++at;
        }
        value += line[at];
    }
    constexpr std::string_view kHome = "$HOME/";
    if (value.starts_with(kHome)) {
        return (home / value.substr(kHome.size())).lexically_normal();
    }
    return value.starts_with('/') ? std::optional<fs::path>(value) : std::nullopt;
}

/// Undoes the mount table's \ooo for blanks and the like.
std::string Unescape(std::string_view field)
{
    std::string text;
    for (std::size_t at = 0; at < field.size(); ++at) {
        const std::string_view digits = field.substr(at).substr(0, 4);
        const bool escaped = digits.size() == 4 && digits[0] == '\\' &&
                             std::all_of(digits.begin() + 1, digits.end(),
                                         [](char c) { return c >= '0' && c <= '7'; });
        if (escaped) {
            const int code = (digits[1] - '0') * 64 + (digits[2] - '0') * 8 + (digits[3] - '0');
            text += static_cast<char>(code);
            at += 3;
        } else {
            text += field[at];
        }
    }
    return text;
}

/// The second of the blank-separated fields of a line of the mount table.
std::string_view MountPoint(std::string_view line)
{
    line.remove_prefix(std::min(line.find(' '), line.size() - 1) + 1);
    return line.substr(0, line.find(' '));
}

} // namespace

FolderSources FolderSources::System()
{
    FolderSources sources;
    sources.variable = [](const std::string& name) -> std::optional<std::string> {
        const char* value = std::getenv(name.c_str());
        return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
    };
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
        found != nullptr) {
        sources.passwdHome = found->pw_dir;
        sources.userName = found->pw_name;
    }
    sources.mountTable = "/proc/self/mounts";
    return sources;
}

Folders::Folders(FolderSources sources) : m_sources(std::move(sources)) {}

std::optional<std::string> Folders::Variable(const std::string& name) const
{
    std::optional<std::string> value = m_sources.variable(name);
    return value && !value->empty() ? value : std::nullopt;
}

fs::path Folders::Home() const
{
    fs::path home = Variable("HOME").value_or("");
    if (home.is_absolute()) {
        return home;
    }
    // The root is no place to write: Create() then says so, instead of leaving files
    // wherever the program was started.
    return m_sources.passwdHome.is_absolute() ? m_sources.passwdHome : fs::path("/");
}

fs::path Folders::XdgBase(const std::string& variable, const fs::path& belowHome) const
{
    const fs::path base = Variable(variable).value_or("");
    return base.is_absolute() ? base : Home() / belowHome;
}

std::optional<fs::path> Folders::Named(const std::string& variable) const
{
    const std::optional<std::string> value = Variable(variable);
    if (!value) {
        return std::nullopt;
    }
    std::error_code error;
    const fs::path absolute = fs::absolute(*value, error);
    return error ? fs::path(*value) : absolute;
}

fs::path Folders::Own(const fs::path& folder) const
{
    return m_sources.isSimulated ? folder / kSimulatorFolder : folder;
}

fs::path Folders::Program() const
{
    return Own(
        Named("FIELDCORE_HOME").value_or(XdgBase("XDG_DATA_HOME", ".local/share") / kOwnFolder));
}

fs::path Folders::Documents() const
{
    std::ifstream file(XdgBase("XDG_CONFIG_HOME", ".config") / "user-dirs.dirs");
    fs::path documents = Home() / "Documents";
    // As in a shell, the last line that sets it counts.
    for (std::string line; std::getline(file, line);) {
        documents = UserDirValue(line, "XDG_DOCUMENTS_DIR", Home()).value_or(documents);
    }
    return documents;
}

fs::path Folders::BuiltInStorage() const
{
    return XdgBase("XDG_STATE_HOME", ".local/state") / kOwnFolder;
}

fs::path Folders::Settings() const
{
    return Own(XdgBase("XDG_CONFIG_HOME", ".config") / kOwnFolder);
}

fs::path Folders::MachineSettings() const
{
    const std::optional<fs::path> named = Named("FIELDCORE_MACHINE_STORE");
    return named ? Own(*named) : Settings();
}

std::vector<fs::path> Folders::StorageCards() const
{
    const std::string user =
        !m_sources.userName.empty() ? m_sources.userName : Variable("USER").value_or("");
    std::vector<fs::path> cards;
    if (user.empty()) {
        return cards;
    }
    std::ifstream table(m_sources.mountTable);
    for (std::string line; std::getline(table, line);) {
        if (line.empty()) {
            continue;
        }
        const fs::path point = Unescape(MountPoint(line));
        for (const fs::path media : {"/media", "/run/media"}) {
            if (point.parent_path() == media / user) {
                cards.push_back(point);
            }
        }
    }
    std::sort(cards.begin(), cards.end());
    cards.erase(std::unique(cards.begin(), cards.end()), cards.end());
    return cards;
}

std::error_code Folders::Create(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        return error;
    }
    if (!fs::is_directory(folder, error)) {
        return error ? error : std::make_error_code(std::errc::not_a_directory);
    }
    if (access(folder.c_str(), W_OK | X_OK) != 0) {
        return {errno, std::generic_category()};
    }
    return {};
}

} // namespace fieldcore
