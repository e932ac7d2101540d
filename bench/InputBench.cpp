// Whether the controller takes what the user taps and types while it asks its receiver how it is: a
// hand that never looks works on the real windows, before a simulated receiver at 9600 bit/s that
// thinks for a while about each answer. A line for each page; --json: one array.

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
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace fieldcore::bench {
namespace {

using namespace std::chrono_literals;

constexpr int kPresses = 60;
constexpr int kTolerances = 12;
constexpr auto kStep = 40ms; // from one tap or digit to the next
constexpr auto kHeld = 20ms; // a finger on a button
constexpr std::uint32_t kBaudRate = 9600;
constexpr int kLongestMs = 150; // that an answer is thought about
constexpr int kTiltRequest = 0xC8;

struct Page
{
    const char* name;
    int choice; // 0: the main window itself
};
constexpr Page kPages[] = {
    {"home", 0},
    {"status", text::kAppStatusButton},
    {"sky", text::kAppSatellites},
    {"plan", text::kAppPlan},
    {"tilt", text::kAppTilt},
};

struct Result
{
    const char* page = "";
    int latencyMs = 0;
    bool isSilent = false;
    int taps = 0;
    int digits = 0;
    int tolerances = -1; // negative: there is no box
    qint64 longestBlockMs = 0;
    qint64 opensInMs = -1; // negative: it did not
};

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

/// Sees when the event loop of a page is free: when a timer runs off in it, and not in the middle
/// of something else that only lets events through meanwhile.
class Application : public QApplication
{
public:
    Application(int& argc, char** argv) : QApplication(argc, argv)
    {
        m_beat.setTimerType(Qt::PreciseTimer);
        connect(&m_beat, &QTimer::timeout, this, &Application::Beat);
        m_beat.start(1);
    }

    /// Shows a page as soon as its user can. @param isLoop  the page runs a loop of its own
    void Open(const std::function<void()>& show, bool isLoop)
    {
        m_painted = nullptr;
        m_opensInMs = -1;
        m_watch.start();
        ShowWhenFree(show, isLoop);
    }
    /// What lies under the page counts again.
    void Leave()
    {
        m_level = 1;
        m_depthOfLoop = 1;
    }
    /// Nothing is going on in the loop of the page.
    [[nodiscard]] bool IsFree() const
    {
        return m_depth == m_depthOfLoop && QThread::currentThread()->loopLevel() == m_level;
    }
    /// Begins to look for the longest block.
    void Begin()
    {
        m_last = m_watch.elapsed() - CrowdedOutMs();
        m_longest = 0;
    }
    [[nodiscard]] qint64 LongestBlockMs() const { return m_longest; }
    /// From Open() on until its page was painted and its loop free; negative: not yet.
    [[nodiscard]] qint64 OpensInMs() const { return m_opensInMs; }

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
        if (event->type() == QEvent::Paint && receiver == Front()) {
            m_painted = receiver;
        }
        ++m_depth;
        const bool isDone = QApplication::notify(receiver, event);
        --m_depth;
        return isDone;
    }

private:
    void ShowWhenFree(const std::function<void()>& show, bool isLoop)
    {
        if (!IsFree()) {
            QTimer::singleShot(1, this, [this, show, isLoop] { ShowWhenFree(show, isLoop); });
            return;
        }
        m_level += isLoop ? 1 : 0;
        m_depthOfLoop += isLoop ? 1 : 0;
        show();
    }
    void Beat()
    {
        if (!IsFree()) {
            return;
        }
        const qint64 now = m_watch.elapsed();
        const qint64 own = now - CrowdedOutMs();
        m_longest = std::max(m_longest, own - m_last);
        m_last = own;
        if (m_opensInMs < 0 && m_painted != nullptr && m_painted == Front()) {
            m_opensInMs = now;
        }
    }

    QTimer m_beat;
    QElapsedTimer m_watch; // since the page was opened
    int m_depth = 0;       // of events being handled
    int m_depthOfLoop = 1; // at which the loop of the page handles its own
    int m_level = 1;
    const QObject* m_painted = nullptr;
    qint64 m_last = 0; // without what it was crowded out
    qint64 m_longest = 0;
    qint64 m_opensInMs = -1;
};

/// Does @p act in the program's thread, when it next looks for events, and waits for it.
template <typename Act>
auto Ask(Act act)
{
    using Answer = decltype(act());
    std::conditional_t<std::is_void_v<Answer>, int, Answer> answer{};
    const auto store = [&] {
        if constexpr (std::is_void_v<Answer>) {
            act();
        } else {
            answer = act();
        }
    };
    QMetaObject::invokeMethod(qApp, store, Qt::BlockingQueuedConnection);
    return answer;
}

bool WaitFor(std::chrono::milliseconds most, const std::function<bool()>& isDone)
{
    const auto end = std::chrono::steady_clock::now() + most;
    while (!Ask(isDone)) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

/// Hands @p event to the window in front as the window system does.
void Deliver(QEvent& event)
{
    if (const QWidget* const front = Application::Front()) {
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(front->windowHandle(), &event);
    }
}

/// What comes to the program at a time of its own: it does not wait until it is looked at.
void Post(const std::function<void()>& act)
{
    QMetaObject::invokeMethod(qApp, act, Qt::QueuedConnection);
}

void PostMouse(QEvent::Type type, const QPointer<QWidget>& on)
{
    Post([type, on] {
        if (on != nullptr && on->window() == Application::Front()) {
            const QPointF at = on->mapTo(on->window(), QPointF(on->rect().center()));
            QMouseEvent mouse(type, at, on->window()->mapToGlobal(at), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            Deliver(mouse);
        }
    });
}

void Tap(const QPointer<QWidget>& on)
{
    PostMouse(QEvent::MouseButtonPress, on);
    std::this_thread::sleep_for(kHeld);
    PostMouse(QEvent::MouseButtonRelease, on);
}

void Type(char sign)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        Post([type, sign] {
            QKeyEvent key(type, sign, Qt::NoModifier, QString(QLatin1Char(sign)));
            Deliver(key);
        });
    }
}

/// A button and a box on the page in front, where everything that comes is counted.
struct Probe
{
    QPointer<QWidget> button;
    QPointer<QLineEdit> box;
    int taps = 0;

    void Lay(QWidget* page)
    {
        auto* const made = new QPushButton(page);
        made->setFocusPolicy(Qt::NoFocus);
        QObject::connect(made, &QPushButton::clicked, made, [this] { ++taps; });
        button = made;
        box = new QLineEdit(page);
        button->setGeometry(0, 0, 120, 60);
        box->setGeometry(120, 0, 360, 60);
        for (QWidget* const part : {button.data(), static_cast<QWidget*>(box.data())}) {
            part->show();
            part->raise();
        }
        box->setFocus();
    }
};

/// A control of the page in front by what it says, or is called.
template <typename Control>
QPointer<QWidget> Find(const QString& words)
{
    for (Control* const one : Application::Front()->findChildren<Control*>()) {
        if (one->accessibleName() == words || one->property("text").toString() == words) {
            return one;
        }
    }
    return nullptr;
}

/// The controller before a receiver that takes its time to think, and the user's hand on it. The
/// hand has a thread of its own; what is said to be the program's is called in that.
class World
{
public:
    explicit World(Application& application) : m_application(application) {}

    std::vector<Result> Work(int latencyMs);
    /// Request frames from the beginning of the connection up to the first complete status; 0: it
    /// never was.
    [[nodiscard]] int Frames() const { return m_frames; }

private:
    bool Begin(int latencyMs); // the program's
    void LookForStatus();      // the program's
    Result WorkOn(const Page& page, int latencyMs, bool isSilent);
    void ClearTheWay();
    int EnterTolerances();

    Application& m_application;
    std::unique_ptr<simulator::Simulator> m_receiver;
    std::unique_ptr<Controller> m_controller;
    std::unique_ptr<Session> m_session;
    int m_frames = 0;
};

bool World::Begin(int latencyMs)
{
    std::string error;
    auto scenario = simulator::LoadScenario("tilted", error).value_or(simulator::Scenario());
    scenario.baudRate = kBaudRate;
    scenario.pacing = simulator::Pacing::Baud;
    scenario.latencyMs = latencyMs;
    m_receiver = std::make_unique<simulator::Simulator>(scenario);
    if (!m_receiver->Start(error)) {
        return false;
    }
    m_controller = std::make_unique<Controller>(AppOptions());
    m_controller->Begin();
    m_controller->Choose({m_receiver->PortPath(), kBaudRate});
    m_session = std::make_unique<Session>(*m_controller);
    QObject::connect(m_controller.get(), &Controller::Changed, m_controller.get(),
                     [this] { LookForStatus(); });
    m_application.Open([this] { m_session->Begin(); }, false);
    return true;
}

/// The status is complete when it has come, and with it time and fix; what was asked behind the
/// last of them does not count.
void World::LookForStatus()
{
    if (m_frames > 0 || !m_controller->Link().Heard().status) {
        return;
    }
    constexpr std::uint8_t kTime = 0x14;
    constexpr std::uint8_t kPosition = 0x34;
    constexpr std::size_t kType = 2;
    int sent = 0;
    bool asked[2] = {};
    for (const std::vector<std::uint8_t>& request : m_receiver->Requests()) {
        if (request.size() > kType && request[0] == kStx && !(asked[0] && asked[1])) {
            ++sent;
            asked[0] |= request[kType] == kTime;
            asked[1] |= request[kType] == kPosition;
        }
    }
    m_frames = asked[0] && asked[1] ? sent : 0;
}

std::vector<Result> World::Work(int latencyMs)
{
    std::vector<Result> results;
    if (Ask([&] { return Begin(latencyMs); })) {
        WaitFor(10s, [this] { return m_application.OpensInMs() >= 0; });
        ClearTheWay(); // which connects
        WaitFor(30s, [this] { return m_frames > 0; });
        for (const Page& page : kPages) {
            results.push_back(WorkOn(page, latencyMs, false));
        }
        if (latencyMs == kLongestMs) {
            simulator::FaultRule silent;
            silent.requestType = kTiltRequest;
            m_receiver->AddFault(silent);
            results.push_back(WorkOn(kPages[std::size(kPages) - 1], latencyMs, true));
        }
    }
    Ask([this] {
        m_session.reset();
        m_controller.reset();
    });
    return results;
}

Result World::WorkOn(const Page& page, int latencyMs, bool isSilent)
{
    Result result{page.name, latencyMs, isSilent};
    if (page.choice != 0) {
        Ask([this, page] {
            const auto choose = [this, page] { Q_EMIT m_session->Window().Chosen(page.choice); };
            QTimer::singleShot(0, qApp, [=, this] { m_application.Open(choose, true); });
        });
    }
    if (WaitFor(30s, [this] { return m_application.OpensInMs() >= 0; })) {
        result.opensInMs = Ask([this] { return m_application.OpensInMs(); });
    }
    if (page.choice == text::kAppTilt) {
        Tap(Ask([] { return Find<QPushButton>(UiText(text::kTiltBubble)); }));
        std::this_thread::sleep_for(500ms);
    }
    Probe probe;
    Ask([&] {
        probe.Lay(Application::Front());
        m_application.Begin();
    });
    std::string sent;
    for (int i = 0; i < kPresses; ++i) {
        Tap(probe.button);
        std::this_thread::sleep_for(kStep - kHeld);
        sent += static_cast<char>('0' + i * 7 % 10);
        Type(sent.back());
        std::this_thread::sleep_for(kStep);
    }
    const auto come = [&] { return probe.box != nullptr ? probe.box->text() : QString(); };
    WaitFor(3s, [&] { return probe.taps == kPresses && come().size() == kPresses; });
    result.longestBlockMs = Ask([this] { return m_application.LongestBlockMs(); });
    result.taps = Ask([&] { return probe.taps; });
    const std::string typed = Ask(come).toStdString(); // the first that is missing spoils the rest
    result.digits = static_cast<int>(std::ranges::mismatch(sent, typed).in1 - sent.begin());
    if (page.choice == text::kAppTilt) {
        result.tolerances = EnterTolerances();
    }
    Ask([&] {
        delete probe.button;
        delete probe.box;
    });
    ClearTheWay();
    return result;
}

/// Leaves what lies over the main window, and connects if need be.
void World::ClearTheWay()
{
    int turns = 0;
    WaitFor(20s, [&] {
        QWidget* const page = QApplication::activeModalWidget();
        constexpr int kPatience = 300; // then it is a box that nobody has asked for
        if (page != nullptr && (m_application.IsFree() || ++turns > kPatience)) {
            page->close();
        }
        return page == nullptr;
    });
    Ask([this] {
        m_application.Leave();
        std::wstring fault;
        if (m_controller->Link().State() != LinkState::Connected &&
            !m_controller->ConnectQuietly(fault)) {
            std::fprintf(stderr, "input_bench: not connected\n");
        }
    });
}

int World::EnterTolerances()
{
    const QPointer<QLineEdit> box = qobject_cast<QLineEdit*>(
        Ask([] { return Find<QLineEdit>(UiText(text::kTiltToleranceLabel)); }));
    int entered = 0;
    for (int i = 0; box != nullptr && i < kTolerances; ++i) {
        Ask([&] {
            box->clear();
            box->setFocus();
        });
        for (const char sign : std::string("0.125")) {
            Type(sign);
            std::this_thread::sleep_for(kStep);
        }
        entered += WaitFor(500ms, [&] { return box->text() == QStringLiteral("0.125"); }) ? 1 : 0;
    }
    return entered;
}

void Print(const Result& result, bool isJson)
{
    const char* const form =
        isJson ? "{\"page\":\"%s\",\"latencyMs\":%d,\"silent\":%s,\"tapsSent\":%d,"
                 "\"tapsArrived\":%d,\"digitsSent\":%d,\"digitsArrived\":%d,"
                 "\"longestBlockMs\":%lld,\"opensInMs\":%lld"
               : "%-7s %3d ms, silent %-5s  taps %d: %2d  digits %d: %2d  block %5lld ms  opens "
                 "%5lld ms";
    std::printf(form, result.page, result.latencyMs, result.isSilent ? "true" : "false", kPresses,
                result.taps, kPresses, result.digits, result.longestBlockMs, result.opensInMs);
    if (result.tolerances >= 0) {
        std::printf(isJson ? ",\"tolerancesSent\":%d,\"tolerancesArrived\":%d" : "  0.125 %d: %2d",
                    kTolerances, result.tolerances);
    }
    std::printf(isJson ? "},\n" : "\n");
    std::fflush(stdout);
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
    QApplication::setQuitOnLastWindowClosed(false); // one controller follows another
    TouchStyle::Install();
    const bool isJson = argc > 1 && std::strcmp(argv[1], "--json") == 0;
    std::thread user([&] {
        int frames = 0;
        std::fputs(isJson ? "[\n" : "", stdout);
        for (const int latencyMs : {0, 60, bench::kLongestMs}) {
            bench::World world(application);
            for (const bench::Result& result : world.Work(latencyMs)) {
                bench::Print(result, isJson);
            }
            frames = std::max(frames, world.Frames());
        }
        std::printf(isJson ? "{\"page\":\"connect\",\"frames\":%d}\n]\n" : "connect %d frames\n",
                    frames);
        bench::Post([] { QApplication::quit(); });
    });
    const int code = QApplication::exec();
    user.join();
    return code;
}
