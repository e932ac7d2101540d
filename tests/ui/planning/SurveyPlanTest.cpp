#include "ui/planning/SurveyPlan.h"

#include "core/planning/AlmanacFile.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/RandomHands.h"
#include "tests/ui/link/Leaving.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/StepButton.h"
#include "ui/planning/PlanGraphView.h"

#include <QAbstractEventDispatcher>
#include <QMenu>
#include <QSlider>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Click;
using testing::Next;
using testing::PlanScreen;
using testing::Says;
using Notes = std::vector<testing::NotingHost::Note>;

class SurveyPlanTest : public PlanScreen
{
protected:
    [[nodiscard]] CnMenuBar* Menu() const { return Find<CnMenuBar>(21201); }
    [[nodiscard]] QString TextOf(int labelId) const { return Find<QLabel>(labelId)->text(); }
    void Connect(const char* scenarioText)
    {
        receiver = testing::Plugged(*command, testing::ParsedScenario(scenarioText));
    }
};

TEST_F(SurveyPlanTest, OpensWithWhatANewUserHas)
{
    Show();
    EXPECT_TRUE(host.notes.empty());
    EXPECT_EQ(TextOf(21374), QStringLiteral("09:00"));
    EXPECT_EQ(TextOf(21376), QStringLiteral("11:00"));
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/11/20")) << "today in UTC";
    EXPECT_EQ(TextOf(21380), QStringLiteral("2026/11/19"));
    EXPECT_EQ(plan->GetIntervalData(), 10);
    const QImage picture = Find(21373)->grab().toImage();
    EXPECT_EQ(picture.pixelColor(4, picture.height() - 5), QColor(255, 255, 150));
}

TEST_F(SurveyPlanTest, TellsWhichDayAndWhichAlmanacItIs)
{
    const auto isSaid = [this](const char* text) { return Says(*plan, QString::fromUtf8(text)); };
    Show(); // on the day of UTC; Japan has the next one
    EXPECT_TRUE(isSaid("金曜日（昨日）") && isSaid("今日の2日前、観測日の1日前") &&
                isSaid("公称軌道暦（見本）"));
    Click(*plan, text::kPlanToday);
    EXPECT_EQ(TextOf(21378), QStringLiteral("2026/11/21"));
    EXPECT_TRUE(isSaid("土曜日（今日）") && isSaid("今日の2日前"));
    Click(*plan, text::kPlanNextDay);
    EXPECT_TRUE(isSaid("日曜日（明日）") && isSaid("今日の2日前、観測日の3日前"));
    clock.utc += std::chrono::hours(16); // midnight has passed in Japan
    plan->OnTimer(257);
    EXPECT_TRUE(isSaid("日曜日（今日）") && isSaid("今日の3日前"));
    plan->SetSystemTime(2026y / 11 / 19);
    plan->DrawResults();
    EXPECT_TRUE(isSaid("木曜日") && isSaid("今日の3日前、観測日と同じ日"));
}

TEST_F(SurveyPlanTest, JudgesTheAlmanacByTheStartThatIsDrawn)
{
    clock.utc += std::chrono::days(29); // at 9 o'clock 29.3 days behind the almanac
    Show();
    EXPECT_TRUE(host.notes.empty());
    const auto isUrged = [this] { return Says(*plan, QStringLiteral("要更新"), true); };
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
    EXPECT_EQ(items(2), "一覧 - 日を探す 同時観測 - 読込");
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

TEST_F(SurveyPlanTest, RedrawsASecondAfterTheScrollsEnd)
{
    Show();
    const PlanPeriod& shown = plan->Session().Plan().Computed();
    const auto isASecond = [this] { // a timer that is on time
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(plan.get());
        return std::any_of(timers.begin(), timers.end(), [](const auto& timer) {
            return timer.interval == 1000 && timer.timerType == Qt::PreciseTimer;
        });
    };
    LabelSpin* const start = Find<LabelSpin>(21375);
    start->setFocus();
    QTest::keyPress(start, Qt::Key_Right);
    EXPECT_FALSE(plan->IsTimerRunning(256)) << "before the end of the scroll";
    QTest::keyRelease(start, Qt::Key_Right);
    EXPECT_TRUE(plan->IsTimerRunning(256));
    EXPECT_TRUE(isASecond());
    QTest::keyPress(start, Qt::Key_Right);
    EXPECT_FALSE(plan->IsTimerRunning(256)) << "moving on calls the redrawing off";
    QTest::keyRelease(start, Qt::Key_Right);
    EXPECT_LT(shown.startHour, 11);
    plan->OnTimer(256);
    EXPECT_FALSE(plan->IsTimerRunning(256));
    EXPECT_EQ(shown.startHour, 11);
    QTest::mouseClick(start->findChildren<StepButton*>().at(1), Qt::LeftButton);
    EXPECT_TRUE(plan->IsTimerRunning(256));
    plan->Close(Dialog::kCancelled);
    EXPECT_FALSE(plan->IsTimerRunning(256));
}

TEST_F(SurveyPlanTest, RemembersItsSettings)
{
    Show();
    Choose(21906);
    QTest::keyClick(Find(21375), Qt::Key_Right);
    plan->SetElMaskData(20);
    plan->SetPositionStr(L"大阪府大阪市");
    plan->Close(Dialog::kCancelled);
    Show();
    EXPECT_TRUE(host.notes.empty());
    EXPECT_EQ(plan->Session().Settings(), (PlanSettings{20, 10, 2, 5, 0, 13, L"大阪府大阪市", 0}));
    EXPECT_TRUE(Menu()->IsItemChecked(21906));
    {
        const SettingsBatch other(HostReg(roots).Store()); // whose writer has not finished
        plan->Close(Dialog::kCancelled);
    }
    ASSERT_EQ(host.notes.size(), 1U);
    EXPECT_TRUE(host.notes[0].text.starts_with(Text(text::kPlanNotKept))) << "what it is, then why";
}

TEST_F(SurveyPlanTest, GoesOnWithoutAnAlmanacAndTakesOneLater)
{
    std::filesystem::remove(AlmanacPath(home.Path()));
    Connect("almanacs 31\nstart 2026-11-20 00:00:00");
    Show();
    EXPECT_EQ(host.notes,
              (Notes{{L"ファイル読み込みに失敗しました。", L"ファイルエラー", BoxIcon::Stop}}));
    EXPECT_EQ(TextOf(21380), QStringLiteral("--"));
    host.notes.clear();
    Choose(21912);
    EXPECT_EQ(host.notes, (Notes{{L"軌道暦を更新しました", L"軌道暦更新", BoxIcon::Information}}));
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
    EXPECT_EQ(TextOf(21380), QStringLiteral("2026/11/19"));
}

TEST_F(SurveyPlanTest, TellsThatItsSiteIsMissing)
{
    const auto isTold = [this] { return Says(*plan, UiText(text::kPlanSiteMissing)); };
    Show();
    EXPECT_FALSE(isTold());
    std::filesystem::remove(SitesPath(home.Path()));
    Show();
    EXPECT_TRUE(isTold());
    EXPECT_EQ(plan->Session().Site().latitudeRad, 50.0);
}

TEST_F(SurveyPlanTest, AsksHowToEndTheProgram)
{
    for (const testing::Leaving& row : testing::kLeavings) {
        Connect("almanacs 31");
        testing::ExpectLeft(Show(row.loadWay), row, *command, *receiver);
    }
}

TEST_F(SurveyPlanTest, SavesThePlanAndTellsWhere)
{
    Show();
    for (const int kind :
         {text::kPlanExportPdf, text::kPlanExportPng, text::kPlanExportSvg, text::kPlanExportCsv}) {
        Next<QMenu>(*plan, [kind](QMenu& menu) {
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
        EXPECT_TRUE(std::filesystem::exists(home.Path() / "Documents" /
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
    QAbstractButton* const undo = testing::Called(*plan, QStringLiteral("マスクを15°に戻す"));
    ASSERT_TRUE(undo != nullptr && undo->isVisible());
    QTest::mouseClick(undo, Qt::LeftButton);
    EXPECT_EQ(plan->GetElMaskData(), 15);
    EXPECT_EQ(graph->Drawing().maskDeg, 15);
    EXPECT_FALSE(undo->isVisible());
    auto* const time = plan->findChild<QSlider*>();
    ASSERT_TRUE(time->isVisible());
    QTest::keyClick(time, Qt::Key_End);
    EXPECT_EQ(graph->Drawing().minutes, 120.0);
    Choose(21901);
    EXPECT_FALSE(time->isVisible());
}

TEST_F(SurveyPlanTest, GivesTheGraphThePageOnASmallScreenOnly)
{
    Show();
    const int before = Find(21373)->height();
    Click(*plan, text::kPlanEnlarge);
    EXPECT_FALSE(Find(21375)->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return Find(21373)->height() > before + 100; }, 60000));
    plan->resize(1280, 800);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Find(21375)->isVisible(); }, 60000))
        << "where no button brings it back";
}

TEST_F(SurveyPlanTest, StandsAThousandRandomEvents)
{
    Show(1);
    testing::RandomHands hands;
    while (!hands.IsTired()) {
        hands.Play(*plan, 20);
        plan->OnTimer(256);
        plan->show();
        const PlanSettings& settings = plan->Session().Settings();
        ASSERT_EQ(settings, Fitted(settings)) << "after " << hands.Count();
    }
    EXPECT_GE(plan->GetSystemTime(), 1980y / 1 / 1);
}

} // namespace
} // namespace fieldcore
