#pragma once

#include "core/link/Command.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"
#include "core/resources/StringTable.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/HandClock.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/UiText.h"
#include "ui/planning/SurveyPlan.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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

/// Does @p act with the next window or popup over @p below, from inside its loop; closes what is
/// still open much later, so that nothing hangs.
inline void Next(QWidget& below, const std::function<void(QWidget&)>& act)
{
    auto* const look = new QTimer(&below);
    QObject::connect(look, &QTimer::timeout, look, [look, &below, act] {
        QWidget* over = QApplication::activePopupWidget();
        over = over != nullptr ? over : QApplication::activeModalWidget();
        if (over == nullptr || over == &below || !over->isVisible()) {
            return;
        }
        look->stop();
        look->deleteLater();
        QTimer::singleShot(30000, over, [over] {
            ADD_FAILURE() << "nobody has answered";
            over->close();
        });
        act(*over);
    });
    look->start(1);
}

/// Clicks the button of that text or name.
inline void Click(QWidget& window, int textId)
{
    const QString text = UiText(textId);
    for (QAbstractButton* const button : window.findChildren<QAbstractButton*>()) {
        if (button->isVisible() && (button->text() == text || button->accessibleName() == text)) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    ADD_FAILURE() << "there is no button " << text.toStdString();
}

/// Whether a label that is seen says that, or has it in it.
inline bool Says(const QWidget& window, const QString& words, bool inPart = false)
{
    const QList<QLabel*> labels = window.findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
        const QString said = label->text();
        return label->isVisible() && (inPart ? said.contains(words) : said == words);
    });
}

class PlanScreen : public ::testing::Test
{
protected:
    static constexpr int kWeek = 2445; // 2026-11-15

    PlanScreen()
    {
        CCommand::Surroundings surroundings;
        surroundings.host = &host;
        command = std::make_unique<CCommand>(surroundings);
        // Late in the UTC day, when Japan has the next one.
        clock.utc =
            std::chrono::sys_days(std::chrono::year(2026) / 11 / 20) + std::chrono::hours(23);
        InstallSampleSites(home.Path());
        WriteAlmanac(kWeek);
    }
    ~PlanScreen() override { plan.reset(); }

    void WriteAlmanac(int week, int satellites = 31) const
    {
        std::string content;
        for (const AlmanacRecord& record : NominalConstellation(satellites, week, 405504)) {
            const AlmanacBytes bytes = EncodeAlmanac(record);
            content.append(bytes.begin(), bytes.end());
        }
        home.Write("GSurveyPlan.alm", content);
    }
    Screen& Show(int loadWay = 0, QSize size = {480, 640})
    {
        PlanSurroundings surroundings;
        surroundings.folder = home.Path();
        surroundings.documents = home.Path() / "documents";
        surroundings.roots = &roots;
        surroundings.clock = &clock;
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
    template <typename Control = QWidget>
    [[nodiscard]] Control* Find(int id) const
    {
        auto* const found = qobject_cast<Control*>(Dialog::FindControl(plan.get(), id));
        EXPECT_NE(found, nullptr) << id;
        return found;
    }
    static Folders Below(const std::string& folder)
    {
        FolderSources sources;
        sources.variable = [folder](const std::string& name) {
            return name == "HOME" ? std::optional<std::string>(folder) : std::nullopt;
        };
        return Folders(sources);
    }

    TemporaryFolder home;
    SettingsRoots roots{Below(home.Path())};
    HandClock clock;
    NotingHost host;
    std::filesystem::path chosenFile;
    std::unique_ptr<CCommand> command;
    std::unique_ptr<Screen> plan;
};

} // namespace fieldcore::testing
