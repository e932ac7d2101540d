// Whether the controller takes what the user taps and types while it asks its receiver how it is: a
// hand that never looks works on the real windows, before a simulated receiver at 9600 bit/s that
// thinks for a while about each answer. A line for each page.

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
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace fieldcore::bench {
namespace {

using namespace std::chrono_literals;

constexpr int kPresses = 60;
constexpr auto kStep = 40ms; // from one tap or digit to the next
constexpr auto kHeld = 20ms; // a finger on a button
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

    /// No event is being handled but the one that asks.
    [[nodiscard]] bool IsFree() const { return m_depth == QThread::currentThread()->loopLevel(); }
    /// Begins to look for the longest block.
    void Begin()
    {
        m_last = m_watch.elapsed() - CrowdedOutMs();
        m_longest = 0;
    }
    [[nodiscard]] qint64 LongestBlockMs() const { return m_longest; }

    /// The window that the user has in front of him.
    [[nodiscard]] static QWidget* Front()
    {
        if (QWidget* const modal = activeModalWidget()) {
            return modal;
        }
        for (QWidget* const widget : topLevelWidgets()) {
            if (qobject_cast<MainWindow*>(widget) != nullptr && widget->isVisible()) {
                return widget;
            }
        }
        return nullptr;
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
        if (IsFree()) {
            const qint64 now = m_watch.elapsed() - CrowdedOutMs();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        }
    }

    QTimer m_beat;
    QElapsedTimer m_watch;
    int m_depth = 0;   // of events being handled
    qint64 m_last = 0; // without what it was crowded out
    qint64 m_longest = 0;
};

// The hand has a thread of its own. What it asks for is done in the program's, when that next looks
// for events.

template <typename Act>
auto Ask(Act act)
{
    decltype(act()) answer{};
    QMetaObject::invokeMethod(
        qApp, [&] { answer = act(); }, Qt::BlockingQueuedConnection);
    return answer;
}

bool WaitFor(const std::function<bool()>& isDone)
{
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!Ask(isDone)) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

/// Gives the window in front an event as the window system does, at a time of its own: it does not
/// wait until it is looked at.
template <typename Make>
void Deliver(Make make)
{
    QMetaObject::invokeMethod(
        qApp,
        [make] {
            if (QWidget* const front = Application::Front()) {
                auto event = make(*front);
                QSpontaneKeyEvent::setSpontaneous(&event);
                qApp->notify(front->windowHandle(), &event);
            }
        },
        Qt::QueuedConnection);
}

void Tap(const QPointer<QWidget>& on)
{
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        Deliver([type, on](QWidget& front) {
            const bool isThere = on != nullptr && on->window() == &front;
            const QPointF at =
                isThere ? on->mapTo(&front, QPointF(on->rect().center())) : QPointF();
            return QMouseEvent(type, at, front.mapToGlobal(at), Qt::LeftButton,
                               type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                               Qt::NoModifier);
        });
        std::this_thread::sleep_for(kHeld);
    }
}

void Type(char sign)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        Deliver([type, sign](QWidget&) {
            return QKeyEvent(type, sign, Qt::NoModifier, QString(QLatin1Char(sign)));
        });
    }
}

/// A button and a box on the page in front, where everything that comes is counted.
struct Probe
{
    Probe()
    {
        button = new QPushButton(Application::Front());
        box = new QLineEdit(Application::Front());
        button->setFocusPolicy(Qt::NoFocus);
        QObject::connect(button, &QPushButton::clicked, button, [this] { ++taps; });
        button->setGeometry(0, 0, 120, 60);
        box->setGeometry(120, 0, 360, 60);
        for (QWidget* const part : {static_cast<QWidget*>(button), static_cast<QWidget*>(box)}) {
            part->show();
            part->raise();
        }
        box->setFocus();
    }
    ~Probe()
    {
        delete button;
        delete box;
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    QPointer<QPushButton> button; // of the page, which may go
    QPointer<QLineEdit> box;
    int taps = 0;
};

/// The controller before a receiver that takes its time to think. In the program's thread.
struct World
{
    World()
    {
        std::string error;
        auto scenario = simulator::LoadScenario("tilted", error).value_or(simulator::Scenario());
        scenario.baudRate = kBaudRate;
        scenario.pacing = simulator::Pacing::Baud;
        scenario.latencyMs = kLatencyMs;
        receiver = std::make_unique<simulator::Simulator>(scenario);
        const bool isThere = receiver->Start(error);
        controller.Begin();
        controller.Choose({receiver->PortPath(), kBaudRate});
        session = std::make_unique<Session>(controller);
        session->Begin();
        std::wstring fault;
        if (!isThere || !controller.ConnectQuietly(fault)) {
            std::fprintf(stderr, "input_bench: not connected\n");
        }
    }

    std::unique_ptr<simulator::Simulator> receiver;
    Controller controller{AppOptions()};
    std::unique_ptr<Session> session;
};

/// Taps and types on a page and prints what came. @param choice  0: the main window itself
void WorkOn(Application& application, World& world, const char* name, int choice)
{
    if (choice != 0) {
        Ask([&] { // it has a loop of its own
            QTimer::singleShot(0, qApp, [&] { Q_EMIT world.session->Window().Chosen(choice); });
            return true;
        });
        WaitFor([&] { return QApplication::activeModalWidget() && application.IsFree(); });
    }
    if (choice == MainWindow::kTilt) {
        Tap(Ask([] {
            for (auto* const one : Application::Front()->findChildren<QPushButton*>()) {
                if (one->text() == UiText(text::kTiltBubble)) {
                    return QPointer<QWidget>(one);
                }
            }
            return QPointer<QWidget>();
        }));
        std::this_thread::sleep_for(500ms);
    }
    std::unique_ptr<Probe> probe;
    Ask([&] {
        probe = std::make_unique<Probe>();
        application.Begin();
        return true;
    });
    QString sent;
    for (int i = 0; i < kPresses; ++i) {
        Tap(probe->button.data());
        const char digit = static_cast<char>('0' + i * 7 % 10);
        sent += QLatin1Char(digit);
        Type(digit);
        std::this_thread::sleep_for(kStep);
    }
    const auto come = [&] { return probe->box ? probe->box->text() : QString(); };
    WaitFor([&] { return probe->taps == kPresses && come() == sent; });
    Ask([&] {
        std::printf("%-12s taps %d: %2d  digits %d: %2d%s  block %5lld ms\n", name, kPresses,
                    probe->taps, kPresses, static_cast<int>(come().size()),
                    sent.startsWith(come()) ? "" : ", some lost", application.LongestBlockMs());
        std::fflush(stdout);
        probe.reset();
        return true;
    });
    WaitFor([&] {
        QWidget* const page = QApplication::activeModalWidget();
        if (page != nullptr && application.IsFree()) {
            page->close();
        }
        return page == nullptr;
    });
}

void WorkOnAll(Application& application)
{
    std::unique_ptr<World> world;
    Ask([&] {
        world = std::make_unique<World>();
        return true;
    });
    WaitFor([&] { return world->controller.Link().Heard().status.has_value(); });
    WorkOn(application, *world, "home", 0);
    WorkOn(application, *world, "status", MainWindow::kStatus);
    WorkOn(application, *world, "sky", MainWindow::kSkyPlot);
    WorkOn(application, *world, "plan", MainWindow::kPlan);
    WorkOn(application, *world, "tilt", MainWindow::kTilt);
    simulator::FaultRule silent;
    silent.requestType = kTiltRequest;
    world->receiver->AddFault(silent);
    WorkOn(application, *world, "tilt, silent", MainWindow::kTilt);
    Ask([&] {
        world.reset();
        QApplication::quit();
        return true;
    });
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
    std::thread user([&] { bench::WorkOnAll(application); });
    const int code = QApplication::exec();
    user.join();
    return code;
}
