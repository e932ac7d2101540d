// The controller as a user starts it: in folders of its own, on the simulated receiver.

#include "app/Session.h"
#include "app/Controller.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "tests/ui/controls/NothingCut.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/controls/RandomHands.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/PrgEndMes.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

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

TEST_F(SessionTest, CancelEndsAConnectionThatNobodyAnswers)
{
    AppOptions options = Options(QStringLiteral("sim:silent"));
    options.speed = 0.1; // a time-out lasts 20 s: only Cancel can be quicker than the watchdog
    Controller controller(options);
    controller.Begin();
    MainWindow window;
    window.show();
    QApplication::setActiveWindow(&window);
    bool clicked = false;
    QTimer hand;
    QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
        auto* const strip = window.findChild<BusyStrip*>();
        if (strip != nullptr && strip->isVisible() && !std::exchange(clicked, true)) {
            QTest::mouseClick(strip->CancelButton(), Qt::LeftButton);
        }
    });
    hand.start(10);
    int boxes = 0; // with what is known to who has cancelled
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, &watchdog, [&boxes] {
        if (QWidget* const box = QApplication::activeModalWidget()) {
            ++boxes;
            box->close();
        }
    });
    watchdog.start(10);
    std::wstring fault;
    EXPECT_FALSE(controller.Connect(&window, fault));
    EXPECT_TRUE(clicked);
    EXPECT_EQ(controller.Command().Fault(), CommandFault::Cancelled);
    EXPECT_EQ(controller.Command().IsPortOpen(), 0);
    EXPECT_EQ(fault, L"") << "who cancels is not told that it failed";
    EXPECT_EQ(boxes, 0);
}

TEST_F(SessionTest, TellsOfItsSettingsInJapanese)
{
    const std::filesystem::path config = m_folder.filePath(QStringLiteral("config")).toStdString();
    {
        Controller controller(Options(QStringLiteral("sim:lark")));
        controller.Begin();
        EXPECT_EQ(controller.TakeNotice(), QString());
        SettingsStore& store = controller.Roots().Store(RootKey::CurrentUser);
        ASSERT_TRUE(store.Set(HostBasePath() + L"\\Ports", L"COM999", std::wstring(L"/dev/x"),
                              KeyOpening::Create));
    }
    {
        Controller controller(Options(QStringLiteral("sim:lark")));
        EXPECT_TRUE(controller.TakeNotice().startsWith(
            QStringLiteral("ポートの割り当て「COM999」は使えません。")));
        EXPECT_EQ(controller.TakeNotice(), QString()) << "told twice";
    }
    std::filesystem::remove_all(config);
    std::filesystem::create_symlink("/dev/null", config);
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.UseTheme(Theme::Kind::Dark);
    Theme::Use(Theme::Kind::Daylight);
    const QString notice = controller.TakeNotice();
    EXPECT_TRUE(notice.startsWith(QStringLiteral("設定を保存できません。")))
        << notice.toStdString();
    EXPECT_TRUE(notice.contains(QStringLiteral("user.db")));
}

/// The window with all that can be known on it, its settings, the frames.
TEST_F(SessionTest, CutsNothingOff)
{
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.Begin();
    std::wstring fault;
    ASSERT_TRUE(controller.ConnectQuietly(fault));
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPixelSize(21); // 30 % above 16
    const ReceiverState stale = [&] {
        ReceiverState state = controller.State();
        state.link = ReceiverState::Link::Lost; // the longest words
        state.receivedUtc = controller.NowUtc().addSecs(-60);
        state.pdop = 12.3;
        state.batteryPercent = 100;
        state.satellites = 24;
        state.simulator = QStringLiteral("almanac-hangs-up");
        return state;
    }();
    const auto check = [](QWidget& window, const QString& name, QSize size) {
        SCOPED_TRACE(name.toStdString());
        window.resize(size);
        window.show();
        QCoreApplication::processEvents();
        testing::ExpectNothingCut(window, size);
        KeepPicture(window, QStringLiteral("app-%1-%2").arg(name).arg(size.width()));
        window.hide();
    };
    for (const bool isLarge : {false, true}) {
        for (const Theme::Kind theme : {Theme::Kind::Daylight, Theme::Kind::Dark}) {
            QApplication::setFont(isLarge ? large : before);
            Theme::Use(theme);
            const QString look =
                QString(isLarge ? QStringLiteral("large-") : QString()) +
                (theme == Theme::Kind::Dark ? QStringLiteral("dark") : QStringLiteral("daylight"));
            for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
                MainWindow window;
                window.ShowState(stale, controller.NowUtc());
                check(window, QStringLiteral("home-") + look, size);
                FramesDlg frames(controller.Frames());
                check(frames, QStringLiteral("frames-") + look, size);
                SettingsSheet sheet(controller.Ports(), {{"lark", QStringLiteral("正常な受信機")}},
                                    ConnectChoice{"sim:lark", 38400}, false);
                for (const int page : {0, 1}) {
                    sheet.SetActivePage(page);
                    check(sheet, QStringLiteral("settings%1-").arg(page) + look, size);
                }
            }
        }
    }
    QApplication::setFont(before);
    Theme::Use(Theme::Kind::Daylight);
}

TEST_F(SessionTest, StandsAThousandRandomEvents)
{
    AppOptions options = Options(QStringLiteral("sim:lark"));
    options.speed = 50.0;
    Controller controller(options);
    controller.Begin();
    Session session(controller);
    session.Begin();
    MainWindow* const window = Window();
    ASSERT_NE(window, nullptr);
    {
        testing::RandomHands hands;
        while (!hands.IsTired()) {
            hands.Play(*window, 100);
            ASSERT_TRUE(window->isVisible()) << "closed without an answer to its question";
            ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
            window->resize(300 + hands.Below(1000), 300 + hands.Below(600));
            controller.UseTheme(static_cast<Theme::Kind>(hands.Below(3)));
        }
    }
    Theme::Use(Theme::Kind::Daylight);
    std::wstring fault;
    EXPECT_TRUE(controller.ConnectQuietly(fault)) << "it cannot be used any more";
}

TEST_F(SessionTest, DialogsStandAThousandRandomEvents)
{
    Controller controller(Options(QStringLiteral("sim:lark")));
    controller.Begin();
    std::wstring fault;
    ASSERT_TRUE(controller.ConnectQuietly(fault));
    using Make = std::function<std::unique_ptr<QWidget>()>;
    const Make makers[] = {
        [&]() -> std::unique_ptr<QWidget> {
            return std::make_unique<SettingsSheet>(
                controller.Ports(),
                std::vector<ScenarioChoice>{{"lark", QStringLiteral("正常な受信機")}},
                ConnectChoice{"sim:lark", 38400}, false);
        },
        [&]() -> std::unique_ptr<QWidget> {
            return std::make_unique<FramesDlg>(controller.Frames());
        },
    };
    for (const Make& make : makers) {
        testing::RandomHands hands;
        while (!hands.IsTired()) {
            const std::unique_ptr<QWidget> dialog = make();
            dialog->resize(480, 640);
            dialog->show();
            QApplication::setActiveWindow(dialog.get());
            hands.Play(*dialog);
            if (auto* const sheet = qobject_cast<SettingsSheet*>(dialog.get())) {
                EXPECT_GE(static_cast<int>(sheet->ChosenTheme()), 0);
                EXPECT_LE(static_cast<int>(sheet->ChosenTheme()), 2);
            }
        }
        ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
    }
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
