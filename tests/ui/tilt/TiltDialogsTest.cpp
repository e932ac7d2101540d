// The dialogs of the tilt sensor in front of sensors that behave and sensors that do not.

#include "core/link/RecvInfo.h"
#include "core/settings/NotKept.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/link/Clicks.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TComboBox.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltCalibDlg.h"
#include "ui/tilt/TiltSensorDlg.h"
#include "ui/tilt/TiltStatusChk.h"
#include "ui/tilt/TiltStatusDlg.h"
#include "ui/tilt/TrackingDlg.h"

#include <QCheckBox>
#include <QLineEdit>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::SensorLine;
using testing::SensorWords;

class TiltTest : public ::testing::Test
{
protected:
    TiltTest()
    {
        line.command.SetHost(m_host);
        window.resize(480, 640);
        window.show();
        TiltSensorDlg::ForgetPlace();
        TiltSensorDlg::SetAntH(0.0);
    }
    ~TiltTest() override { TiltSensorDlg::ShutDown(); }

    template <typename Control>
    static Control* Find(const Dialog& dialog, int id)
    {
        return qobject_cast<Control*>(Dialog::FindControl(&dialog, id));
    }
    static QString Words(const Dialog& dialog, int id) { return Find<QLabel>(dialog, id)->text(); }
    static void Choose(CTComboBox* list, int place)
    {
        list->setFocus();
        while (list->currentIndex() != place) {
            QTest::keyClick(list, list->currentIndex() < place ? Qt::Key_Down : Qt::Key_Up);
        }
    }
    static void Click(const Dialog& dialog, int id)
    {
        QTest::mouseClick(Find<QWidget>(dialog, id), Qt::LeftButton);
    }
    /// A sensor that says that.
    void StartSensor(const SensorWords& words = {}, Clock::Duration timeout = 200s)
    {
        line.Say(words);
        line.StartSensor(std::chrono::duration_cast<std::chrono::milliseconds>(timeout));
    }
    /// A label that shows @p textId sooner or later.
    static void ExpectShown(const Dialog& dialog, int id, int textId)
    {
        const auto* const label = Find<QLabel>(dialog, id);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return label->isVisible() && label->text() == UiText(textId);
        })) << label->text().toStdString();
    }

    QtHost m_host{QtHost::Options{}};
    SensorLine line;
    QWidget window; ///< that the bubble stands over
};

TEST_F(TiltTest, TheBubbleFollowsAndIsThereOnce)
{
    SensorWords words;
    words.t2Rad = 0.01;
    StartSensor(words);
    EXPECT_EQ(TiltSensorDlg::IsShow(), 0);
    EXPECT_EQ(TiltSensorDlg::ShutDown(), 0);
    EXPECT_EQ(TiltSensorDlg::StartUp(&line.command, &window, &window), 1);
    TiltSensorDlg* const first = TiltSensorDlg::Instance();
    EXPECT_EQ(TiltSensorDlg::StartUp(&line.command, &window, &window), 1);
    EXPECT_EQ(TiltSensorDlg::Instance(), first);
    EXPECT_EQ(TiltSensorDlg::IsShow(), 1);
    EXPECT_EQ(first->size(), QSize(96, 96));
    EXPECT_EQ(first->frameGeometry().bottomRight(),
              window.mapToGlobal(window.rect().bottomRight()));
    EXPECT_TRUE(first->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(first->testAttribute(Qt::WA_ShowWithoutActivating));
    ASSERT_TRUE(QTest::qWaitFor([&] { return first->View()->Picture().x == 6; }));
    words.t2Rad = 1.0;
    line.Say(words);
    ASSERT_TRUE(QTest::qWaitFor([&] { return first->View()->Picture().x == 31; }));

    TiltSensorDlg::WindowHide(0);
    const std::size_t asked = line.SentCount();
    QTest::qWait(500);
    EXPECT_EQ(line.SentCount(), asked) << "a hidden bubble asks nothing";
    TiltSensorDlg::WindowHide(5);
    first->move(33, 44);
    QTest::keyClick(first, Qt::Key_Escape);
    EXPECT_FALSE(first->isVisible());
    EXPECT_EQ(TiltSensorDlg::Instance(), first) << "hidden, not destroyed";
    EXPECT_EQ(TiltSensorDlg::ShutDown(), 1);
    EXPECT_EQ(TiltSensorDlg::Instance(), nullptr);
    TiltSensorDlg::StartUp(&line.command, &window, &window);
    EXPECT_EQ(TiltSensorDlg::Instance()->pos(), QPoint(33, 44));
}

TEST_F(TiltTest, StartsAndStopsTheSensorAtTheReceiversPort)
{
    auto scenario = testing::ShippedScenario("tilted");
    scenario.port = 2;
    ASSERT_NO_FATAL_FAILURE(line.Start(scenario));
    const auto starts = [this] {
        return line.Sent(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 12, 34, 1, 0, 5});
    };
    const auto stops = [this] {
        return line.Sent(0x64, {0, 0, 0, 3, 0, 1, 0, 7, 5, 255, 1, 0, 0, 0});
    };
    for (int i = 1; i <= 2; ++i) { // shown again it is started again
        TiltSensorDlg::StartUp(&line.command, &window, &window);
        ASSERT_TRUE(QTest::qWaitFor([&] { return starts() == i; }));
        TiltSensorDlg::Instance()->Close(Dialog::kCancelled);
        ASSERT_TRUE(QTest::qWaitFor([&] { return stops() == i; }));
    }
    TiltSensorDlg::ShutDown();
    ASSERT_TRUE(QTest::qWaitFor([&] { return stops() == 3; }));
    TiltSensorDlg::StartUp(&line.command, &window, &window);
    TiltSensorDlg::ShutDown(); // at once: what is told outlives the window, and comes in its order
    ASSERT_TRUE(QTest::qWaitFor([&] { return stops() == 4; }));
    EXPECT_EQ(starts(), 3);
}

/// A silent sensor keeps neither the window waiting nor its end.
TEST_F(TiltTest, MayBeShutDownInTheMiddleOfAQuestion)
{
    SensorWords silent;
    silent.answers = false;
    StartSensor(silent, 10h);
    {
        TiltStatusDlg page(&line.command);
        page.show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return line.Sent(0xC8) > 0; }));
        EXPECT_FALSE(line.command.IsBusy()) << "the window's thread waits";
    }
    TiltSensorDlg::StartUp(&line.command, &window, &window);
    EXPECT_TRUE(TiltSensorDlg::Instance()->isVisible());
    TiltSensorDlg::ShutDown();
    TiltSensorDlg::StartUp(nullptr, &window, &window);
    TiltSensorDlg::ShutDown();
    TiltSensorDlg::WindowHide(0);
}

/// Torn down, it leaves word for the receiver; cancelled, it says so at once. A silent one holds up
/// neither.
TEST_F(TiltTest, ACalibrationIsCancelledWhateverTheReceiverDoes)
{
    for (const bool isSilent : {false, true}) {
        SCOPED_TRACE(isSilent);
        SensorWords words;
        words.calibration = 0x0A;
        words.answers = !isSilent;
        StartSensor(words, 10h);
        auto dialog = std::make_unique<TiltCalibDlg>(&line.command);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return line.Sent(0xC8, {1}) > 0; }));
        EXPECT_FALSE(line.command.IsBusy()) << "the window's thread waits";
        if (isSilent) {
            QCoreApplication::processEvents(); // it hears that it runs
            QTest::mouseClick(dialog->CancelButton(), Qt::LeftButton);
            EXPECT_EQ(dialog->findChild<QLabel*>()->text(), QStringLiteral("中止しています..."));
            EXPECT_FALSE(dialog->CancelButton()->isEnabled());
            EXPECT_TRUE(dialog->isVisible()) << "until the receiver has stopped";
            ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog->isVisible(); })) << "or ten seconds";
            EXPECT_TRUE(dialog->Result().isAborted);
        }
        dialog.reset();
        EXPECT_TRUE(isSilent || QTest::qWaitFor([&] { return line.Sent(0xC8, {5}) == 1; }));
    }
}

TEST_F(TiltTest, ShowsTheStatusAndKeepsTheSettings)
{
    StartSensor();
    TiltStatusDlg dialog(&line.command);
    dialog.show();
    ExpectShown(dialog, TiltStatusDlg::kStatus, text::kTiltCompleted);
    EXPECT_EQ(Words(dialog, TiltStatusDlg::kRemain), QStringLiteral("あと29日23時間0分0秒"));
    EXPECT_EQ(Words(dialog, TiltStatusDlg::kExpiry), QStringLiteral("30日0時間"));
    auto* const sensitivity = Find<CTComboBox>(dialog, TiltStatusDlg::kSensitivity);
    EXPECT_EQ(sensitivity->currentText(), QStringLiteral("40分"));
    Choose(sensitivity, 4);
    EXPECT_EQ(eBubbleConfig::GetBubbleSensitivity(), 8.0);
    Choose(Find<CTComboBox>(dialog, TiltStatusDlg::kSpeed), 0);
    EXPECT_EQ(line.Sent(0xC8, {10, 22}), 1);

    auto* const duration = Find<QLineEdit>(dialog, TiltStatusDlg::kDuration);
    duration->setFocus();
    duration->selectAll();
    QTest::keyClicks(duration, QStringLiteral("5"));
    QTest::keyClick(duration, Qt::Key_Return);
    EXPECT_EQ(duration->text(), QStringLiteral("1.000"));
    EXPECT_TRUE(dialog.isVisible()) << "Enter leaves the box, not the dialog";

    Click(dialog, TiltStatusDlg::kChange);
    auto* const expiry = Find<QLineEdit>(dialog, TiltStatusDlg::kExpiryEdit);
    EXPECT_TRUE(expiry->isVisible());
    EXPECT_EQ(expiry->selectedText(), QStringLiteral("720"));
    QTest::keyClicks(expiry, QStringLiteral("25"));
    QTest::keyClick(expiry, Qt::Key_Return);
    EXPECT_FALSE(expiry->isVisible());
    EXPECT_EQ(Words(dialog, TiltStatusDlg::kExpiry), QStringLiteral("1日1時間"));
    EXPECT_EQ(line.Sent(0xC8, {3, 0, 25}), 1);

    SensorWords expired;
    expired.calibration = 0x0C;
    line.Say(expired);
    ExpectShown(dialog, TiltStatusDlg::kStatus, text::kTiltExpired);
    expired.calibration = 0x0D; // a state that nobody knows
    line.Say(expired);
    ExpectShown(dialog, TiltStatusDlg::kStatus, text::kTiltNotCompleted);
    Click(dialog, TiltStatusDlg::kBubble);
    EXPECT_EQ(TiltSensorDlg::IsShow(), 1);
    dialog.Close(Dialog::kCancelled);
    EXPECT_EQ(TiltSensorDlg::IsShow(), 0) << "the bubble goes with it";
}

TEST_F(TiltTest, RunsACalibrationAndTellsHowItEnded)
{
    struct Row
    {
        const char* fault;
        unsigned end; // calibration byte when the run is over
        int status;
        bool isCancelled = false; // by a click
        bool isClosed = false;    // its window is
    };
    const Row rows[] = {
        {"done", 0x19, text::kTiltCompleted},
        {"failed", 0x08, text::kTiltFailed},
        {"cancelled", 0x08, text::kTiltAborted, true},
        {"closed while it runs", 0x08, text::kTiltAborted, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorWords words;
        words.calibration = 0x0A;
        words.percent = 40;
        StartSensor(words);
        TiltStatusDlg dialog(&line.command);
        dialog.show();
        const bool isEnded = row.isCancelled || row.isClosed; // before its time
        Surveyor surveyor({{Text(text::kTiltStart), L"チルト調整", text::kMessageIconQuestion}});
        bool wasSeen = false;
        surveyor.onOther = [&](QWidget& front) {
            auto* const run = qobject_cast<TiltCalibDlg*>(&front);
            if (run == nullptr || line.Sent(0xC8, {4}) == 0 || line.command.IsBusy()) {
                return;
            }
            const bool isFirst = !std::exchange(wasSeen, true);
            if (isFirst && row.isClosed) {
                EXPECT_FALSE(run->close()) << "not before the receiver has stopped";
            } else if (isFirst && row.isCancelled) {
                QTest::mouseClick(run->CancelButton(), Qt::LeftButton);
            }
            if (!isEnded || line.Sent(0xC8, {5}) > 0) { // it ends when it has been told
                words.calibration = row.end;
                line.Say(words);
            }
        };
        Click(dialog, TiltStatusDlg::kCalibrate);
        EXPECT_TRUE(wasSeen);
        ExpectShown(dialog, TiltStatusDlg::kStatus, row.status);
        // A busy machine may close the dialog first: then the receiver is told behind it.
        EXPECT_TRUE(QTest::qWaitFor([&] { return line.Sent(0xC8, {5}) == (isEnded ? 1 : 0); }));
    }
}

TEST_F(TiltTest, OffersACalibrationOnceAfterConnecting)
{
    SensorWords words;
    words.calibration = 0x08;
    StartSensor(words);
    Surveyor surveyor({{L"チルト調整がされていません。\n今すぐ調整を行いますか？", L"チルト調整",
                        text::kMessageIconQuestion, 0}}); // Enter agrees
    bool wasOpened = false;
    surveyor.onOther = [&wasOpened](QWidget& front) {
        if (auto* const opened = qobject_cast<TiltStatusDlg*>(&front)) {
            wasOpened = true;
            Choose(Find<CTComboBox>(*opened, TiltStatusDlg::kSensitivity), 4);
            opened->Close(Dialog::kCancelled);
        }
    };
    TiltStatusChk::SetCheckCalib(&line.command, true);
    TiltStatusChk::SttCheckCalib(&window, 7, 10);
    TiltStatusChk::SttCheckCalib(&window, 7, 10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return wasOpened; }));
    std::wstring stored;
    line.reg.ReadString(eBubbleConfig::GetKeyPrm(), L"Sensitivity", stored, L"");
    EXPECT_EQ(stored, L"8") << "in the settings of whoever has armed it";
    eBubbleConfig::SetBubbleSensitivity(40.0);
    TiltStatusChk::SttCheckCalib(&window, 7, 1);
    QTest::qWait(100);
    TiltStatusChk::SetCheckCalib(nullptr, false);
}

TEST_F(TiltTest, SendsSignalsOnOkOnly)
{
    auto scenario = testing::ShippedScenario("lark");
    scenario.options.galileo = false;
    for (const bool isLocked : {false, true}) {
        scenario.signalsLocked = isLocked;
        ASSERT_NO_FATAL_FAILURE(line.Start(scenario));
        {
            SetSignal dialog(&line.command);
            dialog.show();
            EXPECT_FALSE(line.command.IsBusy()) << "the window's thread waits";
            EXPECT_FALSE(dialog.OkButton()->isEnabled()) << "nobody has answered yet";
            ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.OkButton()->isEnabled(); }));
            EXPECT_EQ(dialog.Box(Signal::Galileo)->isEnabled(), false);
            EXPECT_EQ(dialog.Box(Signal::Qzss)->isEnabled(), !isLocked);
            EXPECT_EQ(dialog.Box(Signal::Qzss)->isChecked(), isLocked) << "kept by the run before";
            QTest::mouseClick(dialog.Box(Signal::Qzss), Qt::LeftButton, {}, QPoint(10, 22));
            dialog.Close(Dialog::kCancelled);
        }
        EXPECT_EQ(line.Sent(0x53), 0);
        SetSignal dialog(&line.command);
        dialog.show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.OkButton()->isEnabled(); }));
        QTest::mouseClick(dialog.Box(Signal::Qzss), Qt::LeftButton, {}, QPoint(10, 22));
        QTest::mouseClick(dialog.OkButton(), Qt::LeftButton);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(line.Sent(0x53, {0x0E, 0, 0, 0, 0x84}), isLocked ? 0 : 1);
    }
}

TEST_F(TiltTest, KeepsTrackingParametersOfEachSurvey)
{
    {
        TrackingDlg dialog(&line.command);
        dialog.show();
        Choose(Find<CTComboBox>(dialog, TrackingDlg::kSurvey), 3);
        dialog.findChild<QCheckBox*>()->setChecked(true);
        dialog.Close(Dialog::kOk);
    }
    {
        TrackingDlg dialog(&line.command);
        dialog.show();
        auto* const survey = Find<CTComboBox>(dialog, TrackingDlg::kSurvey);
        EXPECT_EQ(survey->currentIndex(), 3) << "the one that is run";
        EXPECT_TRUE(dialog.findChild<QCheckBox*>()->isChecked());
        Choose(survey, 0);
        EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isChecked()) << "another survey";
    }
    // The signals are those that are chosen for the receiver.
    ASSERT_NO_FATAL_FAILURE(line.Start(testing::ShippedScenario("lark")));
    CRecvInfo info;
    ASSERT_EQ(info.GetOptionData(line.command), 1);
    line.command.Hear([&](Receiver& known) { known.identity = info.Known(); });
    SignalSet chosen;
    chosen.Set(Signal::Qzss, true);
    chosen.Set(Signal::L5, true);
    ASSERT_EQ(SaveSignals(line.reg, info.GetRecvTypeNum(), chosen), 1);
    TrackingDlg dialog(&line.command);
    dialog.show();
    EXPECT_EQ(Words(dialog, TrackingDlg::kSignals), QStringLiteral("QZSS L5"));
}

TEST_F(TiltTest, SaysWhyThereIsNoReading)
{
    struct Row
    {
        const char* fault;
        bool hasPort;
        bool answers;
        unsigned status;
        int notice;
        int bubble;
        bool mayCalibrate;
    };
    const Row rows[] = {
        {"no receiver", false, true, 0x41, text::kTiltNoReceiver, text::kBubbleStale, false},
        {"no sensor", true, true, 0x00, text::kTiltNoSensor, text::kBubbleNoSensor, false},
        {"a silent one", true, false, 0x41, text::kTiltSilent, text::kBubbleStale, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorWords words;
        words.answers = row.answers;
        words.status = row.status;
        StartSensor(words, 10s);
        if (!row.hasPort) {
            line.command.ClosePort();
        }
        TiltStatusDlg dialog(&line.command);
        dialog.show();
        EXPECT_FALSE(line.command.IsBusy()) << "the window's thread waits";
        ExpectShown(dialog, TiltStatusDlg::kNotice, row.notice);
        EXPECT_FALSE(Find<QLabel>(dialog, TiltStatusDlg::kStatus)->isVisible());
        EXPECT_EQ(Find<QPushButton>(dialog, TiltStatusDlg::kCalibrate)->isEnabled(),
                  row.mayCalibrate);
        TiltSensorDlg::StartUp(&line.command, &dialog, &dialog);
        const BubbleView* const bubble = TiltSensorDlg::Instance()->View();
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return bubble->accessibleDescription() == UiText(row.bubble); }));
        if (row.hasPort) { // it is asked on
            line.Say(SensorWords());
            ExpectShown(dialog, TiltStatusDlg::kStatus, text::kTiltCompleted);
            EXPECT_TRUE(Find<QPushButton>(dialog, TiltStatusDlg::kCalibrate)->isEnabled());
        }
        dialog.Close(Dialog::kCancelled);
    }
}

TEST_F(TiltTest, TheBubbleIsLargeOnRequestAndCoversNoButton)
{
    SensorWords words;
    words.tiltRad = words.t2Rad = 0.01;
    StartSensor(words);
    TiltSensorDlg::SetAntH(1.8);
    TiltStatusDlg page(&line.command);
    page.resize(480, 640);
    page.show();
    Click(page, TiltStatusDlg::kBubble);
    TiltSensorDlg* const bubble = TiltSensorDlg::Instance();
    ASSERT_NE(bubble, nullptr);
    for (const bool isAgain : {false, true}) { // over a button it does not come back
        const auto buttons = page.findChildren<QPushButton*>();
        if (isAgain) {
            TiltSensorDlg::WindowHide(0);
            bubble->move(buttons.first()->mapToGlobal(QPoint()));
            TiltSensorDlg::StartUp(&line.command, &page, &page);
        }
        EXPECT_EQ(bubble->size(), QSize(96, 96));
        for (const QPushButton* button : buttons) {
            const QRect place(button->mapToGlobal(QPoint()), button->size());
            EXPECT_FALSE(button->isVisible() && place.intersects(bubble->geometry()))
                << button->text().toStdString();
        }
    }
    const QRect small = bubble->geometry();
    auto* const numbers = bubble->findChild<QLabel*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return bubble->windowTitle() == numbers->text(); }));
    EXPECT_EQ(numbers->text(), QStringLiteral("0.57 °   18 mm"));
    EXPECT_FALSE(numbers->isVisible());
    QTest::mouseClick(bubble->View(), Qt::LeftButton);
    EXPECT_TRUE(numbers->isVisible());
    EXPECT_GE(bubble->View()->width(), 200);
    QTest::mouseClick(bubble->View(), Qt::LeftButton);
    EXPECT_EQ(bubble->geometry(), small);

    // In front of a page that takes all input it can still be used.
    TiltSensorDlg::ShutDown();
    TiltSensorDlg::StartUp(&line.command, &window, &window);
    Dialog modal(&window);
    QTimer::singleShot(0, &modal, [&] {
        QWindow* const handle = TiltSensorDlg::Instance()->windowHandle();
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return handle->transientParent() == modal.windowHandle(); }));
        QTest::mouseClick(handle, Qt::LeftButton, {}, QPoint(48, 48));
        EXPECT_TRUE(QTest::qWaitFor([] { return TiltSensorDlg::Instance()->IsLarge(); }));
        modal.Close(Dialog::kOk);
    });
    EXPECT_EQ(modal.DoModal(), Dialog::kOk);
    EXPECT_TRUE(TiltSensorDlg::Instance()->isVisible()) << "it stays";
}

TEST_F(TiltTest, TellsOnceWhatCouldNotBeStored)
{
    testing::BoxKeepingHost host;
    line.command.SetHost(host);
    TiltSettings settings(&line.command);
    settings.ChooseSensitivity(0);
    EXPECT_TRUE(host.boxes.empty());
    {
        SettingsRoots others{testing::FoldersBelow(line.folder.Path())};
        SettingsBatch keeps(HostReg(others).Store()); // as another program would
        ASSERT_TRUE(keeps.IsOpen());
        settings.ChooseSensitivity(1);
        ASSERT_EQ(host.boxes.size(), 1U);
        EXPECT_EQ(host.boxes[0].text, FormatText(text::kNotKept, Text(text::kNotKeptBubble),
                                                 Text(text::kNotKeptInUse)));
        EXPECT_EQ(KeptOrTold(0, text::kNotKeptBubble, host, line.reg), 0);
        EXPECT_EQ(host.boxes.size(), 1U) << "told already";
        TellNotKept(text::kTrackingTitle, host, line.reg);
        EXPECT_EQ(host.boxes.size(), 2U) << "what the user has asked for is told each time";
    }
    settings.ChooseSensitivity(2);
    EXPECT_EQ(KeptOrTold(0, text::kNotKeptBubble, host, line.reg), 0);
    EXPECT_EQ(host.boxes.size(), 3U) << "it had been stored in between";
    line.command.SetHost(m_host);
}

/// The bubble among them, which is there once and comes back where it was.
TEST_F(TiltTest, TheBubbleStandsAThousandEvents)
{
    testing::SensorLine pole(1.0);
    ASSERT_NO_FATAL_FAILURE(pole.Start(testing::ShippedScenario("swaying-pole")));
    testing::RandomHands hands;
    while (!hands.IsTired()) {
        TiltSensorDlg::SetAntH(hands.Below(4) - 1.0);
        ASSERT_EQ(TiltSensorDlg::StartUp(&pole.command, &window, &window), 1);
        hands.Play(*TiltSensorDlg::Instance(), 100);
        TiltSensorDlg::WindowHide(hands.Below(2));
        if (hands.Below(3) == 0) {
            EXPECT_EQ(TiltSensorDlg::ShutDown(), 1);
            EXPECT_EQ(TiltSensorDlg::ShutDown(), 0);
        }
    }
    TiltSensorDlg::StartUp(&pole.command, &window, &window);
    EXPECT_TRUE(QTest::qWaitFor(
        [] { return TiltSensorDlg::Instance()->View()->Picture().showBubble; }, 60000))
        << "it follows the pole no more";
    TiltSensorDlg::ShutDown(); // before its line
}

TEST_F(TiltTest, TheDialogsCutNothingOffAndStandRandomHands)
{
    ASSERT_NO_FATAL_FAILURE(line.Start(testing::ShippedScenario("tilted")));
    testing::TryScreen([&] { return std::make_unique<SetSignal>(&line.command); });
    testing::TryScreen([&] { return std::make_unique<TiltStatusDlg>(&line.command); });
    testing::TryScreen([&] { return std::make_unique<TiltCalibDlg>(&line.command); });
    testing::TryScreen([&] { return std::make_unique<TrackingDlg>(&line.command); });
    EXPECT_GE(eBubbleConfig::GetBubbleDuration(), 0.001);
    EXPECT_LE(eBubbleConfig::GetBubbleExpiry(), 30000);
}

} // namespace
} // namespace fieldcore
