// How long the user waits after a click on Cancel until the program is his again: from the click to
// the return of what he has cancelled, before a receiver that never answers.

#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "tests/core/link/FarEnd.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/QtHost.h"
#include "ui/link/ConnectProgressDlg.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

/// A port behind which nobody answers, and a window over which the library waits for it.
struct Silence
{
    Silence()
    {
        window.resize(480, 640);
        window.show();
        QApplication::setActiveWindow(&window);
        target.devicePath = end.Path();
        target.settings.replyTimeout = std::chrono::minutes(1);
    }

    QWidget window;
    QtHost host;
    testing::FarEnd end;
    CCommand command{{&host, nullptr, nullptr, nullptr}};
    ConnectTarget target;
};

/// A click as the window system delivers it: at any time, also while nobody looks for events.
void Click(QAbstractButton* button, std::chrono::milliseconds after, SteadyTime& clicked)
{
    std::this_thread::sleep_for(after);
    const QPointF at(8.0, 8.0);
    clicked = std::chrono::steady_clock::now();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QCoreApplication::postEvent(
            button, new QMouseEvent(type, at, at, Qt::LeftButton, held, Qt::NoModifier));
    }
}

/// Does @p wait while a hand clicks on the button that @p find finds, at another moment each time.
void Measure(benchmark::State& state, CCommand& command,
             const std::function<QAbstractButton*()>& find, const std::function<void()>& wait)
{
    std::vector<double> times;
    int turn = 0;
    for ([[maybe_unused]] const auto& round : state) {
        SteadyTime clicked;
        std::jthread hand;
        QTimer eye;
        QObject::connect(&eye, &QTimer::timeout, &eye, [&] {
            QAbstractButton* const button = find();
            if (button != nullptr && button->isVisible()) {
                eye.stop();
                hand = std::jthread(Click, button, std::chrono::milliseconds(20 + turn++ * 7 % 50),
                                    std::ref(clicked));
            }
        });
        eye.start(1);
        wait();
        const SteadyTime over = std::chrono::steady_clock::now();
        if (hand.joinable()) {
            hand.join();
        }
        const std::chrono::duration<double, std::milli> took = over - clicked;
        if (clicked == SteadyTime() || command.Fault() != CommandFault::Cancelled) {
            state.SkipWithError("it was not the click that ended the wait");
            return;
        }
        times.push_back(took.count());
        command.ClosePort();
        QCoreApplication::processEvents(); // the strip goes
    }
    state.counters["median_ms"] = Quantile(times);
    state.counters["worst_ms"] = Quantile(times, 1.0);
}

void CancelOnTheStrip(benchmark::State& state)
{
    Silence silence;
    const auto find = [&silence]() -> QAbstractButton* {
        auto* const strip = silence.window.findChild<BusyStrip*>();
        return strip != nullptr ? strip->CancelButton() : nullptr;
    };
    Measure(state, silence.command, find, [&silence] {
        silence.command.OpenPort(silence.target.devicePath, silence.target.settings);
        StatusReply status;
        silence.command.RequestStatus(status);
    });
}
BENCHMARK(CancelOnTheStrip)->Iterations(25)->UseRealTime();

void CancelWhileConnecting(benchmark::State& state)
{
    Silence silence;
    ConnectProgressDlg* shown = nullptr;
    const auto find = [&shown]() -> QAbstractButton* {
        return shown != nullptr ? shown->CancelButton() : nullptr;
    };
    Measure(state, silence.command, find, [&] {
        ConnectProgressDlg progress(QStringLiteral("COM1"), silence.command.GetClock(),
                                    &silence.window);
        shown = &progress;
        progress.Begin();
        ConnectSequence sequence(silence.command, silence.target);
        sequence.Run(&progress);
        shown = nullptr;
    });
}
BENCHMARK(CancelWhileConnecting)->Iterations(25)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
