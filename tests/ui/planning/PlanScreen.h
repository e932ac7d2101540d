#pragma once

#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/HandClock.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/QtHost.h"
#include "ui/planning/SurveyPlan.h"

#include <QAction>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace fieldcore::testing {

/// A host that writes messages down, and answers with what the test has laid ready.
class NotingHost : public QtHost
{
public:
    struct Note
    {
        std::wstring text;
        std::wstring caption;
        BoxIcon icon;
        bool operator==(const Note&) const = default;
    };
    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override
    {
        notes.push_back({std::wstring(text), std::wstring(caption), style.icon});
        return answer;
    }
    bool Breathe() override { return ++breaths != cancelAt && QtHost::Breathe(); }

    std::vector<Note> notes;
    BoxAnswer answer = BoxAnswer::Ok;
    int breaths = 0;
    int cancelAt = -1;
};

/// What is protected, for the tests.
class Screen : public CSurveyPlan
{
public:
    using CSurveyPlan::CSurveyPlan;
    using CSurveyPlan::IsTimerRunning;
    using CSurveyPlan::OnTimer;
};

class PlanScreen : public ::testing::Test
{
protected:
    static constexpr int kWeek = 2445; // 2026-11-15

    PlanScreen()
    {
        clock.runs = true;
        // Late in the UTC day, when Japan has the next one.
        clock.utc =
            std::chrono::sys_days(std::chrono::year(2026) / 11 / 20) + std::chrono::hours(23);
        InstallSampleSites(home.Path());
        WriteAlmanac(kWeek);
    }
    ~PlanScreen() override { plan.reset(); }

    void WriteAlmanac(int week, int satellites = 31) const
    {
        const auto content = FileOf(NominalConstellation(satellites, week, 405504));
        home.Write("GSurveyPlan.alm",
                   {reinterpret_cast<const char*>(content.data()), content.size()});
    }
    Screen& Show(int loadWay = 0, QSize size = {480, 640})
    {
        PlanSurroundings surroundings;
        surroundings.chooseFile = [this](QWidget*, bool, const std::filesystem::path& suggested,
                                         const QString&) {
            return chosenFile.empty() ? suggested : chosenFile;
        };
        plan.reset(); // its settings are stored before the next one reads them
        plan = std::make_unique<Screen>(command.get(), loadWay, surroundings);
        plan->resize(size);
        plan->show();
        plan->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(plan.get()));
        return *plan;
    }
    /// Chooses an item of the menus by its words.
    void Choose(int textId) const
    {
        for (QAction* const action : plan->findChildren<QAction*>()) {
            if (action->text() == UiText(textId)) {
                action->trigger();
                return;
            }
        }
        FAIL() << textId;
    }
    template <typename Control = QWidget>
    [[nodiscard]] Control* Find(int id) const
    {
        auto* const found = qobject_cast<Control*>(Dialog::FindControl(plan.get(), id));
        EXPECT_NE(found, nullptr) << id;
        return found;
    }
    TemporaryFolder home;
    SettingsRoots roots{FoldersBelow(home.Path())};
    HandClock clock;
    NotingHost host;
    std::filesystem::path chosenFile;
    std::unique_ptr<simulator::Simulator> receiver;
    std::unique_ptr<CCommand> command =
        std::make_unique<CCommand>(Environment{.host = &host, .clock = &clock, .roots = &roots});
    std::unique_ptr<Screen> plan;
};

} // namespace fieldcore::testing
