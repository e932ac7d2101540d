// The controller as a user starts it: in folders of its own, on the simulated receiver.

#include "app/Session.h"
#include "app/Controller.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/PrgEndMes.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <filesystem>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class SessionTest : public ::testing::Test
{
protected:
    SessionTest()
    {
        qputenv("FIELDCORE_HOME", m_folder.filePath(QStringLiteral("home")).toUtf8());
        qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
        qunsetenv("FIELDCORE_MACHINE_STORE");
    }

    [[nodiscard]] static AppOptions Options(const QString& port)
    {
        AppOptions options;
        options.port = port;
        options.speed = 5.0;
        return options;
    }

    /// The main window; the test's own windows are no main windows.
    [[nodiscard]] static MainWindow* Window()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* const window = qobject_cast<MainWindow*>(widget)) {
                return window;
            }
        }
        return nullptr;
    }

    QTemporaryDir m_folder;
};

TEST_F(SessionTest, GivesANewUserSitesAndAnAlmanac)
{
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.Begin();
    EXPECT_EQ(SiteNames(controller.ProgramFolder()).size(), SampleSites().size());
    const auto almanac = AlmanacPath(controller.ProgramFolder());
    EXPECT_EQ(CountAlmanacs(ReadAlmanacFile(almanac)), 31);

    // What is there stays.
    std::filesystem::resize_file(almanac, 400);
    Controller(Options(QStringLiteral("sim:lark"))).Begin();
    EXPECT_EQ(std::filesystem::file_size(almanac), 400U);
}

TEST_F(SessionTest, TellsWhyItCannotConnect)
{
    for (const QString& port : {QStringLiteral("sim:nonsense"), QStringLiteral("rubbish"),
                                m_folder.filePath(QStringLiteral("no-device"))}) {
        Controller controller(Options(port));
        std::wstring fault;
        EXPECT_FALSE(controller.ConnectQuietly(fault)) << port.toStdString();
        EXPECT_FALSE(fault.empty()) << port.toStdString();
        EXPECT_EQ(controller.State().link, ReceiverState::Link::None);
    }
}

TEST_F(SessionTest, ConnectsAndOpensItsPages)
{
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.Begin();
    Session session(controller);
    session.Begin();
    ASSERT_TRUE(QTest::qWaitFor([&] { return controller.State().pdop.has_value(); }, 30000));
    EXPECT_EQ(controller.State().link, ReceiverState::Link::Connected);
    EXPECT_EQ(controller.State().receiver, QStringLiteral("Corvane VX1"));
    EXPECT_EQ(controller.State().simulator, QStringLiteral("lark"));

    struct Row
    {
        QString button;
        const char* page;
    };
    const Row rows[] = {
        {QStringLiteral("観測計画"), "fieldcore::CSurveyPlan"},
        {QStringLiteral("衛星"), "fieldcore::CSkyPlot"},
        {QStringLiteral("ファイル"), "fieldcore::CRecvFileMan"},
        {QStringLiteral("通信記録"), "fieldcore::FramesDlg"},
        {QStringLiteral("通信設定"), "fieldcore::CComPort"},
        {QStringLiteral("設定"), "fieldcore::SettingsSheet"},
        {QStringLiteral("接続"), "fieldcore::PortChooserDlg"},
    };
    MainWindow* const window = Window();
    ASSERT_NE(window, nullptr);
    QString opened;
    QTimer watchdog; // leaves whatever page is in front
    QObject::connect(&watchdog, &QTimer::timeout, [&opened] {
        if (auto* const page = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
            opened = QString::fromLatin1(page->metaObject()->className());
            page->Close(Dialog::kCancelled);
        }
    });
    watchdog.start(50);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.page);
        opened.clear();
        for (CIconButton* button : window->findChildren<CIconButton*>()) {
            if (button->accessibleName() == row.button) {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        EXPECT_EQ(opened, QString::fromLatin1(row.page));
    }
    EXPECT_FALSE(controller.Frames().After(0).empty());

    opened.clear();
    EXPECT_FALSE(window->close()) << "the question at the end was answered with staying";
    EXPECT_EQ(opened, QStringLiteral("fieldcore::CPrgEndMes"));
}

TEST_F(SessionTest, WritesAPictureOfEveryScreen)
{
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.Begin();
    Session session(controller);
    const QString folder = m_folder.filePath(QStringLiteral("pictures"));
    EXPECT_EQ(session.WriteScreenshots(folder), 0);
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.png")});
    EXPECT_EQ(files.filter(QStringLiteral("home")).size(), 4);
    EXPECT_GE(files.size(), 56);
    EXPECT_EQ(session.WriteScreenshots(QStringLiteral("/dev/null/pictures")), 8);
}

} // namespace
} // namespace fieldcore
