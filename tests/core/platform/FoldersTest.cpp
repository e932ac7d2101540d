#include "core/platform/Folders.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

using Environment = std::map<std::string, std::string>;

FolderSources Sources(Environment environment)
{
    FolderSources sources;
    sources.variable = [environment = std::move(environment)](
                           const std::string& name) -> std::optional<std::string> {
        const auto found = environment.find(name);
        return found != environment.end() ? std::optional(found->second) : std::nullopt;
    };
    sources.passwdHome = "/account/anna";
    sources.userName = "anna";
    return sources;
}

TEST(Folders, FollowTheEnvironment)
{
    using Folder = fs::path (Folders::*)() const;
    const std::tuple<const char*, std::string, Folder, fs::path> rows[] = {
        {"default data", "HOME=/h", &Folders::Program, "/h/.local/share/fieldcore"},
        {"default state", "HOME=/h", &Folders::BuiltInStorage, "/h/.local/state/fieldcore"},
        {"default settings", "HOME=/h", &Folders::Settings, "/h/.config/fieldcore"},
        {"machine settings beside the user's", "HOME=/h", &Folders::MachineSettings,
         "/h/.config/fieldcore"},
        {"data moved", "HOME=/h XDG_DATA_HOME=/d", &Folders::Program, "/d/fieldcore"},
        {"state moved", "HOME=/h XDG_STATE_HOME=/s", &Folders::BuiltInStorage, "/s/fieldcore"},
        {"settings moved", "HOME=/h XDG_CONFIG_HOME=/c", &Folders::Settings, "/c/fieldcore"},
        {"own folder wins, without a folder below", "FIELDCORE_HOME=/own XDG_DATA_HOME=/d",
         &Folders::Program, "/own"},
        {"own machine store", "FIELDCORE_MACHINE_STORE=/m XDG_CONFIG_HOME=/c",
         &Folders::MachineSettings, "/m"},
        {"own folder set to nothing", "HOME=/h FIELDCORE_HOME=", &Folders::Program,
         "/h/.local/share/fieldcore"},
        {"relative base folder", "HOME=/h XDG_DATA_HOME=here", &Folders::Program,
         "/h/.local/share/fieldcore"},
        {"no home", "", &Folders::Settings, "/account/anna/.config/fieldcore"},
        {"relative home", "HOME=h", &Folders::Settings, "/account/anna/.config/fieldcore"},
    };
    for (const auto& [fault, variables, folder, expected] : rows) {
        SCOPED_TRACE(fault);
        Environment environment;
        std::istringstream words(variables);
        for (std::string word; words >> word;) {
            environment[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
        }
        const Folders folders(Sources(environment));
        EXPECT_EQ((folders.*folder)(), expected);
    }
}

TEST(Folders, ReadTheDesktopsDocumentsFolder)
{
    const std::tuple<const char*, std::string, fs::path> rows[] = {
        {"below home", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "/h/Papers"},
        {"absolute, with a blank", "  XDG_DOCUMENTS_DIR=\"/data/my papers\"\n", "/data/my papers"},
        {"escaped sign", "XDG_DOCUMENTS_DIR=\"$HOME/A\\$B\\\"C\"\n", "/h/A$B\"C"},
        {"comment", "#XDG_DOCUMENTS_DIR=\"$HOME/No\"\n", "/h/Documents"},
        {"other folder", "XDG_DOCUMENTS_DIR_OLD=\"/no\"\nXDG_MUSIC_DIR=\"/m\"\n", "/h/Documents"},
        {"last line counts",
         "XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\nXDG_DOCUMENTS_DIR=\"rel\"", "/b"},
        {"without quotes", "XDG_DOCUMENTS_DIR=/a\n", "/h/Documents"},
        {"switched off means home", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n", "/h/"},
    };
    const TemporaryFolder config;
    const Folders folders(Sources({{"HOME", "/h"}, {"XDG_CONFIG_HOME", config.Path().string()}}));
    for (const auto& [fault, file, expected] : rows) {
        SCOPED_TRACE(fault);
        config.Write("user-dirs.dirs", file);
        EXPECT_EQ(folders.Documents(), expected);
    }
}

TEST(Folders, OfferOnlyTheUsersMountedCards)
{
    const TemporaryFolder folder;
    FolderSources sources = Sources({});
    sources.mountTable = folder.Write("mounts", "/dev/sda1 / ext4 rw 0 0\n"
                                                "/dev/sdc1 /run/media/anna/CARD\\0402 vfat rw 0 0\n"
                                                "/dev/sdb1 /media/anna/STICK vfat rw 0 0\n"
                                                "/dev/sdb1 /media/anna/STICK vfat rw 0 0\n"
                                                "/dev/sdd1 /media/anna/STICK/inner vfat rw 0 0\n"
                                                "/dev/sde1 /media/bert/OTHER vfat rw 0 0\n"
                                                "/dev/sdf1 /media/anna vfat rw 0 0\n"
                                                "\n"
                                                "damaged\n");
    EXPECT_EQ(Folders(sources).StorageCards(),
              (std::vector<fs::path>{"/media/anna/STICK", "/run/media/anna/CARD 2"}));

    sources.mountTable = folder.Path() / "absent";
    EXPECT_TRUE(Folders(sources).StorageCards().empty());
}

TEST(Folders, CreateSaysWhatPreventsIt)
{
    const TemporaryFolder folder;
    const fs::path deep = folder.Path() / "a" / "b c";
    EXPECT_FALSE(Folders::Create(deep));
    EXPECT_TRUE(fs::is_directory(deep));
    EXPECT_FALSE(Folders::Create(deep)) << "a folder that is there already is fine";

    const fs::path file = folder.Write("file", "");
    EXPECT_EQ(Folders::Create(file), std::errc::not_a_directory);
    EXPECT_EQ(Folders::Create(file / "below"), std::errc::not_a_directory);
    EXPECT_TRUE(Folders::Create("/proc/fieldcore")) << "nobody can create a folder there";
}

} // namespace
} // namespace fieldcore
