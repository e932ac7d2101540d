// What the receiver's state does to the controller: the battery's warning, and the clock that the
// user may have set by the receiver. The simulated one never sets it.

#include "app/MainWindow.h"
#include "app/Session.h"
#include "app/SettingsSheet.h"
#include "core/platform/Clock.h"
#include "tests/app/Started.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"

#include <QCheckBox>
#include <QTest>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Started;

class LiveStatusTest : public ::testing::Test, testing::OwnFolders
{
protected:
    ~LiveStatusTest() override { SystemClock::Instance().AllowSetting(false); }

    static constexpr double kSpeed = 20.0;
};

TEST_F(LiveStatusTest, ALowBatteryIsToldOnce)
{
    Started controller(QStringLiteral("sim:low-battery"), kSpeed);
    Session session(controller);
    QStringList told;
    const testing::Hand<MessageDlg> reader([&told](MessageDlg& box) {
        told += box.windowTitle() + QLatin1Char('|') + box.accessibleDescription();
        box.Close(Dialog::kCancelled);
    });
    session.Begin();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty(); }, 30000));
    // One more may come, at the next limit; 16 rounds ask for the battery again.
    const std::size_t before = controller.Poll().History().Samples().size();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return controller.Poll().History().Samples().size() > before + 16; }, 30000));
    EXPECT_LE(told.size(), 2);
    EXPECT_EQ(told.removeDuplicates(), 0) << told.join(QLatin1Char('#')).toStdString();
    EXPECT_TRUE(told[0].contains(UiText(text::kBatteryCaption))) << told[0].toStdString();
}

TEST_F(LiveStatusTest, WhatIsTrackedIsNotedInTheBackground)
{
    Started controller(QStringLiteral("sim:street"), kSpeed);
    ASSERT_TRUE(controller.IsConnectedQuietly());
    // The first list is looked at by the almanac of the simulated receiver's own folder.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return controller.SkyNotes().state == SkyRecorder::State::Settling; }, 30000));
}

TEST_F(LiveStatusTest, TheUserDecidesWhetherTheClockIsSet)
{
    for (const bool wanted : {true, false}) {
        {
            Started controller(QStringLiteral("sim:lark"), kSpeed);
            EXPECT_EQ(controller.MaySetClock(), !wanted);
            ASSERT_TRUE(controller.IsConnectedQuietly());
            Session session(controller);
            session.Begin();
            bool isDone = false;
            const testing::Hand<SettingsSheet> hand([&](SettingsSheet& sheet) {
                sheet.findChild<QCheckBox*>()->setChecked(wanted);
                isDone = true;
                sheet.Close(Dialog::kOk);
            });
            Q_EMIT session.Window().Chosen(MainWindow::kSettings);
            EXPECT_TRUE(isDone);
            EXPECT_EQ(controller.MaySetClock(), wanted);
            EXPECT_EQ(controller.View().maySetClock, wanted);
        }
        const Started next(QStringLiteral("sim:lark"), kSpeed);
        EXPECT_EQ(next.MaySetClock(), wanted) << "kept";
    }
}

} // namespace
} // namespace fieldcore
