// What the electronic bubble costs: a tick from a reading to its pixels, and an open window that
// asks a simulated receiver five times a second. Processor time of this process; the simulated
// receiver's thread is part of it, which a real one would not be.

#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

void BubbleTick(benchmark::State& state)
{
    const int edge = static_cast<int>(state.range(0));
    BubbleView view;
    view.resize(edge, edge);
    view.show();
    QImage pixels(edge, edge, QImage::Format_RGB32);
    TiltReading reading;
    reading.state = 1;
    reading.sensorPresent = true;
    reading.calibrated = true;
    double lean = 0.0;
    for (auto _ : state) {
        lean = lean > 0.05 ? 0.0 : lean + 0.002; // at least a pixel further each time
        reading.t1Rad = lean;
        reading.tiltRad = lean;
        view.Show(PictureOf(reading, {40.0, 0.02, 1.8}), BubbleView::Source::Reading);
        view.render(&pixels);
        benchmark::DoNotOptimize(pixels.bits());
    }
}
BENCHMARK(BubbleTick)->Arg(96)->Arg(480)->Unit(benchmark::kMicrosecond);

/// Share of one core while the window is open for five seconds.
void OpenBubble(benchmark::State& state)
{
    std::string error;
    const auto scenario = simulator::LoadScenario("tilted", error);
    simulator::Simulator receiver(scenario.value_or(simulator::Scenario()));
    CCommand command;
    if (!receiver.Start(error) || command.OpenPort(receiver.PortPath()) == 0) {
        state.SkipWithError("no simulated receiver");
        return;
    }
    constexpr int kForMs = 5000;
    double share = 0.0;
    for (auto _ : state) {
        TiltSensorDlg::StartUp(&command, nullptr, nullptr);
        const std::size_t asked = receiver.RequestCount();
        const double before = SecondsOf(CLOCK_PROCESS_CPUTIME_ID);
        QElapsedTimer watch;
        watch.start();
        while (watch.elapsed() < kForMs) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        share = (SecondsOf(CLOCK_PROCESS_CPUTIME_ID) - before) / (kForMs / 1000.0);
        state.counters["polls"] = static_cast<double>(receiver.RequestCount() - asked);
        TiltSensorDlg::ShutDown();
    }
    state.counters["percent_of_a_core"] = share * 100.0;
}
BENCHMARK(OpenBubble)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace fieldcore::bench
