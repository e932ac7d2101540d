// What a dialog costs from its constructor to its first picture, against a bare dialog with twenty
// controls. Both sides run in turn; the counter is the ratio of their medians.

#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "ui/controls/Theme.h"
#include "ui/link/PortChooser.h"
#include "ui/planning/SkyPlotDlg.h"
#include "ui/planning/SurveyPlan.h"

#include <QDialog>
#include <QPushButton>
#include <QVBoxLayout>

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
        Theme::Use(Theme::Kind::Daylight);
        InstallSampleSites(folder.Path());
        constexpr int kWeek = 2445;
        constexpr std::uint32_t kToa = 503808;
        AlmanacStore(folder.Path()).Import(NominalConstellation(kNominalSatellites, kWeek, kToa));
    }

    TemporaryFolder folder;
    SettingsRoots roots{testing::FoldersBelow(folder.Path())};
    CCommand command{{.roots = &roots}};
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

void Show(QWidget& dialog)
{
    dialog.resize(480, 640);
    dialog.show();
    benchmark::DoNotOptimize(dialog.grab());
}

void Compare(benchmark::State& state, const Make& make)
{
    std::unique_ptr<QWidget> bare;
    std::unique_ptr<QWidget> ours;
    const auto showBare = [&bare] { Show(*(bare = BareDialog())); };
    const auto showOurs = [&ours, &make] { Show(*(ours = make())); };
    showOurs(); // fonts and icons are there from then on
    showBare();
    Comparison dialogs;
    for ([[maybe_unused]] const auto& turn : state) {
        ours.reset();
        bare.reset();
        dialogs.Turn(showBare, showOurs);
    }
    state.counters["ours_ms"] = dialogs.OursS() * 1e3;
    state.counters["bare_ms"] = dialogs.BareS() * 1e3;
    state.counters["ratio"] = dialogs.Ratio();
}

void Plan(benchmark::State& state)
{
    World world;
    Compare(state, [&] { return std::make_unique<CSurveyPlan>(&world.command, 0); });
}
BENCHMARK(Plan)->Name("SurveyPlan")->Iterations(51)->UseRealTime();

void Sky(benchmark::State& state)
{
    World world;
    Compare(state, [&] { return std::make_unique<CSkyPlot>(&world.command, 0); });
}
BENCHMARK(Sky)->Name("SkyPlot")->Iterations(51)->UseRealTime();

void PortChooser(benchmark::State& state)
{
    Compare(state, [] {
        return std::make_unique<PortChooserDlg>(PortNames(), std::vector<ScenarioChoice>(),
                                                ConnectChoice());
    });
}
BENCHMARK(PortChooser)->Iterations(51)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
