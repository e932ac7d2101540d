#include "tests/core/orbits/Messages.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/PlanSystemsBar.h"

#include <QFile>
#include <QListWidget>

namespace fieldcore {
namespace {

using testing::Click;
using testing::Next;
using testing::PlanScreen;

/// On the day of the messages.
class PlanSystemsTest : public PlanScreen
{
protected:
    PlanSystemsTest()
    {
        clock.utc = std::chrono::sys_days(std::chrono::year(2020) / 6 / 25) + std::chrono::hours(3);
        WriteAlmanac(2111);
    }
    void Import(const std::string& text)
    {
        home.Write("orbits.txt", text);
        chosenFile = home.Path() / "orbits.txt";
        Choose(text::kOrbitsRead);
    }
    void Tap(GnssSystem system) const
    {
        const auto* const bar = plan->findChild<PlanSystemsBar*>();
        if (!bar->isVisible()) {
            Click(*plan, text::kSystemsName);
        }
        const auto buttons = bar->findChildren<ChoiceButton*>();
        QTest::mouseClick(buttons[static_cast<int>(system)], Qt::LeftButton);
    }
    [[nodiscard]] std::string Systems() const { return TextOf(plan->Session().Plan().Systems()); }
    static bool Says(const QWidget& window, const QString& words)
    {
        return testing::Says(window, words, true);
    }
};

TEST_F(PlanSystemsTest, CountsWhatWasReadAndChosenTogether)
{
    Show();
    Tap(GnssSystem::BeiDou);
    ASSERT_EQ(host.notes.size(), 1U) << "nothing is known of it";
    EXPECT_EQ(Systems(), "G");
    const int before = plan->Session().Plan().View().count[0];
    Import(testing::Messages());
    ASSERT_EQ(host.notes.size(), 2U);
    EXPECT_NE(host.notes.back().text.find(L"BeiDou：3衛星"), std::wstring::npos);
    EXPECT_EQ(plan->Session().Plan().View().count[0], before) << "nobody has asked for more";
    Tap(GnssSystem::BeiDou);
    Tap(GnssSystem::Qzss);
    EXPECT_EQ(Systems(), "GCJ");
    EXPECT_EQ(plan->Session().Plan().Satellites().size(), 5U)
        << "the almanac is made up: it yields";
    EXPECT_TRUE(Says(*plan, QStringLiteral("GPS+BDS+QZS")));
    Show(); // anew
    EXPECT_EQ(Systems(), "GCJ");
    for (const GnssSystem system : {GnssSystem::BeiDou, GnssSystem::Qzss, GnssSystem::Gps}) {
        Tap(system);
    }
    EXPECT_EQ(Systems(), "G") << "one is always left";
}

TEST_F(PlanSystemsTest, SaysOfEachSystemFromWhichAgeOnItIsTooOld)
{
    Show();
    Import(testing::Messages());
    plan->Session().SetSystems(SystemSet().set());
    const auto buttons = plan->findChild<PlanSystemsBar*>()->findChildren<ChoiceButton*>();
    constexpr std::pair<int, const char*> kStale[] = {{0, ""},    {1, "S"},    {6, "S"},
                                                      {8, "CJS"}, {13, "CJS"}, {15, "GRECJS"}};
    for (const auto& [days, expected] : kStale) { // after the messages
        plan->SetSystemTime(std::chrono::sys_days(std::chrono::year(2020) / 6 / 25) +
                            std::chrono::days(days));
        plan->DrawResults();
        SystemSet stale;
        for (std::size_t k = 0; k < kGnssSystems; ++k) {
            const QString words = buttons[static_cast<qsizetype>(k)]->accessibleName();
            stale.set(k, words.contains(QStringLiteral("0.5度以上ずれる")));
        }
        EXPECT_EQ(TextOf(stale), expected) << days;
    }
}

TEST_F(PlanSystemsTest, SaysWhereAFileIsWrongAndKeepsWhatWasThere)
{
    Show();
    Import(testing::Messages());
    Import(testing::With(testing::Messages(), "R09 2020 06", "R09 2020 13"));
    EXPECT_EQ(host.notes.back().icon, BoxIcon::Stop);
    EXPECT_NE(host.notes.back().text.find(L"12"), std::wstring::npos) << "its line";
    Tap(GnssSystem::BeiDou);
    EXPECT_EQ(Systems(), "GC");
    home.Write("GSurveyPlan.nav", "not what it was");
    Show();
    EXPECT_NE(host.notes.back().text.find(L"GSurveyPlan.nav"), std::wstring::npos);
}

TEST_F(PlanSystemsTest, SearchesDaysAndOpensThePlanOfTheOneThatIsTapped)
{
    Show();
    Next(*plan, [this](QWidget& dialog) {
        dialog.findChild<QListWidget*>()->item(2)->setCheckState(Qt::Checked);
        Click(dialog, text::kSearchStart);
        ASSERT_TRUE(QTest::qWaitFor([&] { return Says(dialog, UiText(text::kSearchTap)); }, 60000));
        for (ChoiceButton* const day : dialog.findChildren<ChoiceButton*>()) {
            if (day->isVisible() && day->isChecked()) { // the best
                QTest::mouseClick(day, Qt::LeftButton);
                return;
            }
        }
        FAIL();
    });
    Choose(text::kSearchDays);
    const ObservationPlan& shown = plan->Session().Plan();
    EXPECT_FALSE(FindWindows(shown, plan->Session().Limits()).empty());
    Show(); // anew
    plan->SetElMaskData(75);
    plan->DrawResults();
    Next(*plan, [](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QListWidget*>()->item(2)->checkState(), Qt::Checked)
            << "of last time";
        Click(dialog, text::kSearchStart);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return Says(dialog, UiText(text::kSearchEaseNothing)); }, 60000));
        dialog.close();
    });
    Choose(text::kSearchDays);
}

TEST_F(PlanSystemsTest, PlansASessionAndPrintsIt)
{
    Show();
    chosenFile = home.Path() / "session.pdf";
    Next(*plan, [this](QWidget& dialog) {
        Click(dialog, text::kSessionShow);
        EXPECT_EQ(host.notes.size(), 1U) << "one site is no session";
        auto* const list = dialog.findChild<QListWidget*>();
        for (int row = 1; row < 14; ++row) { // more than a page has room for
            list->item(row)->setCheckState(Qt::Checked);
        }
        Click(dialog, text::kSessionShow);
        EXPECT_TRUE(Says(dialog, UiText(text::kSessionTogether)));
        EXPECT_TRUE(Says(dialog, list->item(1)->text()));
        // A curtain of its own for the first one, as it stands.
        Next(dialog, [](QWidget& editor) { Click(editor, text::kButtonOk); });
        Click(dialog, text::kPlanCurtain);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return Says(dialog, UiText(text::kSessionOwnCurtain)); }, 60000));
        Click(dialog, text::kSessionPdf);
        dialog.close();
    });
    const Observer before = plan->Session().Plan().Calc().GetObserver();
    Choose(text::kSessionTitle);
    QFile sheet(chosenFile);
    ASSERT_TRUE(sheet.open(QIODevice::ReadOnly));
    EXPECT_TRUE(sheet.readAll().contains("/Count 2")) << "pages";
    EXPECT_EQ(plan->Session().Plan().Calc().GetObserver().latitudeRad, before.latitudeRad);
}

} // namespace
} // namespace fieldcore
