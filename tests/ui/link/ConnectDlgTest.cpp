#include "ui/link/ConnectDlg.h"

#include "core/link/ComPrmSet.h"
#include "core/link/Command.h"
#include "core/platform/FastClock.h"
#include "core/platform/PosixSerialDevice.h"
#include "core/platform/Utf8.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/link/Clicks.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/QtHost.h"
#include "ui/link/RecvForceInitDlg.h"

#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProgressBar>

#include <memory>
#include <string>
#include <vector>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using simulator::Scenario;
using simulator::Simulator;
using testing::ParsedRule;

constexpr int kInfo = text::kMessageIconInformation;

ExpectedBox Cable(int click = text::kButtonOk)
{
    return {L"ケーブルを接続してください", L"ケーブル接続確認", kInfo, click};
}

class ConnectDlgTest : public ::testing::Test
{
protected:
    ConnectDlgTest()
    {
        window.resize(480, 640);
        window.show();
        QApplication::setActiveWindow(&window);
        command.SetHost(host);
        target.settings.replyTimeout = 1000s; // 10 s on a watch: no busy machine comes too late
    }
    void Start(const Scenario& scenario) { StartBy(clock, scenario); }
    void StartBy(Clock& time, const Scenario& scenario)
    {
        receiver = testing::StartReceiver(scenario, time);
        target.devicePath = receiver->PortPath();
    }
    void Start(const char* rule)
    {
        Scenario scenario;
        scenario.faults = {ParsedRule(rule)};
        Start(scenario);
    }

    FastClock clock{100.0};
    QWidget window;
    QtHost host{{.isQ77 = false, .clock = &clock}};
    std::unique_ptr<Simulator> receiver;
    CCommand command{{nullptr, &clock, nullptr, nullptr}};
    ConnectTarget target;
};

TEST_F(ConnectDlgTest, AsksAndConnectsByClicks)
{
    Start(testing::ShippedScenario("lark"));
    for (const bool agrees : {true, false}) {
        SCOPED_TRACE(agrees);
        Surveyor surveyor({Cable(agrees ? text::kButtonOk : text::kButtonCancel)});
        int mostDone = 0;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            mostDone = std::max(mostDone, dialog.findChild<QProgressBar*>()->value());
            EXPECT_EQ(window.findChild<BusyStrip*>(), nullptr) << "two Cancel buttons";
            EXPECT_EQ(dialog.findChild<BusyStrip*>(), nullptr) << "two Cancel buttons";
        };
        ConnectDlg dialog(command, 0, target, &window);
        EXPECT_EQ(dialog.DoModal(), agrees ? CConnect::Connected : CConnect::NotConnected);
        EXPECT_EQ(command.IsPortOpen() == 1, agrees);
        EXPECT_EQ(mostDone > 2, agrees) << "nothing was seen of it";
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "the dialog is left behind";
        command.ClosePort();
    }
}

/// With large letters, and nothing of it is cut off.
TEST_F(ConnectDlgTest, AFailureShowsStepCauseAndDetail)
{
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPixelSize(21); // 30 % above 16
    QApplication::setFont(large);
    struct Row
    {
        const char* fault;
        const char* step;
        const char* cause;
        const char* detail;
    };
    const Row rows[] = {
        {"wrong-type on 06 skip 1", "シリアル番号を確認しています", "予期しない応答", "0x06"},
        {"", "通信ポートを開いています", "取り外されています", "no-such-port"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        if (*row.fault == '\0') {
            target.devicePath = "/dev/no-such-port";
        } else {
            Start(row.fault);
        }
        Surveyor surveyor({Cable()});
        bool told = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            if (!dialog.CloseButton()->isVisible() || std::exchange(told, true)) {
                return;
            }
            const QString message = dialog.accessibleDescription();
            EXPECT_TRUE(message.contains(QString::fromUtf8(row.step))) << message.toStdString();
            EXPECT_TRUE(message.contains(QString::fromUtf8(row.cause))) << message.toStdString();
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("受信機接続エラー"));
            EXPECT_TRUE(dialog.CloseButton()->isDefault());
            EXPECT_FALSE(dialog.CancelButton()->isVisible());
            EXPECT_EQ(command.IsPortOpen(), 0);
            auto* const detail = dialog.findChild<QPlainTextEdit*>();
            EXPECT_FALSE(detail->isVisible());
            testing::ExpectNothingCut(dialog, dialog.size());
            QTest::mouseClick(dialog.DetailButton(), Qt::LeftButton);
            EXPECT_TRUE(detail->isVisible());
            QCoreApplication::processEvents();
            testing::ExpectNothingCut(dialog, dialog.size());
            EXPECT_TRUE(window.rect().contains(QRect(QPoint(), dialog.size())));
            EXPECT_TRUE(detail->toPlainText().contains(QString::fromUtf8(row.detail)))
                << detail->toPlainText().toStdString();
            QTest::keyClick(&dialog, Qt::Key_Return);
        };
        ConnectDlg dialog(command, 0, target, &window);
        EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
        EXPECT_TRUE(told);
    }
    QApplication::setFont(before);
}

TEST_F(ConnectDlgTest, SearchesTheRateOnlyWhenAsked)
{
    struct Row
    {
        const char* fault; ///< of the receiver; it talks at 9600
        bool offered;
        int text;                  ///< how it ends
        bool isBySettings = false; ///< which lead to the receiver, but not to its rate
    };
    const Row rows[] = {
        {"", true, text::kConnectRateKept, true},
        {"", true, text::kConnectRateNotKept},
        {"drop", true, text::kComSearchCancelled},
        {"nak", false, 0},
    };
    const TemporaryFolder home;
    SettingsRoots roots(testing::FoldersBelow(home.Path()));
    CCommand patient({.host = &host, .roots = &roots}); // a search waits 0.6 s for each answer
    target.settings.replyTimeout = 600ms;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        Scenario scenario;
        scenario.checksRate = row.offered;
        scenario.baudRate = 9600;
        if (*row.fault != '\0') {
            scenario.faults = {ParsedRule(row.fault)};
        }
        StartBy(SystemClock::Instance(), scenario);
        Surveyor surveyor({Cable()});
        std::vector<std::uint32_t> found;
        bool isOver = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            if (!dialog.CloseButton()->isVisible() || std::exchange(isOver, true)) {
                return;
            }
            EXPECT_EQ(dialog.SearchButton()->isVisible(), row.offered);
            EXPECT_TRUE(found.empty());
            if (!row.offered) {
                QTest::mouseClick(dialog.CloseButton(), Qt::LeftButton);
                return;
            }
            QTimer::singleShot(20ms, &dialog, [&dialog, &row] { // in the middle of the search
                EXPECT_NE(dialog.CloseButton()->isVisible(), dialog.CancelButton()->isVisible());
                if (row.text == text::kComSearchCancelled) {
                    QTest::mouseClick(dialog.CancelButton(), Qt::LeftButton);
                }
            });
            QTest::mouseClick(dialog.SearchButton(), Qt::LeftButton);
            EXPECT_EQ(dialog.accessibleDescription().toStdWString(), FormatText(row.text, 9600L));
            QTest::keyClick(&dialog, Qt::Key_Return);
        };
        HostReg(roots).WriteString(L"GPS\\Connect", L"Port", FromUtf8(receiver->PortPath()));
        ConnectDlg bySettings(patient, 0, &window);
        ConnectDlg byTarget(patient, 0, target, &window);
        byTarget.OfferSearch([&found](std::uint32_t rate) {
            found.push_back(rate);
            return 0; // it cannot be kept
        });
        EXPECT_EQ((row.isBySettings ? bySettings : byTarget).DoModal(), CConnect::NotConnected);
        EXPECT_TRUE(isOver);
        EXPECT_EQ(found.size(), row.text == text::kConnectRateNotKept ? 1U : 0U);
        EXPECT_EQ(LinkSettings(roots).baudRate, 9600U)
            << "what was found by the settings is stored";
        EXPECT_EQ(patient.IsPortOpen(), 0);
    }
}

TEST_F(ConnectDlgTest, CancelsInEachStep)
{
    struct Row
    {
        const char* fault; // keeps the step waiting
        int step;
        bool byEscape;
    };
    for (const Row& row : {Row{"drop", 1, false}, Row{"drop on 08 skip 1", 2, true},
                           Row{"drop on 4A", 3, false}, Row{"drop on 06", 4, true}}) {
        SCOPED_TRACE(row.fault);
        Start(row.fault);
        Surveyor surveyor({Cable()});
        bool cancelled = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            EXPECT_FALSE(dialog.CloseButton()->isVisible()) << "cancelling is no failure";
            if (!dialog.IsRunning(static_cast<ConnectStep>(row.step)) ||
                std::exchange(cancelled, true)) {
                return;
            }
            if (row.byEscape) {
                QTest::keyClick(&dialog, Qt::Key_Escape);
            } else {
                QTest::mouseClick(dialog.CancelButton(), Qt::LeftButton);
            }
        };
        ConnectDlg dialog(command, 0, target, &window);
        EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
        EXPECT_TRUE(cancelled);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        EXPECT_EQ(command.IsPortOpen(), 0);
    }
}

/// The system call that opens a port does not ask the host; what was clicked meanwhile waits.
TEST_F(ConnectDlgTest, ACancelWhileThePortOpensCounts)
{
    Start(testing::ShippedScenario("lark"));
    ConnectProgressDlg* shown = nullptr;
    const auto click = [&shown](QEvent::Type type) {
        QPushButton* const button = shown->CancelButton();
        const QPointF at = button->rect().center();
        QCoreApplication::postEvent(button, new QMouseEvent(type, at, button->mapToGlobal(at),
                                                            Qt::LeftButton, Qt::LeftButton, {}));
    };
    CCommand slow({&host, &clock, nullptr, [&] {
                       shown = qobject_cast<ConnectProgressDlg*>(QApplication::activeModalWidget());
                       if (shown != nullptr) {
                           click(QEvent::MouseButtonPress);
                           click(QEvent::MouseButtonRelease);
                       }
                       return std::make_unique<PosixSerialDevice>();
                   }});
    Surveyor surveyor({Cable()});
    ConnectDlg dialog(slow, 0, target, &window);
    EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
    EXPECT_NE(shown, nullptr);
    EXPECT_EQ(slow.Fault(), CommandFault::Cancelled);
    EXPECT_LE(receiver->RequestCount(), 1U);
}

/// Nothing but clicks on what says so may reset a receiver.
TEST_F(ConnectDlgTest, ForceInitNeedsTwoClicks)
{
    const std::wstring caption = Text(text::kForceInitCaption);
    const std::wstring question = Text(text::kForceInitQuestion);
    const std::wstring warning = Text(text::kForceInitSecondQuestion);
    const ExpectedBox yes{question, caption, text::kMessageIconQuestion, text::kButtonYes};
    const ExpectedBox enter{warning, caption, text::kMessageIconExclamation, 0};
    const ExpectedBox ok{warning, caption, text::kMessageIconExclamation};
    const ExpectedBox done{Text(text::kForceInitDone), L"", kInfo};
    Start(testing::ShippedScenario("lark"));
    for (const bool agrees : {false, true}) {
        SCOPED_TRACE(agrees);
        const Surveyor surveyor(agrees ? std::vector{Cable(), yes, ok, done}
                                       : std::vector{Cable(), yes, enter});
        const std::size_t before = receiver->RequestCount();
        RecvForceInitDlg dialog(command, target, &window);
        EXPECT_EQ(dialog.DoModal(), agrees ? CRecvForceInit::Done : CRecvForceInit::NotDone);
        EXPECT_EQ(receiver->RequestCount() - before, agrees ? 11U : 10U);
        EXPECT_EQ(command.IsPortOpen(), 0);
    }
}

TEST_F(ConnectDlgTest, StandsAThousandRandomEvents)
{
    Scenario scenario;
    scenario.faults = {ParsedRule("nak every 7"), ParsedRule("delay 5000 every 5")};
    Start(scenario);
    testing::RandomHands hands;
    const auto play = [&hands](QWidget& front) {
        if (hands.IsTired()) {
            front.close();
        } else {
            hands.Play(front, 1);
        }
    };
    const testing::Hand<> hand(play, 1);
    while (!hands.IsTired()) {
        {
            RecvForceInitDlg dialog(command, target, &window);
            dialog.DoModal();
            EXPECT_EQ(command.IsPortOpen(), 0);
        }
        ConnectDlg dialog(command, 0, target, &window);
        const int result = dialog.DoModal();
        EXPECT_EQ(command.IsPortOpen() == 1, result == CConnect::Connected);
        ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
        ASSERT_FALSE(command.IsBusy());
        command.ClosePort();
    }
}

} // namespace
} // namespace fieldcore
