// What a dialog costs from its constructor to its first picture, against a bare dialog with twenty
// controls. Both sides run in turn; the counter is the ratio of their medians.

#include "core/link/Command.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"
#include "core/settings/HostReg.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/link/PortChooserDlg.h"
#include "ui/planning/SkyPlotDlg.h"
#include "ui/planning/SurveyPlan.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

using Make = std::function<std::unique_ptr<QWidget>()>;

/// A plan that can be shown, in folders of its own.
struct World
{
    World()
    {
        qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
        InstallSampleSites(folder.path().toStdString());
        constexpr int kWeek = 2445;
        constexpr std::uint32_t kToa = 503808;
        AlmanacStore(folder.path().toStdString())
            .Import(NominalConstellation(kNominalSatellites, kWeek, kToa));
        roots = std::make_unique<SettingsRoots>();
        reg = std::make_unique<HostReg>(*roots);
    }

    QTemporaryDir folder;
    std::unique_ptr<SettingsRoots> roots;
    std::unique_ptr<HostReg> reg;
    CCommand command;
};

std::unique_ptr<QWidget> BareDialog()
{
    constexpr int kControls = 20;
    auto dialog = std::make_unique<QDialog>();
    auto* const column = new QVBoxLayout(dialog.get());
    for (int i = 0; i < kControls; ++i) {
        column->addWidget(new QPushButton(QStringLiteral("観測計画 %1").arg(i)));
    }
    return dialog;
}

double Seconds(const Make& make)
{
    const auto began = std::chrono::steady_clock::now();
    const std::unique_ptr<QWidget> dialog = make();
    dialog->resize(480, 640);
    dialog->show();
    benchmark::DoNotOptimize(dialog->grab());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

double Median(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Compare(benchmark::State& state, const Make& make)
{
    std::vector<double> ours;
    std::vector<double> bare;
    Seconds(make); // fonts and icons are there from then on
    Seconds(BareDialog);
    for ([[maybe_unused]] const auto& turn : state) {
        ours.push_back(Seconds(make));
        bare.push_back(Seconds(BareDialog));
    }
    const double oursS = Median(ours);
    const double bareS = Median(bare);
    state.counters["ours_ms"] = oursS * 1e3;
    state.counters["bare_ms"] = bareS * 1e3;
    state.counters["ratio"] = oursS / bareS;
}

} // namespace
} // namespace fieldcore::bench

int main(int argc, char** argv)
{
    using namespace fieldcore;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TouchStyle::Install();
    Theme::Use(Theme::Kind::Daylight);
    bench::World world;
    PlanSurroundings plan;
    plan.folder = world.folder.path().toStdString();
    plan.roots = world.roots.get();
    const bench::Make dialogs[] = {
        [&]() -> std::unique_ptr<QWidget> {
            return std::make_unique<CSurveyPlan>(&world.command, 0, plan);
        },
        [&]() -> std::unique_ptr<QWidget> {
            return std::make_unique<CSkyPlot>(
                nullptr, 0, CSkyPlot::Surroundings{world.reg.get(), nullptr, plan.folder});
        },
        []() -> std::unique_ptr<QWidget> {
            return std::make_unique<PortChooserDlg>(PortNames(), std::vector<ScenarioChoice>(),
                                                    ConnectChoice());
        },
    };
    const char* const names[] = {"SurveyPlan", "SkyPlot", "PortChooser"};
    constexpr int kTurns = 51;
    for (std::size_t i = 0; i < std::size(dialogs); ++i) {
        benchmark::RegisterBenchmark(names[i], bench::Compare, dialogs[i])
            ->Iterations(kTurns)
            ->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
