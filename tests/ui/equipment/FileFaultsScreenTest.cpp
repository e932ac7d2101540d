// The table of faults, through the buttons of the sheet.

#include "tests/core/equipment/FileFaults.h"

#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/link/Clicks.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/equipment/RecvFilePage.h"
#include "ui/equipment/RecvFileSaveDlg.h"

namespace fieldcore {
namespace {

using testing::FileFault;

TEST(FileFaultsScreenTest, TheScreenSaysWhy)
{
    for (const FileFault& fault : testing::FileFaults()) {
        SCOPED_TRACE(fault.label);
        const TemporaryFolder home;
        if (fault.isFolderTaken) {
            home.Write("Documents/2026-03-14", "");
        }
        testing::VirtualReceiver receiver(testing::FaultyReceiver(fault));
        receiver.host.inBreath = [] {
            QCoreApplication::processEvents();
            return true;
        };
        receiver.Open();
        CRecvFileMan::Surroundings world;
        world.folders = testing::FoldersBelow(home.Path().string());
        world.freeBytes = [&](const auto&) { return fault.free; };
        CRecvFileMan sheet(&receiver.command, 0, nullptr, world);
        ASSERT_EQ(sheet.Open(), ReceiverFiles::Opened);
        sheet.resize(480, 640);
        sheet.show();
        const auto isIdle = [&] { return !sheet.IsWorking() && !sheet.Files().IsListing(); };
        ASSERT_TRUE(QTest::qWaitFor(isIdle, 30000));

        auto& page = dynamic_cast<RecvFilePage&>(*sheet.GetActivePage());
        const auto click = [&](int control) {
            QTest::mouseClick(Dialog::FindControl(&page, control), Qt::LeftButton);
        };
        const auto* const trouble =
            qobject_cast<QLabel*>(Dialog::FindControl(&page, RecvFilePage::kTrouble));
        if (!fault.rule.empty()) {
            receiver.AddFault(fault.rule);
        }
        receiver.host.boxes.clear();
        click(RecvFilePage::kSelectAll);
        std::wstring box;
        if (fault.action == FileFault::Fetch) {
            Surveyor surveyor;
            surveyor.onOther = [](QWidget& front) {
                if (qobject_cast<CRecvFileSaveDlg*>(&front) != nullptr) {
                    QTest::keyClick(&front, Qt::Key_Return);
                }
            };
            std::optional<testing::FileSizeLimit> limit;
            if (fault.room > 0) {
                limit.emplace(fault.room);
            }
            click(RecvFilePage::kFetch);
            ASSERT_FALSE(receiver.host.boxes.empty());
            box = receiver.host.boxes.back().text;
        } else if (fault.action == FileFault::Delete) {
            click(RecvFilePage::kDelete);
            ASSERT_TRUE(QTest::qWaitFor(isIdle, 30000));
        }
        EXPECT_EQ(trouble->isVisible(), !trouble->text().isEmpty());
        KeepPicture(sheet, QStringLiteral("files-fault-") + QString::fromStdString(fault.label));
        testing::ExpectSeen(fault, page.List(), box.empty() ? trouble->text().toStdWString() : box,
                            box);
    }
}

} // namespace
} // namespace fieldcore
