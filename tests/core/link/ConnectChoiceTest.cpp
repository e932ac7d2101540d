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
    EXPECT_EQ(LoadConnectChoice(reg, {"sim:", 115200}), chosen);
    for (const ConnectChoice& wrong :
         {ConnectChoice{"/dev/" + std::string(260, 'x'), 38400}, ConnectChoice{"", 38400},
          ConnectChoice{"receiver", 38400}}) {
        EXPECT_EQ(SaveConnectChoice(reg, wrong), 0) << wrong.port;
        EXPECT_EQ(LoadConnectChoice(reg).port, chosen.port);
    }
    // Somebody else's hand in the settings.
    reg.WriteString(L"GPS\\Connect", L"Port", L"\x1B[2J");
    EXPECT_EQ(LoadConnectChoice(reg), fresh);
    EXPECT_EQ(LoadConnectChoice(reg, {"COM5", 9600}).port, "COM5");
}

TEST(ConnectChoice, TellsTheCableFromBluetooth)
{
    PortNames names;
    ASSERT_TRUE(names.Assign(5, "/dev/assigned"));
    PortSettings settings;
    settings.baudRate = 9600;
    settings.parity = 2;
    struct Row
    {
        const char* path;
        bool isBluetooth;
    };
    for (const Row& row : {Row{"/dev/ttyUSB7", false}, Row{"/dev/ttyS0", false},
                           Row{"/dev/rfcomm3", true}, Row{"/dev/assigned", true}}) {
        const ConnectTarget target = TargetOf(row.path, settings, names);
        EXPECT_EQ(target.IsBluetooth(), row.isBluetooth) << row.path;
        EXPECT_EQ(target.devicePath, row.path);
        EXPECT_EQ(target.settings.baudRate, 9600U);
        EXPECT_EQ(target.settings.parity, 2);
    }
}

} // namespace
} // namespace fieldcore
