#include "app/Picture.h"

#include "app/Controller.h"
#include "core/link/RecvInfo.h"
#include "core/platform/Folders.h"
#include "core/settings/HostReg.h"
#include "core/tilt/SignalChoice.h"
#include "core/tilt/TiltSettings.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltCalibDlg.h"
#include "ui/tilt/TiltStatusDlg.h"
#include "ui/tilt/TrackingDlg.h"

#include <QEventLoop>
#include <QGridLayout>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace fieldcore {

namespace {

Folders FoldersBelow(const std::string& home)
{
    FolderSources sources;
    sources.variable = [home](const std::string& name) {
        return name == "HOME" ? std::optional(home) : std::nullopt;
    };
    return Folders(sources);
}

/// A simulated receiver beside the session's, a channel to it, and settings that are not the
/// user's.
struct Bench
{
    explicit Bench(const std::string& sensor) : isSilent(sensor.find("drop") != std::string::npos)
    {
        constexpr const char* kReceiver =
            "model 3051\noptions l2 rtk l5 l2c glonass galileo qzss tilt\nalmanacs 31\n";
        std::string error;
        auto scenario = simulator::ParseScenario(kReceiver + sensor, error);
        if (scenario) {
            simulator = std::make_unique<simulator::Simulator>(*scenario);
            if (simulator->Start(error)) {
                command.OpenPort(simulator->PortPath());
            }
        }
    }

    const bool isSilent;
    QTemporaryDir folder;
    SettingsRoots roots{FoldersBelow(folder.path().toStdString())};
    std::unique_ptr<simulator::Simulator> simulator;
    CCommand command{{.roots = &roots}};
};

std::shared_ptr<Bench> MakeBench(const char* sensor)
{
    return std::make_shared<Bench>(sensor);
}

/// The receiver is asked, and answers.
void LetSomeTimePass(int ms = 700) // of a calibration of two seconds
{
    QEventLoop wait;
    QTimer::singleShot(ms, &wait, &QEventLoop::quit);
    wait.exec();
}

/// A page that has asked its receiver.
template <typename Page>
std::unique_ptr<Page> Answered(Bench& bench)
{
    auto page = std::make_unique<Page>(&bench.command);
    page->show();
    constexpr int kUntilSilent = 2200; // ms
    LetSomeTimePass(bench.isSilent ? kUntilSilent : 700);
    return page;
}

/// The status after a run that ended so.
Picture Status(const char* name, const char* sensor, LastCalibrationRun lastRun)
{
    const auto bench = MakeBench(sensor);
    return {QString::fromLatin1(name), [bench, lastRun] {
                const LastCalibrationRun before = std::exchange(TiltSettings::LastRun(), lastRun);
                auto dialog = Answered<TiltStatusDlg>(*bench);
                TiltSettings::LastRun() = before;
                return dialog;
            }};
}

/// A calibration that has got some way, and perhaps was cancelled then.
Picture Calibrating(const char* name, bool isCancelled)
{
    const auto bench = MakeBench("tilt-calibration succeeds 2\n");
    return {QString::fromLatin1(name), [bench, isCancelled] {
                auto dialog = std::make_unique<TiltCalibDlg>(&bench->command);
                dialog->show();
                LetSomeTimePass();
                if (isCancelled) {
                    dialog->CancelButton()->click();
                }
                return dialog;
            }};
}

/// All signals are there, some are chosen, and an application file holds them.
Picture LockedSignals()
{
    const auto bench = MakeBench("signals-locked yes\n");
    SignalSet chosen;
    for (const Signal signal : {Signal::Glonass, Signal::Qzss, Signal::L5}) {
        chosen.Set(signal, true);
    }
    SaveSignals(HostReg(bench->roots), GetRecvTypeNum(bench->command), chosen);
    return {QStringLiteral("signals-locked"), [bench] { return Answered<SetSignal>(*bench); }};
}

TiltReading Leaning(double t1Rad, double t2Rad)
{
    TiltReading reading;
    reading.state = 1;
    reading.sensorPresent = true;
    reading.calibrated = true;
    reading.t1Rad = t1Rad;
    reading.t2Rad = t2Rad;
    reading.tiltRad = std::hypot(t1Rad, t2Rad);
    return reading;
}

std::unique_ptr<BubbleView> View(const TiltReading& reading,
                                 BubbleView::Source source = BubbleView::Source::Reading)
{
    constexpr BubbleRules kRules{40.0, 0.02, 1.8};
    auto view = std::make_unique<BubbleView>();
    view->Show(PictureOf(reading, kRules), source);
    return view;
}

Picture Bubble(const char* name, const TiltReading& reading,
               BubbleView::Source source = BubbleView::Source::Reading)
{
    return {QString::fromLatin1(name), [reading, source] { return View(reading, source); }};
}

/// From the rim, out of tolerance, to the middle.
std::unique_ptr<QWidget> Levelling()
{
    constexpr std::pair<double, double> kSteps[] = {{0.08, -0.09},   {0.04, -0.03}, {0.02, -0.015},
                                                    {0.012, -0.009}, {0.008, 0.0},  {0.0, 0.0}};
    auto series = std::make_unique<QWidget>();
    auto* const grid = new QGridLayout(series.get());
    for (int i = 0; i < static_cast<int>(std::size(kSteps)); ++i) {
        grid->addWidget(View(Leaning(kSteps[i].first, kSteps[i].second)).release(), i / 3, i % 3);
    }
    return series;
}

/// The bubble as small as its window is, over the lower right corner of the status.
std::unique_ptr<QWidget> SmallBubble(const std::shared_ptr<Bench>& bench)
{
    auto screen = std::make_unique<QWidget>();
    auto* const layers = new QGridLayout(screen.get());
    layers->setContentsMargins({});
    auto* const under = new TiltStatusDlg(&bench->command);
    under->setWindowFlags(Qt::Widget);
    BubbleView* const view = View(Leaning(0.004, 0.012)).release();
    view->setFixedSize(kVialWidth, kVialWidth);
    view->setAutoFillBackground(true);
    layers->addWidget(under, 0, 0);
    layers->addWidget(view, 0, 0, Qt::AlignRight | Qt::AlignBottom);
    return screen;
}

} // namespace

Pictures TiltPictures(Controller& controller)
{
    const auto bench = MakeBench("");
    Pictures screens{
        {QStringLiteral("signals"), [bench] { return Answered<SetSignal>(*bench); }},
        LockedSignals(),
        {QStringLiteral("tracking"),
         [&controller] { return std::make_unique<TrackingDlg>(&controller.Command()); }},
        {QStringLiteral("tilt-no-receiver"),
         [] { return std::make_unique<TiltStatusDlg>(nullptr); }},
        {QStringLiteral("signals-no-receiver"),
         [] { return std::make_unique<SetSignal>(nullptr); }},
        Status("tilt-no-sensor", "tilt-present no\n", {}),
        Status("tilt-silent", "fault drop on C8\n", {}),
        Status("tilt-done", "tilt-calibrated 0.5\n", {}),
        Status("tilt-failed", "tilt-calibrated no\n", {false, true}),
        Status("tilt-aborted", "tilt-calibrated no\n", {true, false}),
        Status("tilt-expired", "tilt-calibrated 800\n", {}),
        Calibrating("tilt-calibrating", false),
        Calibrating("tilt-cancelling", true),
        {QStringLiteral("bubble-window"), [bench] { return SmallBubble(bench); }},
        {QStringLiteral("bubble-levelling"), Levelling},
    };
    TiltReading uncalibrated = Leaning(0.0, 0.0);
    uncalibrated.calibrated = false;
    screens.push_back(Bubble("bubble-not-ready", TiltReading()));
    screens.push_back(Bubble("bubble-needs-calibration", uncalibrated));
    screens.push_back(
        Bubble("bubble-stale", Leaning(0.008, -0.006), BubbleView::Source::NotReceived));
    screens.push_back(Bubble("bubble-no-sensor", {}, BubbleView::Source::NoSensor));
    return screens;
}

} // namespace fieldcore
