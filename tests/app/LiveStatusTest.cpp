// What the receiver's state does to the controller: the battery's warning, and the clock that the
// user may have set by the receiver. The simulated one never sets it.

#include "app/Controller.h"
#include "app/MainWindow.h"
#include "app/Session.h"
#include "app/SettingsSheet.h"
#include "core/platform/Clock.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QCheckBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class LiveStatusTest : public ::testing::Test
{
protected:
    LiveStatusTest()
    {
        qputenv("FIELDCORE_HOME", m_folder.filePath(QStringLiteral("home")).toUtf8());
        qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
        qunsetenv("FIELDCORE_MACHINE_STORE");
    }
    ~LiveStatusTest() override { SystemClock::Instance().AllowSetting(false); }

    [[nodiscard]] static AppOptions Options(const char* port)
    {
        AppOptions options;
        options.port = QString::fromLatin1(port);
        options.speed = 20.0;
        return options;
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(LiveStatusTest, ALowBatteryIsToldOnce)
{
    Controller controller(Options("sim:low-battery"));
    controller.Begin();
    Session session(controller);
    QStringList told;
    QTimer reader;
    QObject::connect(&reader, &QTimer::timeout, &reader, [&told] {
        if (auto* const box = qobject_cast<MessageDlg*>(QApplication::activeModalWidget())) {
            told += box->windowTitle() + QLatin1Char('|') + box->accessibleDescription();
            box->Close(Dialog::kCancelled);
        }
    });
    reader.start(10);
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
    Controller controller(Options("sim:street"));
    controller.Begin();
    std::wstring fault;
    ASSERT_TRUE(controller.ConnectQuietly(fault));
    // The first list is looked at by the almanac of the simulated receiver's own folder.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return controller.SkyNotes().state == SkyRecorder::State::Settling; }, 30000));
}

TEST_F(LiveStatusTest, TheUserDecidesWhetherTheClockIsSet)
{
    for (const bool wanted : {true, false}) {
        {
            Controller controller(Options("sim:lark"));
            controller.Begin();
            EXPECT_EQ(controller.MaySetClock(), !wanted);
            std::wstring fault;
            ASSERT_TRUE(controller.ConnectQuietly(fault));
            Session session(controller);
            session.Begin();
            QTimer hand;
            bool isDone = false;
            QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
                if (auto* const sheet =
                        qobject_cast<SettingsSheet*>(QApplication::activeModalWidget())) {
                    sheet->findChild<QCheckBox*>()->setChecked(wanted);
                    isDone = true;
                    sheet->Close(Dialog::kOk);
                }
            });
            hand.start(10);
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* const window = qobject_cast<MainWindow*>(widget)) {
                    Q_EMIT window->Chosen(MainWindow::kSettings);
                }
            }
            EXPECT_TRUE(isDone);
            EXPECT_EQ(controller.MaySetClock(), wanted);
            EXPECT_EQ(controller.View().maySetClock, wanted);
        }
        Controller next(Options("sim:lark"));
        next.Begin();
        EXPECT_EQ(next.MaySetClock(), wanted) << "kept";
    }
}

} // namespace
} // namespace fieldcore
