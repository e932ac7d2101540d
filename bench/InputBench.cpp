// How long the controller's window takes no input while it asks its receiver how it is: the real
// windows before a simulated receiver at 9600 bit/s that thinks for a while about each answer. A
// line for each page.

#include "app/Controller.h"
#include "app/MainWindow.h"
#include "app/Session.h"
#include "core/resources/StringTable.h"
#include "simulator/FaultRule.h"
#include "simulator/Simulator.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPushButton>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

namespace fieldcore::bench {
namespace {

using namespace std::chrono_literals;

constexpr auto kUntilItIsThere = 1s;
constexpr auto kLooksFor = 6s;
constexpr std::uint32_t kBaudRate = 9600;
constexpr int kLatencyMs = 150; // that an answer is thought about
constexpr int kTiltRequest = 0xC8;

/// How long the calling thread could have gone on and had no processor: what the machine does
/// besides, and no block of the program's making. 0 where the system does not tell.
qint64 CrowdedOutMs()
{
    std::ifstream told("/proc/thread-self/schedstat");
    qint64 ranNs = 0;
    qint64 waitedNs = 0;
    told >> ranNs >> waitedNs;
    constexpr qint64 kNsPerMs = 1'000'000;
    return waitedNs / kNsPerMs;
}

/// Sees when the event loop of the window in front is free: when a timer runs off in it, and not in
/// the middle of something else that only lets events through meanwhile.
class Application : public QApplication
{
public:
    Application(int& argc, char** argv) : QApplication(argc, argv)
    {
        m_watch.start();
        m_beat.setTimerType(Qt::PreciseTimer);
        connect(&m_beat, &QTimer::timeout, this, &Application::Beat);
        m_beat.start(1);
    }

    /// Looks for the longest block from now on.
    void Begin()
    {
        m_last = m_watch.elapsed() - CrowdedOutMs();
        m_longest = 0;
        m_beats = 0;
    }
    void Print(const char* page)
    {
        std::printf("%-12s longest block %4lld ms, free %d times\n", page, m_longest, m_beats);
        std::fflush(stdout);
    }

    bool notify(QObject* receiver, QEvent* event) override
    {
        ++m_depth;
        const bool isDone = QApplication::notify(receiver, event);
        --m_depth;
        return isDone;
    }

private:
    void Beat()
    {
        if (m_depth == QThread::currentThread()->loopLevel()) { // no event but this is handled
            const qint64 now = m_watch.elapsed() - CrowdedOutMs();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
            ++m_beats;
        }
    }

    QTimer m_beat;
    QElapsedTimer m_watch;
    int m_depth = 0;   // of events being handled
    qint64 m_last = 0; // without what it was crowded out
    qint64 m_longest = 0;
    int m_beats = 0;
};

/// Looks at a page for some seconds. @param choice  0: the main window itself
void Look(Application& application, MainWindow& home, const char* name, int choice)
{
    QEventLoop loop;
    QTimer::singleShot(kUntilItIsThere, qApp, [&] {
        QWidget* const page = QApplication::activeModalWidget();
        const auto buttons =
            page != nullptr ? page->findChildren<QPushButton*>() : QList<QPushButton*>();
        for (QPushButton* const button : buttons) {
            if (button->text() == UiText(text::kTiltBubble)) {
                QTimer::singleShot(0, button, &QPushButton::click);
            }
        }
        application.Begin();
    });
    QTimer::singleShot(kUntilItIsThere + kLooksFor, qApp, [&] {
        application.Print(name);
        while (QWidget* const page = QApplication::activeModalWidget()) {
            page->close();
        }
        loop.quit();
    });
    if (choice == 0) {
        loop.exec();
    } else {
        Q_EMIT home.Chosen(choice); // it has a loop of its own
    }
}

} // namespace
} // namespace fieldcore::bench

int main(int argc, char** argv)
{
    using namespace fieldcore;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    qputenv("FIELDCORE_HOME", folder.filePath(QStringLiteral("home")).toUtf8());
    qputenv("XDG_CONFIG_HOME", folder.filePath(QStringLiteral("config")).toUtf8());
    bench::Application application(argc, argv);
    TouchStyle::Install();
    std::string error;
    auto scenario = simulator::LoadScenario("tilted", error).value_or(simulator::Scenario());
    scenario.baudRate = bench::kBaudRate;
    scenario.pacing = simulator::Pacing::Baud;
    scenario.latencyMs = bench::kLatencyMs;
    simulator::Simulator receiver(scenario);
    const bool isThere = receiver.Start(error);
    Controller controller{AppOptions()};
    controller.Begin();
    controller.Choose({receiver.PortPath(), bench::kBaudRate});
    Session session(controller);
    session.Begin();
    std::wstring fault;
    if (!isThere || !controller.ConnectQuietly(fault)) {
        std::fprintf(stderr, "input_bench: not connected\n");
        return 1;
    }
    bench::Look(application, session.Window(), "home", 0);
    bench::Look(application, session.Window(), "status", MainWindow::kStatus);
    bench::Look(application, session.Window(), "sky", MainWindow::kSkyPlot);
    bench::Look(application, session.Window(), "plan", MainWindow::kPlan);
    bench::Look(application, session.Window(), "tilt", MainWindow::kTilt);
    simulator::FaultRule silent;
    silent.requestType = bench::kTiltRequest;
    receiver.AddFault(silent);
    bench::Look(application, session.Window(), "tilt, silent", MainWindow::kTilt);
    return 0;
}
