// The program as a user starts it: in folders of its own, on the simulated receiver.

#include "app/Session.h"
#include "app/MainWindow.h"
#include "app/ScreenPictures.h"
#include "app/SettingsSheet.h"
#include "app/StatusStrip.h"
#include "core/link/Connect.h"
#include "core/link/Questions.h"
#include "core/platform/Clock.h"
#include "core/tilt/TrackingSettings.h"
#include "tests/app/Started.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/SpinDouble.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/link/FramesView.h"
#include "ui/planning/PlanDet.h"
#include "ui/planning/PlanSet.h"
#include "ui/planning/PlanWindowList.h"
#include "ui/planning/SurveyPlan.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

#include <memory>
#include <string>

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
    ~SessionTest() override { SystemClock::Instance().AllowSetting(false); }
};

/// The program with its window.
struct Running
{
    explicit Running(const std::string& port, double speed = 5.0)
        : controller(QString::fromStdString(port), speed), session(controller)
    {
        session.Window().show();
    }
    void Choose(int choice) { Q_EMIT session.Window().Chosen(choice); }
    [[nodiscard]] bool IsConnected() { return controller.Link().State() == LinkState::Connected; }

    Started controller;
    Session session;
};

/// From the head of each page that asks the receiver only once.
TEST_F(SessionTest, APageConnectsAndAsksAgain)
{
    const auto isAnswered = [](const QWidget& page) {
        const auto* const versions = page.findChild<QTableWidget*>();
        const auto labels = page.findChildren<QLabel*>();
        const auto boxes = page.findChildren<QCheckBox*>();
        return (versions != nullptr && versions->rowCount() > 0) ||
               std::ranges::count(labels, UiText(text::kComIsLink), &QLabel::text) > 0 ||
               std::ranges::any_of(boxes, &QWidget::isEnabled);
    };
    Running program("sim:lark");
    for (const auto choice : {text::kVersionTitle, text::kComTitle, text::kAppSignals}) {
        SCOPED_TRACE(choice);
        program.controller.Disconnect();
        bool isAsked = false;
        bool hasAnswer = false;
        QDeadlineTimer patience(30s);
        const auto act = [&](QWidget& page) {
            const auto* const head = page.findChild<StatusStrip*>();
            if (head == nullptr) {
                return;
            }
            hasAnswer = isAnswered(page);
            if (!std::exchange(isAsked, true)) {
                EXPECT_FALSE(hasAnswer);
                QTest::mouseClick(head->findChild<QPushButton*>(), Qt::LeftButton);
            } else if (hasAnswer || patience.hasExpired()) {
                QTest::keyClick(&page, Qt::Key_Escape);
            }
        };
        const Hand<> hand(act, kCalmly);
        program.Choose(choice);
        EXPECT_TRUE(hasAnswer);
        EXPECT_TRUE(program.IsConnected());
    }
}

TEST_F(SessionTest, TellsOfAReceiverThatCannotBeSwitchedOff)
{
    const auto receiver = testing::StartReceiver("lark");
    Running program(receiver->PortPath());
    ASSERT_TRUE(program.controller.IsConnectedQuietly());
    QString told;
    const auto act = [&](QWidget& page) {
        if (qobject_cast<MessageDlg*>(&page) != nullptr) {
            told += page.accessibleDescription();
            QTest::keyClick(&page, Qt::Key_Escape);
            return;
        }
        receiver->HangUp();
        testing::Click(page, text::kEndProgramPowerOff);
    };
    const Hand<> hand(act, kCalmly);
    EXPECT_FALSE(program.session.Window().close()) << "the user could do nothing about it";
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

    EXPECT_FALSE(controller.Frames().After(0).empty());
    EscapeKey esc;
    EXPECT_FALSE(session.Window().close()) << "the question was answered with staying";
    EXPECT_EQ(esc.First(), QStringLiteral("fieldcore::CPrgEndMes"));
}

/// The row's page opens, with or without a receiver, and Esc leaves everything as it was.
TEST_F(SessionTest, LeavesEveryEntryWithEsc)
{
    struct Row
    {
        int choice;
        const char* page;
        bool offers; ///< to connect, where there is no receiver
    };
    const Row rows[] = {
        {text::kAppConnect, "PortChooserDlg", false}, {text::kAppSatellites, "CSkyPlot", true},
        {text::kAppPlan, "CSurveyPlan", true},        {text::kAppStatusButton, "StatusPage", true},
        {text::kAppFiles, "CRecvFileMan", false},     {text::kAppAntenna, "CAntenna", true},
        {text::kAppTracking, "TrackingDlg", false},   {text::kAppSignals, "SetSignal", true},
        {text::kAppTilt, "TiltStatusDlg", true},      {text::kAppFrames, "FramesView", true},
        {text::kComTitle, "CComPort", true},          {text::kAppSettings, "SettingsSheet", false},
        {text::kAppForceInit, "MessageDlg", false},   {text::kVersionTitle, "CVersion", true},
        {text::kAppAbout, "MessageDlg", false},
    };
    Running program("sim:lark", testing::kRealSpeed);
    Controller& controller = program.controller;
    controller.Command().Background().SetReplyTimeout(std::chrono::seconds(20));
    const MainWindow& window = program.session.Window();
    for (const bool isConnected : {true, false}) {
        if (isConnected) {
            ASSERT_TRUE(program.controller.IsConnectedQuietly());
        } else {
            controller.Disconnect();
        }
        const LinkState before = controller.Link().State();
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.page) + (isConnected ? "" : " without a receiver"));
            EscapeKey esc;
            const bool wasThere = HasReceiver(controller.Link().State());
            program.Choose(row.choice);
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
                ASSERT_TRUE(program.controller.IsConnectedQuietly());
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
    CSurveyPlan plan(&controller.Command(), 0, controller.PlanWorld(nullptr));
    CPlanSet set(plan);
    CPlanDet details(plan);
    testing::Called(set, text::kPlanTakeConditions)->click();
    testing::Called(details, text::kPlanTakeConditions)->click();
    EXPECT_EQ(set.findChildren<CSpinDouble*>().value(0)->GetValue(), 25.0);
    EXPECT_EQ(details.findChildren<CSpinDouble*>().value(0)->GetValue(), 6.0);
    EXPECT_EQ(details.findChildren<CSpinDouble*>().value(1)->GetValue(), 3.5);
}

TEST_F(SessionTest, TheBubbleStaysWhileOtherPagesAreUsed)
{
    Running program("sim:tilted", testing::kRealSpeed);
    MainWindow& window = program.session.Window();
    const auto isShown = [] {
        return TiltSensorDlg::Instance() != nullptr && TiltSensorDlg::Instance()->isVisible();
    };
    const auto choose = [&program](int choice) {
        EscapeKey esc;
        program.Choose(choice);
    };
    for (const QSize size : {QSize(1280, 800), QSize(480, 640)}) {
        TiltSensorDlg::ShutDown();
        TiltSensorDlg::ForgetPlace();
        window.resize(size);
        QCoreApplication::processEvents();
        choose(text::kBubbleTitle);
        ASSERT_TRUE(isShown());
        QCoreApplication::processEvents();
        for (const CIconButton* button : window.findChildren<CIconButton*>()) {
            const QRect place(button->mapToGlobal(QPoint()), button->size());
            EXPECT_FALSE(place.intersects(TiltSensorDlg::Instance()->frameGeometry()))
                << button->accessibleName().toStdString();
        }
    }
    EXPECT_EQ(TiltSensorDlg::Instance()->View()->accessibleDescription(),
              UiText(text::kBubbleStale))
        << "there is no receiver";
    ASSERT_TRUE(program.controller.IsConnectedQuietly());
    EXPECT_TRUE(QTest::qWaitFor(
        [] { return TiltSensorDlg::Instance()->View()->Picture().showBubble; }, 10000));
    for (const int page : {text::kAppStatusButton, text::kAppTracking, text::kAppTilt}) {
        choose(page);
        EXPECT_TRUE(isShown()) << page;
    }
    TiltSensorDlg::Instance()->Close(Dialog::kCancelled);
    choose(text::kAppTilt);
    EXPECT_FALSE(isShown()) << "the user has closed it";
    choose(text::kBubbleTitle);
    EXPECT_TRUE(isShown());
    choose(text::kBubbleTitle);
    EXPECT_FALSE(isShown());
}

/// The cable comes off and is put back while a page is open: none keeps the link from asking.
TEST_F(SessionTest, ComesBackUnderEveryPage)
{
    const auto receiver = testing::StartReceiver("lark");
    Running program(receiver->PortPath(), testing::kRealSpeed);
    ASSERT_TRUE(program.controller.IsConnectedQuietly());
    for (const int choice :
         {text::kAppSatellites, text::kAppStatusButton, text::kAppFiles, text::kAppTilt,
          text::kComTitle, text::kAppAntenna, text::kAppConnect, text::kVersionTitle}) {
        SCOPED_TRACE(choice);
        bool isOut = false;
        bool isBack = false;
        QDeadlineTimer patience(30s);
        const auto act = [&](QWidget& page) {
            const LinkState link = program.controller.Link().State();
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
        program.Choose(choice);
        EXPECT_TRUE(isBack);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        ASSERT_TRUE(isBack || receiver->Plug());
        EXPECT_TRUE(QTest::qWaitFor([&] { return program.IsConnected(); }, 20000));
    }
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
        CSurveyPlan plan(&controller.Command(), 0, controller.PlanWorld(&session.Window()),
                         &session.Window());
        for (const QSize size : {QSize(480, 640), QSize(480, 800)}) {
            plan.resize(size);
            plan.show();
            QCoreApplication::processEvents();
            EXPECT_TRUE(plan.findChild<PlanWindowList*>()->isVisible());
            testing::ExpectNothingCut(plan, size);
        }
        CRecvFileMan files(&controller.Command(), 0, nullptr, {controller.MakesConnect(nullptr)},
                           &session.Window());
        files.show();
        EXPECT_GT(files.height(), 720) << "as high as the screen: a form of 45 lines is 720 high";
        EXPECT_FALSE(files.windowIcon().pixmap(32).isNull());
    }
}

TEST_F(SessionTest, TakesOverALinkThatAPageHasMade)
{
    Running program("sim:lark");
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
    program.Choose(text::kAppPlan);
    EXPECT_TRUE(isConnected);
    EXPECT_TRUE(program.IsConnected());
}

TEST_F(SessionTest, ALowBatteryIsToldOnce)
{
    Started controller(QStringLiteral("sim:low-battery"), 20.0);
    Session session(controller);
    QStringList told;
    const Hand<MessageDlg> reader([&told](MessageDlg& box) {
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

TEST_F(SessionTest, TheUserDecidesWhetherTheClockIsSet)
{
    for (const bool wanted : {true, false}) {
        {
            Running program("sim:lark", 20.0);
            const Controller& controller = program.controller;
            EXPECT_EQ(controller.MaySetClock(), !wanted);
            ASSERT_TRUE(program.controller.IsConnectedQuietly());
            bool isDone = false;
            const Hand<SettingsSheet> hand([&](SettingsSheet& sheet) {
                sheet.findChild<QCheckBox*>()->setChecked(wanted);
                isDone = true;
                sheet.Close(Dialog::kOk);
            });
            program.Choose(text::kAppSettings);
            EXPECT_TRUE(isDone);
            EXPECT_EQ(controller.MaySetClock(), wanted);
            EXPECT_EQ(controller.View().maySetClock, wanted);
        }
        const Started next(QStringLiteral("sim:lark"), 20.0);
        EXPECT_EQ(next.MaySetClock(), wanted) << "kept";
    }
}

TEST_F(SessionTest, StandsAThousandRandomEvents)
{
    Started controller(QStringLiteral("sim:lark"), 50.0);
    Session session(controller);
    session.Begin();
    MainWindow& window = session.Window();
    {
        testing::RandomHands hands;
        while (!hands.IsTired()) {
            hands.Play(window, 100);
            ASSERT_TRUE(window.isVisible()) << "closed without an answer to its question";
            ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
            window.resize(300 + hands.Below(1000), 300 + hands.Below(600));
            controller.UseTheme(static_cast<Theme::Kind>(hands.Below(3)));
        }
    }
    Theme::Use(Theme::Kind::Daylight);
    EXPECT_TRUE(controller.IsConnectedQuietly()) << "it cannot be used any more";
}

TEST_F(SessionTest, DialogsStandAThousandRandomEvents)
{
    Started controller(QStringLiteral("sim:lark"));
    ASSERT_TRUE(controller.IsConnectedQuietly());
    testing::TryScreen([&] { return std::make_unique<FramesView>(controller.Frames()); });
    testing::TryScreen([&] { return std::make_unique<SettingsSheet>(controller); });
    Theme::Use(Theme::Kind::Daylight);
}

TEST_F(SessionTest, WritesAPictureOfEveryScreen)
{
    Started controller(QStringLiteral("sim:lark"));
    MainWindow window;
    const QString folder = m_folder.filePath(QStringLiteral("pictures"));
    EXPECT_EQ(WritePictures(controller, window, folder), 0);
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.png")});
    EXPECT_EQ(files.filter(QStringLiteral("home")).size(), 4);
    EXPECT_GE(files.size(), 56);
    EXPECT_EQ(WritePictures(controller, window, QStringLiteral("/dev/null/pictures")), 8);
}

} // namespace
} // namespace fieldcore
