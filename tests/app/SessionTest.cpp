// The controller as a user starts it: in folders of its own, on the simulated receiver.

#include "app/Session.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/ScreenPictures.h"
#include "app/SettingsSheet.h"
#include "app/StatusStrip.h"
#include "app/Worlds.h"
#include "core/link/Connect.h"
#include "core/link/Questions.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "core/platform/Utf8.h"
#include "core/tilt/TrackingSettings.h"
#include "tests/app/Started.h"
#include "tests/ui/controls/NothingCut.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/controls/RandomHands.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanDet.h"
#include "ui/planning/PlanSet.h"
#include "ui/planning/PlanWindowList.h"
#include "ui/planning/SurveyPlan.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QApplication>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Hand;
using testing::Started;

constexpr int kCalmly = 100; // ms between what a hand does

/// A finger on Esc: presses it on whatever window is in front, until it has gone. It leaves the
/// strip over a wait alone, which Esc would cancel.
class EscapeKey
{
public:
    EscapeKey() : m_hand([this](QWidget& page) { Press(page); }, kCalmly) {}

    /// Class of the first page that was in front.
    [[nodiscard]] QString First() const { return m_pages.value(0); }
    /// Whether the bubble could be switched on every page but the messages.
    [[nodiscard]] bool HasSwitches() const { return m_hasSwitches; }
    /// Whether the head of the first page offered to connect.
    [[nodiscard]] bool IsOffered() const { return m_offers.value(0); }
    /// On how many pages it was pressed.
    [[nodiscard]] int Count() const { return static_cast<int>(m_pages.size()); }

private:
    void Press(QWidget& page)
    {
        if (page.findChild<BusyStrip*>() != nullptr) {
            return;
        }
        if (&page != m_page) {
            m_page = &page;
            m_pages.append(QString::fromLatin1(page.metaObject()->className()));
            const auto buttons = page.findChildren<QToolButton*>();
            m_hasSwitches = m_hasSwitches &&
                            (qobject_cast<MessageDlg*>(&page) != nullptr ||
                             std::any_of(buttons.begin(), buttons.end(), [](const QToolButton* b) {
                                 return b->isVisible() && b->text() == UiText(text::kBubbleTitle);
                             }));
            const auto* const head = page.findChild<StatusStrip*>();
            const auto* const offer = head != nullptr ? head->findChild<QPushButton*>() : nullptr;
            m_offers.append(offer != nullptr && offer->isVisible());
        }
        QTest::keyClick(&page, Qt::Key_Escape);
    }

    QPointer<QWidget> m_page; // the last one
    bool m_hasSwitches = true;
    QStringList m_pages;
    QList<bool> m_offers;
    const Hand<> m_hand;
};

class SessionTest : public ::testing::Test, protected testing::OwnFolders
{
protected:
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
};

TEST_F(SessionTest, GivesANewUserSitesAndAnAlmanac)
{
    Started controller(QStringLiteral("sim:lark"));
    EXPECT_EQ(SiteNames(controller.ProgramFolder()).size(), SampleSites().size());
    const auto almanac = AlmanacPath(controller.ProgramFolder());
    EXPECT_EQ(CountAlmanacs(ReadAlmanacFile(almanac)), 31);

    // What is there stays.
    std::filesystem::resize_file(almanac, 400);
    const Started again(QStringLiteral("sim:lark"));
    EXPECT_EQ(std::filesystem::file_size(almanac), 400U);
}

TEST_F(SessionTest, TellsWhyItCannotConnect)
{
    for (const QString& port : {QStringLiteral("sim:nonsense"), QStringLiteral("rubbish"),
                                m_folder.filePath(QStringLiteral("no-device"))}) {
        Controller controller(testing::OptionsFor(port));
        std::wstring fault;
        EXPECT_FALSE(controller.ConnectQuietly(fault)) << port.toStdString();
        EXPECT_FALSE(fault.empty()) << port.toStdString();
        EXPECT_EQ(controller.Link().State(), LinkState::NotConnected);
        EXPECT_EQ(controller.State().receiver.link, LinkState::Failed);
        controller.Disconnect();
        EXPECT_EQ(controller.State().receiver.link, LinkState::NotConnected);
    }
}

/// From the head of each page that asks the receiver only once.
TEST_F(SessionTest, APageConnectsAndAsksAgain)
{
    struct Row
    {
        MainWindow::Choice choice;
        std::function<bool(QWidget&)> hasAnswer;
    };
    const Row rows[] = {
        {MainWindow::kVersion,
         [](QWidget& page) { return page.findChild<QTableWidget*>()->rowCount() > 0; }},
        {MainWindow::kPorts,
         [](QWidget& page) {
             const auto labels = page.findChildren<QLabel*>();
             return std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
                 return label->text() == UiText(text::kComIsLink);
             });
         }},
        {MainWindow::kSignals,
         [](QWidget& page) {
             const auto boxes = page.findChildren<QCheckBox*>();
             return std::any_of(boxes.begin(), boxes.end(),
                                [](const QCheckBox* box) { return box->isEnabled(); });
         }},
    };
    Started controller(QStringLiteral("sim:lark"));
    Session session(controller);
    session.Window().show();
    for (const Row& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.choice));
        controller.Disconnect();
        bool isAsked = false;
        bool hasAnswer = false;
        QDeadlineTimer patience(30s);
        const auto act = [&](QWidget& page) {
            const auto* const head = page.findChild<StatusStrip*>();
            if (head == nullptr) {
                return;
            }
            hasAnswer = row.hasAnswer(page);
            if (!std::exchange(isAsked, true)) {
                EXPECT_FALSE(hasAnswer);
                QTest::mouseClick(head->findChild<QPushButton*>(), Qt::LeftButton);
            } else if (hasAnswer || patience.hasExpired()) {
                QTest::keyClick(&page, Qt::Key_Escape);
            }
        };
        const Hand<> hand(act, kCalmly);
        Q_EMIT session.Window().Chosen(row.choice);
        EXPECT_TRUE(hasAnswer);
        EXPECT_EQ(controller.Link().State(), LinkState::Connected);
    }
}

TEST_F(SessionTest, TellsOfAReceiverThatCannotBeSwitchedOff)
{
    const auto receiver = testing::StartReceiver("lark");
    Started controller(QString::fromStdString(receiver->PortPath()));
    Session session(controller);
    session.Window().show();
    ASSERT_TRUE(controller.IsConnectedQuietly());
    QString told;
    const auto act = [&](QWidget& page) {
        if (qobject_cast<MessageDlg*>(&page) != nullptr) {
            for (const QLabel* label : page.findChildren<QLabel*>()) {
                told += label->text();
            }
            QTest::keyClick(&page, Qt::Key_Escape);
        } else {
            receiver->HangUp();
            for (QPushButton* button : page.findChildren<QPushButton*>()) {
                if (button->text() == UiText(text::kEndProgramPowerOff)) {
                    button->click();
                }
            }
        }
    };
    const Hand<> hand(act, kCalmly);
    EXPECT_FALSE(session.Window().close()) << "it ends before the user could do anything about it";
    EXPECT_TRUE(told.contains(QStringLiteral("受信機の電源を切れませんでした。")))
        << told.toStdString();
}

TEST_F(SessionTest, ConnectsAndOpensItsPages)
{
    Started controller(QStringLiteral("sim:lark"));
    Session session(controller);
    session.Begin();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return controller.State().receiver.position.has_value(); }, 30000));
    EXPECT_EQ(controller.Link().State(), LinkState::Connected);
    EXPECT_EQ(controller.State().receiver.identity.Model(), L"Corvane VX1");
    EXPECT_EQ(controller.State().simulator, QStringLiteral("lark"));

    MainWindow* const window = Window();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(controller.Frames().After(0).empty());

    EscapeKey esc;
    EXPECT_FALSE(window->close()) << "the question at the end was answered with staying";
    EXPECT_EQ(esc.First(), QStringLiteral("fieldcore::CPrgEndMes"));
}

/// The row's page opens, with or without a receiver, and Esc leaves everything as it was.
TEST_F(SessionTest, LeavesEveryEntryWithEsc)
{
    struct Row
    {
        MainWindow::Choice choice;
        const char* page;
        bool offers; ///< to connect, where there is no receiver
    };
    const Row rows[] = {
        {MainWindow::kConnect, "PortChooserDlg", false},
        {MainWindow::kSkyPlot, "CSkyPlot", true},
        {MainWindow::kPlan, "CSurveyPlan", true},
        {MainWindow::kStatus, "StatusPage", true},
        {MainWindow::kFiles, "CRecvFileMan", false},
        {MainWindow::kAntenna, "CAntenna", true},
        {MainWindow::kTracking, "TrackingDlg", false},
        {MainWindow::kSignals, "SetSignal", true},
        {MainWindow::kTilt, "TiltStatusDlg", true},
        {MainWindow::kFrames, "FramesDlg", true},
        {MainWindow::kPorts, "CComPort", true},
        {MainWindow::kSettings, "SettingsSheet", false},
        {MainWindow::kForceInit, "MessageDlg", false},
        {MainWindow::kVersion, "CVersion", true},
        {MainWindow::kAbout, "MessageDlg", false},
    };
    Started controller(QStringLiteral("sim:lark"), testing::kRealSpeed);
    controller.Command().Background().SetReplyTimeout(std::chrono::seconds(20));
    Session session(controller);
    MainWindow& window = session.Window();
    window.show();
    for (const bool isConnected : {true, false}) {
        if (isConnected) {
            ASSERT_TRUE(controller.IsConnectedQuietly());
        } else {
            controller.Disconnect();
        }
        const LinkState before = controller.Link().State();
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.page) + (isConnected ? "" : " without a receiver"));
            EscapeKey esc;
            const bool wasThere = HasReceiver(controller.Link().State());
            Q_EMIT window.Chosen(row.choice);
            EXPECT_EQ(esc.First().toStdString(), std::string("fieldcore::") + row.page);
            const bool isThere = HasReceiver(controller.Link().State());
            EXPECT_TRUE(wasThere != isThere || esc.IsOffered() == (row.offers && !isThere));
            EXPECT_LE(esc.Count(), 3) << "one page after another";
            EXPECT_TRUE(esc.HasSwitches());
            EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
            EXPECT_TRUE(window.isVisible() && window.isEnabled());
            EXPECT_FALSE(controller.Command().IsBusy());
            if (!isConnected) {
                controller.Disconnect(); // the files have connected
            }
            // A question that Esc cut short may have cost the link: it comes back, or the page that
            // could not open has closed it.
            const auto& link = controller.Link();
            EXPECT_TRUE(QTest::qWaitFor(
                [&] { return link.State() == before || link.State() == LinkState::NotConnected; },
                10000));
            if (isConnected && link.State() == LinkState::NotConnected) {
                ASSERT_TRUE(controller.IsConnectedQuietly());
            }
        }
    }
}

TEST_F(SessionTest, ThePlanTakesTheSurveysConditionsOver)
{
    Started controller(QStringLiteral("sim:lark"));
    CGPSPrm parameters(controller.Roots());
    ResetTracking(parameters, AllSurveys()[5]);
    parameters.SetElMaskData(25);
    parameters.SetMinSVsData(6);
    parameters.SetPDOPMaskData(3.5);
    ASSERT_EQ(SaveTracking(controller.Reg(), AllSurveys()[5], parameters), 1);
    ASSERT_EQ(SaveSurvey(controller.Reg(), 5), 1);
    controller.ReadLimits();
    EXPECT_EQ(controller.View().limits, (ObservingLimits{25, 6, 3.5}));
    CSurveyPlan plan(&controller.Command(), 0, PlanWorld(controller, nullptr));
    CPlanSet set(plan);
    CPlanDet details(plan);
    for (QWidget* page : {static_cast<QWidget*>(&set), static_cast<QWidget*>(&details)}) {
        for (QPushButton* button : page->findChildren<QPushButton*>()) {
            if (button->text() == UiText(text::kPlanTakeConditions)) {
                button->click();
            }
        }
    }
    EXPECT_EQ(set.findChildren<CSpinDouble*>().value(0)->GetValue(), 25.0);
    EXPECT_EQ(details.findChildren<CSpinDouble*>().value(0)->GetValue(), 6.0);
    EXPECT_EQ(details.findChildren<CSpinDouble*>().value(1)->GetValue(), 3.5);
}

TEST_F(SessionTest, TheBubbleStaysWhileOtherPagesAreUsed)
{
    Started controller(QStringLiteral("sim:tilted"), testing::kRealSpeed);
    Session session(controller);
    MainWindow& window = session.Window();
    window.resize(480, 640);
    window.show();
    const auto isShown = [] {
        return TiltSensorDlg::Instance() != nullptr && TiltSensorDlg::Instance()->isVisible();
    };
    const auto choose = [&window](MainWindow::Choice choice) {
        EscapeKey esc;
        Q_EMIT window.Chosen(choice);
    };
    for (const QSize size : {QSize(1280, 800), QSize(480, 640)}) {
        TiltSensorDlg::ShutDown();
        TiltSensorDlg::ForgetPlace();
        window.resize(size);
        QCoreApplication::processEvents();
        choose(MainWindow::kBubble);
        ASSERT_TRUE(isShown());
        QCoreApplication::processEvents();
        for (const CIconButton* button : window.findChildren<CIconButton*>()) {
            const QRect place(button->mapToGlobal(QPoint()), button->size());
            EXPECT_FALSE(place.intersects(TiltSensorDlg::Instance()->frameGeometry()))
                << button->accessibleName().toStdString();
        }
        KeepPicture(window, *TiltSensorDlg::Instance(),
                    QStringLiteral("bubble-home-%1").arg(size.width()));
    }
    EXPECT_EQ(TiltSensorDlg::Instance()->View()->accessibleDescription(),
              UiText(text::kBubbleStale))
        << "there is no receiver";
    ASSERT_TRUE(controller.IsConnectedQuietly());
    EXPECT_TRUE(QTest::qWaitFor(
        [] { return TiltSensorDlg::Instance()->View()->Picture().showBubble; }, 10000));
    for (const MainWindow::Choice page :
         {MainWindow::kStatus, MainWindow::kTracking, MainWindow::kTilt}) {
        choose(page);
        EXPECT_TRUE(isShown()) << static_cast<int>(page);
    }
    TiltSensorDlg::Instance()->Close(Dialog::kCancelled);
    choose(MainWindow::kTilt);
    EXPECT_FALSE(isShown()) << "the user has closed it";
    choose(MainWindow::kBubble);
    EXPECT_TRUE(isShown());
    choose(MainWindow::kBubble);
    EXPECT_FALSE(isShown());
}

/// The cable comes off and is put back while a page is open: none keeps the link from asking.
TEST_F(SessionTest, ComesBackUnderEveryPage)
{
    const auto receiver = testing::StartReceiver("lark");
    Started controller(QString::fromStdString(receiver->PortPath()), testing::kRealSpeed);
    Session session(controller);
    session.Window().show();
    ASSERT_TRUE(controller.IsConnectedQuietly());
    for (const MainWindow::Choice choice :
         {MainWindow::kSkyPlot, MainWindow::kStatus, MainWindow::kFiles, MainWindow::kTilt,
          MainWindow::kPorts, MainWindow::kAntenna, MainWindow::kConnect, MainWindow::kVersion}) {
        SCOPED_TRACE(static_cast<int>(choice));
        bool isOut = false;
        bool isBack = false;
        QDeadlineTimer patience(30s);
        const auto act = [&](QWidget& page) {
            const LinkState link = controller.Link().State();
            if (page.findChild<BusyStrip*>() != nullptr) {
                return;
            }
            if (!std::exchange(isOut, true)) {
                receiver->HangUp();
            } else if (!isBack && link == LinkState::Lost) {
                isBack = receiver->Plug();
            } else if (qobject_cast<MessageDlg*>(&page) != nullptr || patience.hasExpired() ||
                       (isBack && link == LinkState::Connected)) {
                QTest::keyClick(&page, Qt::Key_Escape);
            }
        };
        const Hand<> hand(act, kCalmly);
        Q_EMIT session.Window().Chosen(choice);
        EXPECT_TRUE(isBack);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        ASSERT_TRUE(isBack || receiver->Plug());
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return controller.Link().State() == LinkState::Connected; }, 20000));
    }
}

TEST_F(SessionTest, CancelEndsAConnectionThatNobodyAnswers)
{
    // A time-out lasts 20 s: only Cancel can be quicker than the watchdog.
    Started controller(QStringLiteral("sim:silent"), 0.1);
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
    const Hand<> watchdog([&boxes](QWidget& box) {
        ++boxes;
        box.close();
    });
    std::wstring fault;
    EXPECT_FALSE(controller.Connect(&window, fault));
    EXPECT_TRUE(clicked);
    EXPECT_EQ(controller.Command().Fault(), CommandFault::Cancelled);
    EXPECT_EQ(controller.Command().IsPortOpen(), 0);
    EXPECT_EQ(fault, L"") << "who cancels is not told that it failed";
    EXPECT_EQ(boxes, 0);
}

TEST_F(SessionTest, GoesFromTheSimulatorToARealPort)
{
    Started controller(QStringLiteral("sim:lark"));
    ASSERT_TRUE(controller.IsConnectedQuietly());
    const auto real = testing::StartReceiver("pica", controller.GetClock());
    QStringList asked;
    const Hand<MessageDlg> hand([&asked](MessageDlg& box) {
        asked += box.windowTitle();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    ConnectChoice choice = controller.Choice();
    choice.port = real->PortPath();
    controller.Choose(choice);
    std::wstring fault;
    EXPECT_TRUE(controller.Connect(nullptr, fault));
    EXPECT_EQ(asked, QStringList{QStringLiteral("ケーブル接続確認")});
    EXPECT_GT(real->RequestCount(), 0U);
    EXPECT_EQ(controller.State().simulator, QString());
}

TEST_F(SessionTest, UsesTheHeightOfTheTallerController)
{
    for (const bool bySetting : {false, true}) {
        SCOPED_TRACE(bySetting ? "setting" : "option");
        AppOptions options = testing::OptionsFor(m_folder.filePath(QStringLiteral("no-device")));
        EXPECT_FALSE(Controller(options).Host().IsQ77());
        options.isQ77 = !bySetting;
        if (bySetting) {
            Controller(options).Reg().WriteNumber(L"GPS\\App", L"Q77", 1);
        }
        Started controller(options);
        Session session(controller);
        session.Begin();
        EXPECT_EQ(session.Window().size(), QSize(480, 800));
        CSurveyPlan plan(&controller.Command(), 0, PlanWorld(controller, &session.Window()),
                         &session.Window());
        for (const QSize size : {QSize(480, 640), QSize(480, 800)}) {
            plan.resize(size);
            plan.show();
            QCoreApplication::processEvents();
            EXPECT_TRUE(plan.findChild<PlanWindowList*>()->isVisible());
            testing::ExpectNothingCut(plan, size);
        }
        CRecvFileMan files(&controller.Command(), 0, nullptr, FilesWorld(controller, nullptr),
                           &session.Window());
        files.show();
        EXPECT_GT(files.height(), 720) << "as high as the screen: a form of 45 lines is 720 high";
        EXPECT_FALSE(files.windowIcon().pixmap(32).isNull());
    }
}

TEST_F(SessionTest, AsksOnceWhenBluetoothIsLost)
{
    Started controller(QStringLiteral("COM5"), testing::kRealSpeed);
    const auto receiver = testing::StartReceiver("lark");
    controller.Reg().WriteString(L"Ports", L"COM5", FromUtf8(receiver->PortPath()));
    ASSERT_TRUE(controller.IsConnectedQuietly());
    EXPECT_EQ(controller.Command().GetPortNumber(), 5);
    QStringList asked;
    const Hand<MessageDlg> hand([&](MessageDlg& box) {
        EXPECT_FALSE(controller.Command().IsBusy()) << "asked from inside of a request";
        EXPECT_TRUE(receiver->Plug());
        asked += box.windowTitle();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    receiver->HangUp();
    const auto over = [&] {
        return !asked.isEmpty() && controller.Link().State() == LinkState::Connected;
    };
    EXPECT_TRUE(QTest::qWaitFor(over, 20000));
    QTest::qWait(600); // two rounds of the program's timer
    EXPECT_EQ(asked, QStringList{QStringLiteral("通信エラー検出")});
}

TEST_F(SessionTest, TakesOverALinkThatAPageHasMade)
{
    Started controller(QStringLiteral("sim:lark"));
    Session session(controller);
    session.Window().show();
    bool isConnected = false;
    const Hand<CSurveyPlan> hand([&isConnected](CSurveyPlan& plan) {
        if (std::exchange(isConnected, true)) {
            QTest::keyClick(&plan, Qt::Key_Escape);
        } else {
            const auto connect = plan.Surroundings().makeConnect(*plan.GetCCommand());
            EXPECT_EQ(connect->DoModal(), CConnect::Connected);
        }
    });
    const Hand<MessageDlg> agree([](MessageDlg& box) { QTest::keyClick(&box, Qt::Key_Return); });
    Q_EMIT session.Window().Chosen(MainWindow::kPlan);
    EXPECT_TRUE(isConnected);
    EXPECT_EQ(controller.Link().State(), LinkState::Connected);
}

TEST_F(SessionTest, GivesTheBubbleTheAntennaOfItsRole)
{
    Started controller(QStringLiteral("sim:tilted"), testing::kRealSpeed);
    AntennaSettings antenna(nullptr, 1, 0, {controller.ProgramFolder(), &controller.Roots()});
    antenna.SetRole(AntennaRole::Rover);
    antenna.SetAntInputH(1.8);
    ASSERT_EQ(antenna.WriteRegAnt(), 1);
    ASSERT_TRUE(controller.IsConnectedQuietly());
    ASSERT_EQ(TiltSensorDlg::StartUp(&controller.Command(), nullptr, nullptr), 1);
    const auto ring = [] { return TiltSensorDlg::Instance()->View()->Picture().ringRadius; };
    const auto shows = [] { return TiltSensorDlg::Instance()->View()->Picture().showBubble; };
    EXPECT_TRUE(QTest::qWaitFor(shows, 10000));
    EXPECT_EQ(ring(), 0) << "no height is known yet";
    controller.UseAntenna(AntennaRole::Rover);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ring() > 0; }, 10000));
    controller.UseAntenna(AntennaRole::Reference); // which has none
    EXPECT_TRUE(QTest::qWaitFor([&] { return ring() == 0; }, 10000));
    TiltSensorDlg::ShutDown();
}

TEST_F(SessionTest, TellsOfItsSettingsInJapanese)
{
    const AppOptions options = testing::OptionsFor(QStringLiteral("sim:lark"));
    const std::filesystem::path config = m_folder.filePath(QStringLiteral("config")).toStdString();
    {
        Started controller(QStringLiteral("sim:lark"));
        EXPECT_EQ(controller.TakeNotice(), QString());
        SettingsRoots real;
        SettingsStore& store = real.Store(RootKey::CurrentUser);
        ASSERT_TRUE(store.Set(HostBasePath() + L"\\Ports", L"COM999", std::wstring(L"/dev/x"),
                              KeyOpening::Create));
    }
    {
        Controller controller(options);
        EXPECT_TRUE(controller.TakeNotice().startsWith(
            QStringLiteral("ポートの割り当て「COM999」は使えません。")));
        EXPECT_EQ(controller.TakeNotice(), QString()) << "told twice";
    }
    std::filesystem::remove_all(config);
    std::filesystem::create_symlink("/dev/null", config);
    Controller controller(options);
    controller.UseTheme(Theme::Kind::Dark);
    Theme::Use(Theme::Kind::Daylight);
    const QString notice = controller.TakeNotice();
    EXPECT_TRUE(notice.startsWith(QStringLiteral("設定を保存できません。")))
        << notice.toStdString();
    EXPECT_TRUE(notice.contains(QStringLiteral("user.db")));
}

TEST_F(SessionTest, KeepsWhatTheSimulatorLeadsToApart)
{
    const auto height = [](const Controller& controller) {
        std::uint32_t value = 0;
        controller.Reg().ReadNumber(L"GPS\\Mark", L"Height", value, 0);
        return value;
    };
    const std::filesystem::path home = Folders().Program();
    Controller controller(testing::OptionsFor(QString()));
    controller.Choose({"COM7", 9600});
    controller.Begin();
    ASSERT_EQ(controller.Reg().WriteNumber(L"GPS\\Mark", L"Height", 1), 1);
    EXPECT_EQ(controller.ProgramFolder(), home);

    controller.Choose({"sim:lark", 38400});
    controller.UseTheme(Theme::Kind::Dark);
    EXPECT_EQ(height(controller), 0U) << "the simulator's are its own";
    EXPECT_NE(controller.ProgramFolder(), home);
    EXPECT_TRUE(std::filesystem::exists(AlmanacPath(controller.ProgramFolder())));
    ASSERT_EQ(controller.Reg().WriteNumber(L"GPS\\Mark", L"Height", 2), 1);

    controller.Choose({"COM7", 9600});
    EXPECT_EQ(height(controller), 1U) << "the real ones have not been touched";
    Started later(QString{});
    EXPECT_EQ(later.Choice(), (ConnectChoice{"COM7", 9600}));
    EXPECT_EQ(Theme::Used(), Theme::Kind::Dark)
        << "the controller's own look is not the receiver's";
    Theme::Use(Theme::Kind::Daylight);
}

TEST_F(SessionTest, StandsAThousandRandomEvents)
{
    Started controller(QStringLiteral("sim:lark"), 50.0);
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
    // On a busy machine a receiver whose time runs so fast may seem silent once.
    EXPECT_TRUE(QTest::qWaitFor([&] { return controller.IsConnectedQuietly(); }, 60000))
        << "it cannot be used any more";
}

TEST_F(SessionTest, DialogsStandAThousandRandomEvents)
{
    Started controller(QStringLiteral("sim:lark"));
    ASSERT_TRUE(controller.IsConnectedQuietly());
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
    Started controller(QStringLiteral("sim:lark"));
    MainWindow window;
    ScreenPictures pictures(controller, window);
    const QString folder = m_folder.filePath(QStringLiteral("pictures"));
    EXPECT_EQ(pictures.Write(folder), 0);
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.png")});
    EXPECT_EQ(files.filter(QStringLiteral("home")).size(), 4);
    EXPECT_GE(files.size(), 56);
    EXPECT_EQ(pictures.Write(QStringLiteral("/dev/null/pictures")), 8);
}

} // namespace
} // namespace fieldcore
