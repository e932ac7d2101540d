#include "core/link/ConnectChoice.h"

#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(ConnectChoice, IsKeptAndNothingElseIsTaken)
{
    const TemporaryFolder home;
    SettingsRoots roots(testing::FoldersBelow(home.Path()));
    const HostReg reg(roots);
    EXPECT_EQ(StoredPort(roots), std::nullopt);
    const std::string chosen = "/dev/端末 1";
    ASSERT_EQ(SaveConnectChoice(reg, {chosen, 115200}), 1);
    EXPECT_EQ(StoredPort(roots), chosen);
    for (const std::string& wrong : {"/dev/" + std::string(260, 'x'), std::string("receiver")}) {
        EXPECT_EQ(SaveConnectChoice(reg, {wrong, 38400}), 0) << wrong;
        EXPECT_EQ(StoredPort(roots), chosen);
    }
}

/// The settings of the host suite, the user's own choice, the line and the assigned devices make
/// one target, or one cause.
TEST(ConnectChoice, ComposesTheTargetOfTheSettings)
{
    struct Row
    {
        const char* course;
        std::optional<std::uint32_t> suite; ///< GpsPort
        const wchar_t* chosen;              ///< GPS\Connect; null: nothing
        std::string path;                   ///< empty: it is none
        int port;
        const wchar_t* cause;
    };
    const std::wstring longName = L"/dev/" + std::wstring(5000, L'x');
    const Row rows[] = {
        {"nothing stored is the cable", {}, nullptr, "/dev/ttyS0", 1, L""},
        {"the suite's Bluetooth port", 5, nullptr, "/dev/assigned", 5, L""},
        {"one that nothing is assigned to", 3, nullptr, "/dev/ttyS2", 3, L""},
        {"the user's choice counts more", 5, L"/dev/ttyUSB0", "/dev/ttyUSB0", 1, L""},
        {"a path that has a number", {}, L"/dev/assigned", "/dev/assigned", 5, L""},
        {"two numbers for a device", {}, L"COM7", "/dev/assigned", 7, L""},
        {"Bluetooth without a number", {}, L"/dev/rfcomm1", "/dev/rfcomm1", 257, L""},
        {"the suite's number is too large", 300, nullptr, "", 0, L"COM番号は1から256までです。"},
        {"no name", {}, L"receiver", "", 0, L"ポートの名前ではありません。"},
        {"empty", {}, L"", "", 0, L"名前がありません。"},
        {"a control character", {}, L"/dev/\x1B[2J", "", 0, L"使用できない文字が含まれています。"},
        {"too long", {}, longName.c_str(), "", 0, L"名前が長すぎます。"},
        {"a device that is none", {}, L"com9", "", 0, L"デバイスのパスが正しくありません。"},
        {"the simulator", {}, L"sim:lark", "", 0, L"シミュレータがありません。"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        const TemporaryFolder home;
        SettingsRoots roots(testing::FoldersBelow(home.Path()));
        const HostReg reg(roots);
        reg.WriteString(L"Ports", L"COM5", L"/dev/assigned");
        reg.WriteString(L"Ports", L"COM7", L"/dev/assigned");
        reg.WriteString(L"Ports", L"COM9", L"ttyUSB0");
        reg.WriteNumber(L"GPS\\Com\\Com0", L"Baudlate", 9600);
        if (row.suite) {
            CReg machine(roots);
            machine.SetRootKey(RootKey::LocalMachine, 1);
            machine.WriteNumber(L"Software\\CorvaneTS Software\\Wexmain\\Data\\System\\Rtk",
                                L"GpsPort", *row.suite);
        }
        if (row.chosen != nullptr) {
            reg.WriteString(L"GPS\\Connect", L"Port", row.chosen);
        }
        const FoundTarget found = FindTarget(roots);
        EXPECT_EQ(found.target.has_value(), !row.path.empty());
        EXPECT_NE(found.fault.find(row.cause), std::wstring::npos);
        EXPECT_EQ(found.fault.empty(), found.target.has_value());
        EXPECT_EQ(found.detail.empty(), found.target.has_value());
        if (found.target) {
            EXPECT_EQ(found.target->devicePath, row.path);
            EXPECT_EQ(found.target->port, row.port);
            EXPECT_EQ(found.target->settings.baudRate, 9600U);
        }
    }
}

} // namespace
} // namespace fieldcore
