// The controller after the parameters of its own line have changed: where it finds the receiver,
// what it tells the user, and what is stored in the end.

#include "core/equipment/PortEdit.h"
#include "core/link/Command.h"
#include "core/resources/StringTable.h"
#include "tests/app/Started.h"

#include <fstream>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(FollowLink, FindsTheReceiverOrTellsWhyNot)
{
    struct Row
    {
        const char* course;
        bool isConnected;
        std::uint32_t receiver; ///< rate that it changes to
        int said;               ///< 0: nothing
        std::uint32_t stored;
        bool isOpen;
        bool isKept = true; ///< the new parameters could be stored
    };
    const Row rows[] = {
        {"not connected", false, 38400, 0, 115200, false},
        {"both have moved", true, 115200, 0, 115200, true},
        {"moved, but not stored", true, 115200, 0, 38400, true, false},
        {"the receiver has stayed", true, 38400, text::kComLinkStayed, 38400, true},
        {"the receiver is elsewhere", true, 9600, text::kComLinkLost, 115200, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        const testing::OwnFolders own;
        const QString scenario = own.m_folder.filePath(QStringLiteral("strict.txt"));
        std::ofstream(scenario.toStdString()) << "check-rate yes\n";
        // An answer has a second of a watch.
        testing::Started controller(QStringLiteral("sim:") + scenario, 2.0);
        ASSERT_TRUE(!row.isConnected || controller.IsConnectedQuietly());
        PortEdit edit(1, controller.Roots());
        ASSERT_EQ(edit.At(1).SetPrmString(L"115200"), 1);
        ASSERT_TRUE(!row.isKept || edit.KeepLink() == 1);
        if (row.isConnected && row.receiver != 38400) {
            PortSettings line;
            line.baudRate = row.receiver;
            ASSERT_EQ(controller.Command().SetReceiverPort(1, line), 1);
        }
        EXPECT_EQ(controller.FollowLink(edit), row.said);
        EXPECT_EQ(controller.Choice().baudRate, row.stored);
        EXPECT_EQ(LinkSettings(controller.Roots()).baudRate, row.stored);
        EXPECT_EQ(controller.Command().IsPortOpen() != 0, row.isOpen);
        EXPECT_EQ(controller.Link().State() == LinkState::Connected, row.isOpen);
    }
}

} // namespace
} // namespace fieldcore
