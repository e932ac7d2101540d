#include "ui/link/ConnectDlg.h"

#include "core/link/ComPrmSet.h"
#include "core/link/Command.h"
#include "core/platform/FastClock.h"
#include "core/platform/PosixSerialDevice.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/link/Clicks.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/QtHost.h"
#include "ui/link/RecvForceInitDlg.h"

#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProgressBar>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using simulator::Scenario;
using simulator::Simulator;
using testing::ParsedRule;

constexpr int kInfo = text::kMessageIconInformation;
constexpr int kWarn = text::kMessageIconExclamation;
constexpr int kAsk = text::kMessageIconQuestion;

const std::vector<int> kCancelOk{text::kButtonCancel, text::kButtonOk};

ExpectedBox Cable(int click)
{
    return {L"ケーブルを接続してください", L"ケーブル接続確認", kInfo, kCancelOk, click};
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
        receiver = std::make_unique<Simulator>(scenario, time);
        std::string error;
        ASSERT_TRUE(receiver->Start(error)) << error;
        target.devicePath = receiver->PortPath();
    }
    void StartShipped(const std::string& name) { Start(testing::ShippedScenario(name)); }

    FastClock clock{100.0};
    QWidget window;
    QtHost host{{.isQ77 = false, .clock = &clock}};
    std::unique_ptr<Simulator> receiver;
    CCommand command{{nullptr, &clock, nullptr, nullptr}};
    ConnectTarget target;
};

TEST_F(ConnectDlgTest, AsksAndConnectsByClicks)
{
    const std::wstring lost = L"Bluetooth通信が行えません。\nBluetooth通信接続を復帰しますか？";
    const std::vector<int> cancelRetry{text::kButtonCancel, text::kButtonRetry};
    struct Row
    {
        const char* course;
        int port;
        int reconnect;
        ExpectedBox box;
        int result;
    };
    using enum CConnect::Result;
    const Row rows[] = {
        {"cable", 1, 0, Cable(text::kButtonOk), Connected},
        {"Enter goes on", 1, 1, Cable(0), Connected},
        {"no cable", 1, 0, Cable(text::kButtonCancel), NotConnected},
        {"Bluetooth given up",
         5,
         1,
         {lost, L"通信エラー検出", kAsk, cancelRetry, text::kButtonCancel},
         NotConnected},
    };
    StartShipped("lark");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        target.port = row.port;
        Surveyor surveyor;
        surveyor.boxes = {row.box};
        int mostDone = 0;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            mostDone = std::max(mostDone, dialog.findChild<QProgressBar*>()->value());
            EXPECT_EQ(window.findChild<BusyStrip*>(), nullptr) << "two Cancel buttons";
            EXPECT_EQ(dialog.findChild<BusyStrip*>(), nullptr) << "two Cancel buttons";
        };
        ConnectDlg dialog(command, row.reconnect, target, &window);
        EXPECT_EQ(dialog.DoModal(), row.result);
        EXPECT_EQ(command.IsPortOpen() == 1, row.result == Connected);
        EXPECT_EQ(mostDone > 2, row.result == Connected) << "nothing was seen of it";
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "the dialog is left behind";
        command.ClosePort();
    }
}

TEST_F(ConnectDlgTest, AFailureShowsStepCauseAndDetail)
{
    struct Row
    {
        const char* fault;
        const char* step;
        const char* cause;
        const char* detail;
    };
    const Row rows[] = {
        {"nak on 4A", "受信機の機能を確認しています", "受け付けませんでした", "0x4A"},
        {"wrong-type on 06 skip 1", "シリアル番号を確認しています", "予期しない応答", "0x06"},
        {"hang-up on 4A skip 3", "受信機の機能を確認しています", "切断されました", "link is gone"},
        {"", "通信ポートを開いています", "取り外されています", "no-such-port"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Scenario scenario;
        const std::string fault = row.fault;
        if (fault.empty()) {
            target.devicePath = "/dev/no-such-port";
        } else {
            scenario.faults = {ParsedRule(fault)};
            Start(scenario);
        }
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
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
            QTest::mouseClick(dialog.DetailButton(), Qt::LeftButton);
            EXPECT_TRUE(detail->isVisible());
            EXPECT_TRUE(detail->toPlainText().contains(QString::fromUtf8(row.detail)))
                << detail->toPlainText().toStdString();
            QTest::keyClick(&dialog, Qt::Key_Return);
        };
        ConnectDlg dialog(command, 0, target, &window);
        EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
        EXPECT_TRUE(told);
    }
}

TEST_F(ConnectDlgTest, SearchesTheRateOnlyWhenAsked)
{
    struct Row
    {
        const char* fault; ///< of the receiver; it talks at 9600
        bool offered;
        int kept; ///< answer of who stores the rate
        int text; ///< how it ends
    };
    const Row rows[] = {
        {"", true, 1, text::kConnectRateKept},
        {"", true, 0, text::kConnectRateNotKept},
        {"drop", true, 1, text::kComSearchCancelled},
        {"nak", false, 1, 0},
    };
    CCommand patient({&host, nullptr, nullptr, nullptr}); // a search waits 0.6 s for each answer
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
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
        std::vector<std::uint32_t> keptRates;
        bool searched = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            if (dialog.CloseButton()->isVisible() && !std::exchange(searched, true)) {
                EXPECT_EQ(dialog.SearchButton()->isVisible(), row.offered);
                EXPECT_TRUE(keptRates.empty());
                // The surveyor's own timer does not run while it is here.
                constexpr auto kSoon = 20ms;
                QTimer::singleShot(kSoon, &dialog, [&dialog, &row] {
                    if (!dialog.CancelButton()->isVisible()) {
                        return;
                    }
                    EXPECT_FALSE(dialog.CloseButton()->isVisible());
                    if (row.text == text::kComSearchCancelled) {
                        QTest::mouseClick(dialog.CancelButton(), Qt::LeftButton);
                    }
                });
                QTest::mouseClick(row.offered ? dialog.SearchButton() : dialog.CloseButton(),
                                  Qt::LeftButton);
                if (row.offered) {
                    EXPECT_EQ(dialog.accessibleDescription().toStdWString(),
                              FormatText(row.text, 9600L));
                    QTest::keyClick(&dialog, Qt::Key_Return);
                }
            }
        };
        ConnectDlg dialog(patient, 0, target, &window);
        dialog.OfferSearch([&](std::uint32_t rate) {
            keptRates.push_back(rate);
            return row.kept;
        });
        EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
        EXPECT_TRUE(searched);
        EXPECT_EQ(keptRates.size(), row.offered && row.text != text::kComSearchCancelled ? 1U : 0U);
        EXPECT_EQ(patient.IsPortOpen(), 0);
    }
}

/// Where the settings lead to the receiver but not to its rate, the rate that is found is stored.
TEST_F(ConnectDlgTest, OffersTheSearchWithThePortOfTheSettings)
{
    CCommand patient({&host, nullptr, nullptr, nullptr});
    Scenario scenario;
    scenario.checksRate = true;
    scenario.baudRate = 9600;
    StartBy(SystemClock::Instance(), scenario);
    const TemporaryFolder home;
    SettingsRoots roots(testing::FoldersBelow(home.Path()));
    HostReg(roots).WriteString(L"GPS\\Connect", L"Port", FromUtf8(receiver->PortPath()));
    for (const bool isKnown : {false, true}) {
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
        bool searched = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            if (dialog.CloseButton()->isVisible() && !std::exchange(searched, true)) {
                QTest::mouseClick(dialog.SearchButton(), Qt::LeftButton);
                QTest::keyClick(&dialog, Qt::Key_Return);
            }
        };
        ConnectDlg dialog(patient, 0, &window, roots);
        EXPECT_EQ(dialog.DoModal(), isKnown ? CConnect::Connected : CConnect::NotConnected);
        EXPECT_EQ(searched, !isKnown);
        EXPECT_EQ(LinkSettings(roots).baudRate, 9600U);
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
    for (const Row& row :
         {Row{"drop", 1, false}, Row{"drop on 08 skip 1", 2, true}, Row{"drop on 4A", 3, false},
          Row{"drop on 06", 4, true}, Row{"drop on 06 skip 3", 4, false}}) {
        SCOPED_TRACE(row.fault);
        Scenario scenario;
        scenario.faults = {ParsedRule(row.fault)};
        Start(scenario);
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
        bool cancelled = false;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            EXPECT_FALSE(dialog.CloseButton()->isVisible()) << "cancelling is no failure";
            const auto steps = receiver->RequestCount();
            const bool isHere = dialog.IsRunning(static_cast<ConnectStep>(row.step)) &&
                                (row.fault != std::string_view("drop on 06 skip 3") || steps == 10);
            if (!isHere || std::exchange(cancelled, true)) {
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
    StartShipped("lark");
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
    Surveyor surveyor;
    surveyor.boxes = {Cable(text::kButtonOk)};
    ConnectDlg dialog(slow, 0, target, &window);
    EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
    EXPECT_NE(shown, nullptr);
    EXPECT_EQ(slow.Fault(), CommandFault::Cancelled);
    EXPECT_LE(receiver->RequestCount(), 1U);
}

/// Nothing but clicks on what says so may reset a receiver.
TEST_F(ConnectDlgTest, ForceInitNeedsTwoClicks)
{
    const std::wstring caption = L"受信機強制初期化確認";
    const auto first = [&](int click) {
        return ExpectedBox{L"受信機設定を工場出荷状態へ戻しますか?",
                           caption,
                           kAsk,
                           {text::kButtonYes, text::kButtonNo},
                           click};
    };
    const auto second = [&](int click) {
        return ExpectedBox{
            L"本当に受信機設定を工場出荷状態へ戻してもよろしいですか？\n\n"
            L"受信機強制初期化を実行すると、受信機内にある暦データ等全て初期化されます。\n"
            L"再度GNSS観測を行う場合は、15分程度衛星を捕捉してください。",
            caption,
            kWarn,
            {text::kButtonOk, text::kButtonCancel},
            click};
    };
    const ExpectedBox done{
        L"受信機設定を工場出荷状態へ戻しました。", L"", kInfo, {text::kButtonOk}, text::kButtonOk};
    struct Row
    {
        const char* course;
        std::vector<ExpectedBox> boxes;
        int result;
    };
    const Row rows[] = {
        {"Enter at the first question", {first(0)}, CRecvForceInit::NotDone},
        {"Enter at the second", {first(text::kButtonYes), second(0)}, CRecvForceInit::NotDone},
        {"both clicked",
         {first(text::kButtonYes), second(text::kButtonOk), done},
         CRecvForceInit::Done},
    };
    StartShipped("lark");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
        surveyor.boxes.insert(surveyor.boxes.end(), row.boxes.begin(), row.boxes.end());
        const std::size_t before = receiver->RequestCount();
        RecvForceInitDlg dialog(command, target, &window);
        EXPECT_EQ(dialog.DoModal(), row.result);
        EXPECT_EQ(receiver->RequestCount() - before,
                  row.result == CRecvForceInit::Done ? 11U : 10U);
        EXPECT_EQ(command.IsPortOpen(), 0);
    }
}

TEST_F(ConnectDlgTest, CutsNothingOff)
{
    testing::InEveryLook([&](QSize size) {
        window.resize(size);
        Scenario scenario;
        scenario.faults = {ParsedRule("delay 20000 on 4A count 1"),
                           ParsedRule("hang-up on 06 skip 1")};
        Start(scenario);
        Surveyor surveyor;
        surveyor.boxes = {Cable(text::kButtonOk)};
        int seen = 0;
        surveyor.onProgress = [&](ConnectProgressDlg& dialog) {
            if (dialog.IsRunning(ConnectStep::ReadOptions) && seen == 0) {
                seen = 1;
                testing::ExpectNothingCut(dialog, dialog.size());
            } else if (dialog.CloseButton()->isVisible()) {
                ++seen;
                testing::ExpectNothingCut(dialog, dialog.size());
                QTest::keyClick(dialog.DetailButton(), Qt::Key_Space);
                QCoreApplication::processEvents();
                testing::ExpectNothingCut(dialog, dialog.size());
                EXPECT_TRUE(QRect(QPoint(), size).contains(QRect(QPoint(), dialog.size())));
                QTest::keyClick(&dialog, Qt::Key_Escape);
            }
        };
        ConnectDlg dialog(command, 0, target, &window);
        EXPECT_EQ(dialog.DoModal(), CConnect::NotConnected);
        EXPECT_EQ(seen, 2);
    });
}

TEST_F(ConnectDlgTest, StandsAThousandRandomEvents)
{
    Scenario scenario;
    scenario.faults = {ParsedRule("nak every 7"), ParsedRule("delay 5000 every 5")};
    Start(scenario);
    testing::RandomHands hands;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &tick, [&hands] {
        QWidget* const front = QApplication::activeModalWidget();
        if (front != nullptr && hands.IsTired()) {
            front->close();
        } else if (front != nullptr) {
            hands.Play(*front, 1);
        }
    });
    tick.start(1);
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
