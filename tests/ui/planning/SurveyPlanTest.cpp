#include "ui/planning/SurveyPlan.h"

#include "core/planning/AlmanacFile.h"
#include "core/platform/SettingsStore.h"
#include "simulator/Simulator.h"
#include "tests/support/ProofSize.h"
#include "tests/ui/controls/NothingCut.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/controls/BarButton.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/StepButton.h"
#include "ui/controls/Theme.h"
#include "ui/planning/PlanGraphView.h"

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSlider>

#include <algorithm>
#include <random>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Click;
using testing::ExpectNothingCut;
using testing::Next;
using testing::PlanScreen;

class SurveyPlanTest : public PlanScreen
{
protected:
    [[nodiscard]] CnMenuBar* Menu() const { return Find<CnMenuBar>(21201); }
    [[nodiscard]] QString TextOf(int labelId) const { return Find<QLabel>(labelId)->text(); }
    /// Presses the plus or minus button of a spin and lets it go.
    void Step(int spinId, bool up)
    {
        const auto buttons = Find<LabelSpin>(spinId)->findChildren<StepButton*>();
        ASSERT_EQ(buttons.size(), 2);
        QTest::mouseClick(buttons[up ? 1 : 0], Qt::LeftButton);
    }
    void Choose(int item) const
    {
        const bool isGraph = item <= 21907;
        for (BarButton* const button : Menu()->findChildren<BarButton*>()) {
            if (button->accessibleDescription() ==
                (isGraph ? QLatin1String("F2") : QLatin1String("F1"))) {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        QMenu* const menu = Menu()->Popup(isGraph ? 1 : 0);
        ASSERT_TRUE(menu->isVisible());
        const QString text = UiText(item);
        for (QAction* const action : menu->actions()) {
            if (action->text() == text) {
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
        }
        FAIL() << item;
    }
    void Connect(const char* scenarioText)
    {
        std::string error;
        const auto scenario = simulator::ParseScenario(scenarioText, error);
        ASSERT_TRUE(scenario) << error;
        receiver = std::make_unique<simulator::Simulator>(*scenario);
        ASSERT_TRUE(receiver->Start(error)) << error;
        PortSettings settings;
        settings.replyTimeout = 10s;
        ASSERT_EQ(command->OpenPort(receiver->PortPath(), settings), 1) << command->LastError();
    }

    std::unique_ptr<simulator::Simulator> receiver;
};

TEST_F(SurveyPlanTest, OpensWithWhatANewUserHas)
{
    Show();
    EXPECT_TRUE(host.notes.empty());
    EXPECT_EQ(TextOf(21374), QStringLiteral("09:00"));
    EXPECT_EQ(TextOf(21376), QStringLiteral("11:00"));
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/11/20")) << "today in UTC";
    EXPECT_EQ(TextOf(21380), QStringLiteral("2026/11/19"));
    EXPECT_EQ(plan->GetElMaskData(), 15);
    EXPECT_EQ(plan->GetPositionStr(), L"東京都千代田区");
    EXPECT_EQ(plan->GetIntervalData(), 10);
    EXPECT_EQ(plan->Session().Plan().Division(), 12);
    EXPECT_TRUE(Menu()->IsItemChecked(21901));
    const QImage picture = Find(21373)->grab().toImage();
    EXPECT_EQ(picture.pixelColor(4, picture.height() - 5), QColor(255, 255, 150));
}

TEST_F(SurveyPlanTest, TellsWhichDayAndWhichAlmanacItIs)
{
    const auto isSaid = [this](const char* text) {
        const QList<QLabel*> labels = plan->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [text](const QLabel* label) {
            return label->isVisible() && label->text() == QString::fromUtf8(text);
        });
    };
    Show(); // on the day of UTC; Japan has the next one
    EXPECT_TRUE(isSaid("金曜日（昨日）") && isSaid("今日の2日前、観測日の1日前") &&
                isSaid("公称軌道暦（見本）"));
    KeepPicture(*plan, QStringLiteral("plan-yesterday"));
    Click(*plan, text::kPlanToday);
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/11/21"));
    EXPECT_TRUE(isSaid("土曜日（今日）") && isSaid("今日の2日前"));
    Click(*plan, text::kPlanNextDay);
    EXPECT_TRUE(isSaid("日曜日（明日）") && isSaid("今日の2日前、観測日の3日前"));
    clock.time += std::chrono::hours(16); // midnight has passed in Japan
    plan->OnTimer(257);
    EXPECT_TRUE(isSaid("日曜日（今日）") && isSaid("今日の3日前"));
    plan->SetSystemTime(2026y / 11 / 19);
    plan->DrawResults();
    EXPECT_TRUE(isSaid("木曜日") && isSaid("今日の3日前、観測日と同じ日"));
}

TEST_F(SurveyPlanTest, JudgesTheAlmanacByTheStartThatIsDrawn)
{
    clock.time += std::chrono::days(29); // at 9 o'clock 29.3 days behind the almanac
    Show();
    EXPECT_TRUE(host.notes.empty());
    const auto isUrged = [this] {
        const QList<QLabel*> labels = plan->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
            return label->text().endsWith(QStringLiteral("要更新"));
        });
    };
    EXPECT_FALSE(isUrged());
    Click(*plan, text::kPlanNextDay); // 30.3 days
    EXPECT_TRUE(isUrged());
    // The reference time is 16:38 in UTC, and a start at 0 o'clock 15:00 the day before: 29.9 days.
    QTest::keyClick(Find(21375), Qt::Key_Home);
    plan->OnTimer(256);
    EXPECT_FALSE(isUrged()) << "one drawing behind";
}

TEST_F(SurveyPlanTest, HasTheMenusToTheLetter)
{
    Show();
    const auto items = [&](int popup) {
        QStringList all;
        for (const QAction* const item : Menu()->Popup(popup)->actions()) {
            all += item->isSeparator() ? QStringLiteral("-") : item->text();
        }
        return all.join(QLatin1Char(' ')).toStdString();
    };
    EXPECT_EQ(UiText(text::kPlanMenuSettings), QStringLiteral(" 設  定 "));
    EXPECT_EQ(UiText(text::kPlanMenuGraph), QStringLiteral(" グラフ "));
    EXPECT_EQ(items(0), "詳細設定 カーテン設定 - 軌道暦更新");
    EXPECT_EQ(items(1), "衛星数 - 方位角 高度角 - スカイプロット - PDOP GDOP TDOP");
    EXPECT_EQ(items(2), "日を探す 同時観測 - 読込");
    constexpr std::array kTypes{0, 2, 3, 1, 4, 5, 6};
    for (int item = 21901; item <= 21907; ++item) {
        SCOPED_TRACE(item);
        Choose(item);
        const int type = kTypes[static_cast<std::size_t>(item - 21901)];
        EXPECT_EQ(plan->Session().Settings().drawType, type);
        EXPECT_EQ(Find<PlanGraphView>(21373)->Drawing().graph, static_cast<PlanGraph>(type));
        EXPECT_EQ(CSurveyPlan::GetMenuID(type), item);
        for (int other = 21901; other <= 21907; ++other) {
            EXPECT_EQ(Menu()->IsItemChecked(other), other == item);
        }
    }
    EXPECT_EQ(CSurveyPlan::GetMenuID(9), 21901);
}

TEST_F(SurveyPlanTest, MovesTheSpinsByTheirRules)
{
    Show();
    Step(21375, true);
    EXPECT_EQ(TextOf(21374) + TextOf(21376), QStringLiteral("10:0012:00")) << "the end moves along";
    Step(21377, false);
    Step(21377, false); // onto the start: goes behind it, and the period keeps its length
    EXPECT_EQ(TextOf(21376), QStringLiteral("11:00"));
    EXPECT_EQ(plan->GetDispTimeData(), 1);
    QTest::keyClick(Find(21375), Qt::Key_End);
    EXPECT_EQ(TextOf(21374) + TextOf(21376), QStringLiteral("23:0024:00"));
    Step(21377, true);
    EXPECT_EQ(TextOf(21376), QStringLiteral("24:00"));
    QTest::keyClick(Find(21375), Qt::Key_Home);
    QTest::keyClick(Find(21377), Qt::Key_End);
    EXPECT_EQ(plan->GetDispTimeData(), 24);
    QTest::keyClick(Find(21375), Qt::Key_End);
    EXPECT_EQ(plan->GetDispTimeData(), 1) << "a jump led beyond midnight";
}

TEST_F(SurveyPlanTest, RedrawsASecondAfterTheScrollsEnd)
{
    Show();
    const PlanPeriod& shown = plan->Session().Plan().Computed();
    int id = 0;
    const auto left = [&] { // milliseconds of the refresh timer, 0 without one
        int found = 0;
        for (const auto& timer :
             QAbstractEventDispatcher::instance()->registeredTimers(plan.get())) {
            const bool isRefresh = timer.interval >= 900 && timer.interval < 60'000;
            EXPECT_TRUE(!isRefresh || timer.timerType == Qt::PreciseTimer) << "may be early";
            found = isRefresh ? timer.interval : found;
            id = isRefresh ? timer.timerId : id;
        }
        return found;
    };
    LabelSpin* const start = Find<LabelSpin>(21375);
    start->setFocus();
    QTest::keyPress(start, Qt::Key_Right);
    EXPECT_FALSE(plan->IsTimerRunning(256)) << "before the end of the scroll";
    QTest::keyRelease(start, Qt::Key_Right);
    EXPECT_TRUE(plan->IsTimerRunning(256));
    EXPECT_EQ(left(), 1000);
    // The second begins with the last end of a scroll: only then can more be left than before.
    bool isLonger = false;
    for (int attempt = 0; attempt < 50 && !isLonger; ++attempt) {
        QTest::qWait(50);
        const auto remaining = [&] {
            return left() == 0 ? 0 : QAbstractEventDispatcher::instance()->remainingTime(id);
        };
        const int before = remaining();
        Q_EMIT start->ScrollEnded();
        isLonger = before > 0 && remaining() > before;
    }
    EXPECT_TRUE(isLonger);
    QTest::keyPress(start, Qt::Key_Right);
    EXPECT_FALSE(plan->IsTimerRunning(256)) << "moving on calls the redrawing off";
    QTest::keyRelease(start, Qt::Key_Right);
    EXPECT_LT(shown.startHour, 11);
    plan->OnTimer(256);
    EXPECT_FALSE(plan->IsTimerRunning(256));
    EXPECT_EQ(shown.startHour, 11);
    Step(21375, true);
    EXPECT_TRUE(plan->IsTimerRunning(256));
    plan->Close(Dialog::kCancelled);
    EXPECT_FALSE(plan->IsTimerRunning(256));
}

TEST_F(SurveyPlanTest, RemembersItsSettings)
{
    Show();
    Choose(21906);
    Step(21375, true);
    plan->SetElMaskData(20);
    plan->SetListCoordData(1);
    plan->SetPositionData(27);
    plan->SetPositionStr(L"大阪府大阪市");
    plan->SetPositionID(3);
    plan->Close(Dialog::kCancelled);
    Show();
    EXPECT_EQ(plan->Session().Settings(), (PlanSettings{20, 10, 2, 5, 1, 27, L"大阪府大阪市", 3}));
    EXPECT_TRUE(Menu()->IsItemChecked(21906));
    EXPECT_NEAR(plan->Session().Site().latitudeRad, 0.60539, 1e-4) << "34.69 degrees: Osaka";
}

TEST_F(SurveyPlanTest, TellsOfAnOldAlmanacAndKeepsItInSight)
{
    clock.time += std::chrono::days(40);
    Show();
    ASSERT_EQ(host.notes.size(), 1U);
    EXPECT_EQ(host.notes[0].text,
              L"観測日より30日以上古い軌道暦を使用しています軌道暦を更新して下さい\n");
    EXPECT_EQ(host.notes[0].caption, L"軌道暦エラー");
    EXPECT_EQ(host.notes[0].icon, BoxIcon::Exclamation);
    EXPECT_EQ(plan->Session().Plan().Division(), 12) << "it is used all the same";
    KeepPicture(*plan, QStringLiteral("plan-old"));
    Click(*plan, text::kPlanNextDay);
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/12/31"));
    Click(*plan, text::kPlanPreviousDay);
    Click(*plan, text::kPlanPreviousDay);
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/12/29"));
    EXPECT_EQ(plan->Session().Plan().Computed().date, plan->GetSystemTime());
}

TEST_F(SurveyPlanTest, GoesOnWithoutAnAlmanacAndTakesOneLater)
{
    std::filesystem::remove(AlmanacPath(home.Path()));
    home.Write("CurTain.obs", std::string(360, 30));
    Connect("almanacs 31\nstart 2026-11-20 00:00:00");
    Show();
    ASSERT_EQ(host.notes.size(), 1U);
    EXPECT_EQ(host.notes[0].text, L"ファイル読み込みに失敗しました。");
    EXPECT_EQ(host.notes[0].caption, L"ファイルエラー");
    EXPECT_EQ(host.notes[0].icon, BoxIcon::Stop);
    EXPECT_EQ(TextOf(21380), QStringLiteral("--"));
    EXPECT_EQ(plan->GetSurveyPlanCalc()->GetCurtain()[0], 0) << "the later steps were not left out";
    KeepPicture(*plan, QStringLiteral("plan-none"));
    Choose(21912);
    ASSERT_EQ(host.notes.size(), 2U);
    EXPECT_EQ(host.notes[1].text, L"軌道暦を更新しました");
    EXPECT_EQ(host.notes[1].caption, L"軌道暦更新");
    EXPECT_EQ(host.notes[1].icon, BoxIcon::Information);
    EXPECT_EQ(plan->GetSurveyPlanCalc()->GetCurtain()[0], 30);
    EXPECT_EQ(plan->Session().Plan().Division(), 12);
    EXPECT_NE(TextOf(21380), QStringLiteral("--"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor stayed";
}

TEST_F(SurveyPlanTest, LeavesTheAlmanacWhereAnUpdateFails)
{
    Show();
    host.answer = BoxAnswer::Cancel; // to the question before connecting
    Choose(21912);
    ASSERT_EQ(host.notes.size(), 1U);
    host.answer = BoxAnswer::Ok;
    host.notes.clear();
    Connect("almanacs 4");
    host.cancelAt = host.breaths + 3;
    Choose(21912);
    EXPECT_TRUE(host.notes.empty()) << "the user knows that he has cancelled";
    Choose(21912);
    ASSERT_EQ(host.notes.size(), 1U);
    EXPECT_EQ(host.notes[0].caption, L"軌道暦更新エラー");
    EXPECT_EQ(
        host.notes[0].text,
        L"軌道暦データ数が4以下です。受信機へアンテナを接続し、衛星捕捉を15分以上行ってから再度"
        L"暦データを取得してください。");
    EXPECT_EQ(host.notes[0].icon, BoxIcon::Stop);
    EXPECT_EQ(TextOf(21380), QStringLiteral("2026/11/19"));
}

TEST_F(SurveyPlanTest, SaysHowFarAnUpdateCameThatBrokeOff)
{
    Show();
    Connect("almanacs 31\nfault hang-up reply 0 back 10000 on 54 skip 12 count 1");
    Choose(21912);
    ASSERT_EQ(host.notes.size(), 2U);
    EXPECT_EQ(host.notes[0].text, L"軌道暦を更新しました");
    EXPECT_TRUE(host.notes[1].text.starts_with(L"32衛星のうち12衛星の軌道暦だけを受信しました。"));
    EXPECT_NE(host.notes[1].text.find(CauseText(CommandFault::LinkLost)), std::wstring::npos);
    EXPECT_EQ(host.notes[1].icon, BoxIcon::Exclamation);
}

TEST_F(SurveyPlanTest, TellsThatItsSettingsCouldNotBeStored)
{
    Show();
    {
        const SettingsBatch other(HostReg(roots).Store()); // whose writer has not finished
        plan->Close(Dialog::kCancelled);
    }
    ASSERT_EQ(host.notes.size(), 1U);
    EXPECT_TRUE(host.notes[0].text.starts_with(Text(text::kPlanNotKept))) << "what it is, then why";
    EXPECT_EQ(host.notes[0].icon, BoxIcon::Stop);
}

TEST_F(SurveyPlanTest, KeepsTheSlipOfAMissingSite)
{
    std::filesystem::remove(SitesPath(home.Path()));
    Show();
    EXPECT_TRUE(host.notes.empty());
    EXPECT_EQ(plan->Session().Site().latitudeRad, 50.0);
    EXPECT_EQ(plan->Session().Site().heightM, 70.0);
    const auto isTold = [this] {
        const QList<QLabel*> labels = plan->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
            return label->isVisible() && label->text() == UiText(text::kPlanSiteMissing);
        });
    };
    EXPECT_TRUE(isTold());
    KeepPicture(*plan, QStringLiteral("plan-no-site"));
    InstallSampleSites(home.Path());
    Show();
    EXPECT_FALSE(isTold());
}

TEST_F(SurveyPlanTest, AsksHowToEndTheProgram)
{
    struct Row
    {
        int loadWay;
        int button; // 0: is not asked
        bool closes;
        bool portStaysOpen;
    };
    const Row rows[] = {
        {0, 0, true, true},
        {1, text::kButtonCancel, false, true},
        {1, text::kEndProgram, true, false},
        {1, text::kEndProgramPowerOff, true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.button);
        Connect("almanacs 31");
        Show(row.loadWay);
        bool asked = false;
        bool switchedOff = false;
        command->SetLineObserver([&](Direction, LineUnit, std::span<const std::uint8_t> frame) {
            switchedOff = switchedOff || (frame.size() > 2 && frame[2] == 0x84);
        });
        if (row.button != 0) {
            Next(*plan, [&](QWidget& question) {
                asked = qobject_cast<CPrgEndMes*>(&question) != nullptr;
                Click(question, row.button);
            });
        }
        QTest::keyClick(plan.get(), Qt::Key_Escape);
        EXPECT_EQ(asked, row.button != 0);
        EXPECT_EQ(!plan->isVisible(), row.closes);
        EXPECT_EQ(command->IsPortOpen() != 0, row.portStaysOpen);
        EXPECT_EQ(switchedOff, row.button == text::kEndProgramPowerOff);
        command->ClosePort();
    }
}

TEST_F(SurveyPlanTest, SavesThePlanAndTellsWhere)
{
    Show();
    for (const int kind :
         {text::kPlanExportPdf, text::kPlanExportPng, text::kPlanExportSvg, text::kPlanExportCsv}) {
        Next(*plan, [&](QWidget& popup) {
            auto& menu = dynamic_cast<QMenu&>(popup);
            for (QAction* const action : menu.actions()) {
                if (action->text() == UiText(kind)) {
                    menu.setActiveAction(action);
                }
            }
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        Click(*plan, text::kPlanExport);
    }
    ASSERT_EQ(host.notes.size(), 4U);
    for (const char* const ending : {"pdf", "png", "svg", "csv"}) {
        EXPECT_TRUE(std::filesystem::exists(home.Path() / "documents" /
                                            (std::string("観測計画_20261120.") + ending)))
            << ending;
    }
    EXPECT_EQ(host.notes[0].icon, BoxIcon::Information);
}

TEST_F(SurveyPlanTest, DragsTheMaskAndMovesTheSatellites)
{
    Show();
    Choose(21904);
    auto* const graph = Find<PlanGraphView>(21373);
    graph->setFocus();
    QTest::keyClick(graph, Qt::Key_Plus);
    EXPECT_EQ(plan->GetElMaskData(), 16);
    EXPECT_NEAR(plan->GetSurveyPlanCalc()->GetElMask(), 16.0 / 180.0 * 3.14159265, 1e-6);
    QTest::keyClick(graph, Qt::Key_Plus);
    const QString undo = QStringLiteral("マスクを15°に戻す");
    const auto buttons = plan->findChildren<QPushButton*>();
    const auto found = std::find_if(buttons.begin(), buttons.end(), [&](const QPushButton* button) {
        return button->isVisible() && button->text() == undo;
    });
    ASSERT_NE(found, buttons.end());
    KeepPicture(*plan, QStringLiteral("plan-mask"));
    QTest::mouseClick(*found, Qt::LeftButton);
    EXPECT_EQ(plan->GetElMaskData(), 15);
    EXPECT_EQ(graph->Drawing().maskDeg, 15);
    EXPECT_FALSE((*found)->isVisible());
    auto* const time = plan->findChild<QSlider*>();
    ASSERT_TRUE(time->isVisible());
    QTest::keyClick(time, Qt::Key_End);
    EXPECT_EQ(graph->Drawing().minutes, 120.0);
    Choose(21901);
    EXPECT_FALSE(time->isVisible());
}

TEST_F(SurveyPlanTest, CutsNothingOffWithALargerFont)
{
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPixelSize(before.pixelSize() * 13 / 10);
    clock.time += std::chrono::days(140); // the longest line of the almanac
    for (const bool isDark : {false, true}) {
        Theme::Use(isDark ? Theme::Kind::Dark : Theme::Kind::Daylight);
        for (const bool isLarge : {false, true}) {
            QApplication::setFont(isLarge ? large : before);
            for (const int item : {21901, 21902, 21904, 21905}) {
                for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
                    Show(1, size);
                    Choose(item);
                    ExpectNothingCut(*plan, size);
                    KeepPicture(*plan, QStringLiteral("plan-%1-%2%3%4")
                                           .arg(item)
                                           .arg(size.width())
                                           .arg(isDark ? QStringLiteral("-dark") : QString())
                                           .arg(isLarge ? QStringLiteral("-large") : QString()));
                }
            }
            Show(0);
            for (int page = 0; page < 3; ++page) {
                Next(*plan, [&](QWidget& window) {
                    dynamic_cast<PropertySheet&>(window).SetActivePage(page);
                    QCoreApplication::processEvents();
                    ExpectNothingCut(window, {480, 640});
                    KeepPicture(window, QStringLiteral("page-%1%2%3")
                                            .arg(page)
                                            .arg(isDark ? QStringLiteral("-dark") : QString())
                                            .arg(isLarge ? QStringLiteral("-large") : QString()));
                    window.close();
                });
                Choose(21911);
            }
            Next(*plan, [&](QWidget& window) {
                ExpectNothingCut(window, {480, 640});
                KeepPicture(window, QStringLiteral("curtain%1%2")
                                        .arg(isDark ? QStringLiteral("-dark") : QString())
                                        .arg(isLarge ? QStringLiteral("-large") : QString()));
                window.close();
            });
            Choose(21913);
        }
    }
    QApplication::setFont(before);
    Theme::Use(Theme::Kind::Daylight);
}

TEST_F(SurveyPlanTest, StandsAThousandRandomEvents)
{
    Show(1);
    std::mt19937 random(testing::Seed()); // the same events every time
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    constexpr std::array kKeys{Qt::Key_Tab,    Qt::Key_Left,  Qt::Key_Right,  Qt::Key_Up,
                               Qt::Key_Down,   Qt::Key_Home,  Qt::Key_End,    Qt::Key_Plus,
                               Qt::Key_Minus,  Qt::Key_F1,    Qt::Key_F2,     Qt::Key_Return,
                               Qt::Key_Escape, Qt::Key_Space, Qt::Key_PageUp, Qt::Key_PageDown};
    // What opens over the screen is closed again, wherever the events have led; so is a menu that
    // an event waits for.
    bool isActing = false;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, &closer, [&] {
        QWidget* const over = QApplication::activeModalWidget();
        if (over != nullptr && over != plan.get()) {
            over->close();
        }
        if (QWidget* const menu = QApplication::activePopupWidget(); menu != nullptr && isActing) {
            menu->close();
        }
    });
    closer.start(0);
    const int most = testing::ProofSize("FIELDCORE_HANDS", 1000);
    testing::Measured(most, "events");
    for (int event = 0; event < most; ++event) {
        QWidget* target = QApplication::activePopupWidget();
        target = target != nullptr ? target : QApplication::focusWidget();
        target = target != nullptr ? target : plan.get();
        isActing = true;
        switch (below(4)) {
        case 0: {
            const QPoint point(below(plan->width()), below(plan->height()));
            QWidget* const hit = plan->childAt(point);
            if (hit != nullptr && QApplication::activePopupWidget() == nullptr) {
                QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(plan.get(), point));
            }
            break;
        }
        case 1:
            plan->OnTimer(256);
            break;
        default:
            QTest::keyClick(target, kKeys[static_cast<std::size_t>(below(kKeys.size()))]);
            break;
        }
        isActing = false;
        QCoreApplication::processEvents();
        if (!plan->isVisible()) {
            plan->show();
        }
        const PlanSettings& settings = plan->Session().Settings();
        ASSERT_EQ(settings, Fitted(settings)) << "event " << event;
    }
    EXPECT_GE(plan->GetSystemTime(), 1980y / 1 / 1);
}

} // namespace
} // namespace fieldcore
