#include "core/link/ConnectChoice.h"

#include "core/settings/HostReg.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

SettingsRoots RootsBelow(const std::filesystem::path& home)
{
    FolderSources sources;
    sources.variable = [home](const std::string& name) {
        return name == "HOME" ? std::optional<std::string>(home.string()) : std::nullopt;
    };
    return SettingsRoots(Folders(sources));
}

TEST(ConnectChoice, IsKeptAndNothingElseIsTaken)
{
    const TemporaryFolder home;
    SettingsRoots roots = RootsBelow(home.Path());
    const HostReg reg(roots);
    const ConnectChoice fresh;
    EXPECT_EQ(LoadConnectChoice(reg), fresh);
    const ConnectChoice chosen{"/dev/端末 1", 115200};
    ASSERT_EQ(SaveConnectChoice(reg, chosen), 1);
    EXPECT_EQ(LoadConnectChoice(reg), chosen);
    for (const ConnectChoice& wrong :
         {ConnectChoice{"/dev/" + std::string(260, 'x'), 38400}, ConnectChoice{"", 38400},
          ConnectChoice{"receiver", 38400}, ConnectChoice{"COM3", 1234}}) {
        EXPECT_EQ(SaveConnectChoice(reg, wrong), 0) << wrong.port;
        EXPECT_EQ(LoadConnectChoice(reg), chosen);
    }
    // Somebody else's hand in the settings.
    reg.WriteString(L"GPS\\Connect", L"Port", L"\x1B[2J");
    reg.WriteNumber(L"GPS\\Connect", L"BaudRate", 0);
    EXPECT_EQ(LoadConnectChoice(reg), fresh);
}

TEST(ConnectChoice, TellsTheCableFromBluetooth)
{
    PortNames names;
    ASSERT_TRUE(names.Assign(5, "/dev/assigned"));
    struct Row
    {
        const char* path;
        bool isBluetooth;
    };
    for (const Row& row : {Row{"/dev/ttyUSB7", false}, Row{"/dev/ttyS0", false},
                           Row{"/dev/rfcomm3", true}, Row{"/dev/assigned", true}}) {
        const ConnectTarget target = TargetOf(row.path, 9600, names);
        EXPECT_EQ(target.IsBluetooth(), row.isBluetooth) << row.path;
        EXPECT_EQ(target.devicePath, row.path);
        EXPECT_EQ(target.settings.baudRate, 9600U);
    }
}

} // namespace
} // namespace fieldcore
