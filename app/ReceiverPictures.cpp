#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "core/equipment/FileDestination.h"
#include "core/equipment/FilePlan.h"
#include "core/link/Connect.h"
#include "core/platform/FastClock.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/equipment/RecvFilePage.h"
#include "ui/equipment/RecvFileSaveDlg.h"
#include "ui/equipment/StatusHistoryView.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/TransferPanel.h"
#include "ui/equipment/Version.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltCalibDlg.h"
#include "ui/tilt/TiltStatusDlg.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QPushButton>

#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace fieldcore {

namespace {

using namespace std::chrono_literals;

/// A simulated receiver beside the session's, and a channel to it.
struct Bench
{
    explicit Bench(const std::optional<simulator::Scenario>& scenario,
                   const Clock& clock = SystemClock::Instance(), SettingsRoots* roots = nullptr)
        : simulator(scenario.value_or(simulator::Scenario()), clock),
          command({&SilentHost::Instance(), &clock, nullptr, nullptr, roots})
    {
        std::string error;
        if (simulator.Start(error)) {
            command.OpenPort(simulator.PortPath());
        }
    }

    simulator::Simulator simulator;
    CCommand command; // behind the simulator, whose port it opens
};

/// @param more  lines of its scenario
std::shared_ptr<Bench> TiltBench(SettingsRoots& roots, const std::string& more = {})
{
    std::string error;
    return std::make_shared<Bench>(
        simulator::ParseScenario(
            "model 3051\noptions l2 rtk l5 l2c glonass galileo qzss tilt\nalmanacs 31\n" + more,
            error),
        SystemClock::Instance(), &roots);
}

void LetTimePass(std::chrono::milliseconds time)
{
    WaitUntil([] { return false; }, time);
}

/// Its receiver is asked, and answers.
template <typename Page>
std::unique_ptr<Page> Shown(std::unique_ptr<Page> page, std::chrono::milliseconds time = 700ms)
{
    page->show();
    LetTimePass(time);
    return page;
}

// The receiver's files.

/// Listed. @param page  0 live files, 1 recycle bin
std::unique_ptr<CRecvFileMan> FileSheet(CCommand& command, unsigned page)
{
    auto sheet = std::make_unique<CRecvFileMan>(&command, 0, nullptr, nullptr, page);
    sheet->Open();
    sheet->show();
    sheet->GetFileData();
    QCoreApplication::processEvents();
    return sheet;
}

/// In the middle of a download.
std::unique_ptr<QWidget> Progress(CCommand& command)
{
    auto sheet = FileSheet(command, 0);
    auto* const page = sheet->findChild<RecvFilePage*>();
    page->List().selectAll();
    page->HideButtons();
    sheet->findChild<TransferPanel*>()->Show({2,
                                              3,
                                              L"A0314B00.Q01",
                                              97000,
                                              182240,
                                              {},
                                              145213,
                                              1134965,
                                              11391.0,
                                              std::chrono::seconds(87)});
    return sheet;
}

std::unique_ptr<QWidget> FileError()
{
    PlannedFile file;
    file.outcome = FileOutcome::DiskFull;
    const std::wstring words = FormatText(text::kFileFailure, Text(text::kDownloadFailed),
                                          L"A0314B00.Q01", file.CauseText().c_str());
    return std::make_unique<MessageDlg>(ToQt(words), UiText(text::kDownloadFailedCaption),
                                        BoxStyle{BoxButtons::Ok, BoxIcon::Stop});
}

// How a receiver is.

/// What an hour with a simulated receiver leaves behind.
struct SimulatedHour
{
    Receiver receiver;
    StatusHistory history;
    Clock::Duration now{}; ///< of the clock that they are timed by
    Clock::UtcTime utc;
};

/// Lives through an hour with a simulated receiver, whose satellites move and whose battery drains,
/// on a clock of its own that leaps from round to round. Takes some seconds.
SimulatedHour LiveAnHour()
{
    constexpr int kLeaps = 356;
    constexpr std::chrono::seconds kStep{10};
    constexpr int kRounds = 16; // at their usual pace, to end with a fresh battery
    std::string error;
    FastClock clock(1.0, std::chrono::sys_days(2026y / 3 / 19) + 3h);
    Bench bench(simulator::ParseScenario("model 3017\nserial 00301701\noptions l2 rtk glonass\n"
                                         "almanacs 31\nmask 15\nbattery 34 16\npower-source 1\n",
                                         error),
                clock);
    ReceiverLink link(bench.command);
    StatusPoll poll(bench.command, link, &clock);
    ConnectTarget target;
    target.devicePath = bench.simulator.PortPath();
    CConnect connect(bench.command, 0, target); // its port is open: it asks nothing
    connect.SupportAllTypes();
    link.Adopt(connect);
    for (int round = 0; round < kLeaps + kRounds; ++round) {
        clock.Leap(round < kLeaps ? kStep : StatusPoll::kInterval);
        link.Tick();
        poll.Tick();
    }
    return {link.Heard(), poll.History(), clock.Steady(), clock.Utc()};
}

std::unique_ptr<QWidget> Status(const SimulatedHour& hour, Clock::Duration later, LinkState link)
{
    auto page = std::make_unique<StatusPage>();
    Receiver receiver = hour.receiver;
    receiver.link = link;
    page->Show(receiver, hour.history, {hour.now + later, hour.utc + later});
    return page;
}

std::unique_ptr<QWidget> History(const SimulatedHour& hour)
{
    auto view = std::make_unique<StatusHistoryView>();
    view->Show(hour.history, hour.now);
    return view;
}

std::unique_ptr<QWidget> LowBattery()
{
    return std::make_unique<MessageDlg>(ToQt(FormatText(text::kBatteryLow, 20)),
                                        UiText(text::kBatteryCaption),
                                        BoxStyle{BoxButtons::Ok, BoxIcon::Exclamation});
}

// Its tilt.

/// A calibration that has got some way.
std::unique_ptr<TiltCalibDlg> Calibrating(Bench& bench)
{
    return Shown(std::make_unique<TiltCalibDlg>(&bench.command)); // of two seconds
}

TiltReading Leaning(double t1Rad, double t2Rad, bool isCalibrated = true)
{
    TiltReading reading;
    reading.state = 1;
    reading.sensorPresent = true;
    reading.calibrated = isCalibrated;
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

/// The bubble as small as its window is, over the lower right corner of @p under.
std::unique_ptr<QWidget> SmallBubble(std::unique_ptr<QWidget> under)
{
    auto screen = std::make_unique<QWidget>();
    auto* const layers = new QGridLayout(screen.get());
    layers->setContentsMargins({});
    under->setWindowFlags(Qt::Widget);
    BubbleView* const view = View(Leaning(0.004, 0.012)).release();
    view->setFixedSize(kVialWidth, kVialWidth);
    view->setAutoFillBackground(true);
    layers->addWidget(under.release(), 0, 0);
    layers->addWidget(view, 0, 0, Qt::AlignRight | Qt::AlignBottom);
    return screen;
}

} // namespace

Pictures ReceiverPictures(Controller& controller)
{
    std::string error;
    const auto files = std::make_shared<Bench>(
        simulator::LoadScenario("lettered-power", error)); // which has a recycle bin
    const auto destination = std::make_shared<FileDestination>(1134965, 1, 115200);
    static const SimulatedHour hour = LiveAnHour(); // once for all pictures
    SettingsRoots& roots = controller.Roots();
    const auto tilt = TiltBench(roots);
    // The status after a run that ended so.
    const auto status = [&roots](const char* sensor, LastCalibrationRun lastRun = {},
                                 std::chrono::milliseconds time = 700ms) {
        return [lastRun, time, bench = TiltBench(roots, sensor)] {
            const LastCalibrationRun before = std::exchange(TiltSettings::LastRun(), lastRun);
            auto dialog = Shown(std::make_unique<TiltStatusDlg>(&bench->command), time);
            TiltSettings::LastRun() = before;
            return dialog;
        };
    };
    return {
        {"files", [files] { return FileSheet(files->command, 0); }},
        {"files-bin", [files] { return FileSheet(files->command, 1); }},
        {"files-progress", [files] { return Progress(files->command); }},
        {"files-destination",
         [destination] { return std::make_unique<CRecvFileSaveDlg>(*destination); }},
        {"files-error", FileError},

        {"status", [] { return Status(hour, {}, LinkState::Connected); }},
        {"status-stale", [] { return Status(hour, 3min, LinkState::Connected); }},
        {"status-lost", [] { return Status(hour, 3min, LinkState::Lost); }},
        {"status-empty", [] { return std::make_unique<StatusPage>(); }},
        {"status-history", [] { return History(hour); }},
        {"version", [&] { return std::make_unique<CVersion>(&controller.Command()); }},
        {"battery-low", LowBattery},

        {"signals", [tilt] { return Shown(std::make_unique<SetSignal>(&tilt->command)); }},
        {"signals-locked", // some are chosen
         [&controller, bench = TiltBench(roots, "signals-locked yes\n")] {
             SignalSet chosen;
             for (const Signal signal : {Signal::Glonass, Signal::Qzss, Signal::L5}) {
                 chosen.Set(signal, true);
             }
             SaveSignals(controller.Reg(), GetRecvTypeNum(bench->command), chosen);
             return Shown(std::make_unique<SetSignal>(&bench->command));
         }},
        {"signals-no-receiver", [] { return std::make_unique<SetSignal>(nullptr); }},
        {"tilt-no-receiver", [] { return std::make_unique<TiltStatusDlg>(nullptr); }},
        {"tilt-no-sensor", status("tilt-present no\n")},
        {"tilt-silent", status("fault drop on C8\n", {}, 2200ms)},
        {"tilt-done", status("tilt-calibrated 0.5\n")},
        {"tilt-failed", status("tilt-calibrated no\n", {false, true})},
        {"tilt-aborted", status("tilt-calibrated no\n", {true, false})},
        {"tilt-expired", status("tilt-calibrated 800\n")},
        {"tilt-calibrating",
         [bench = TiltBench(roots, "tilt-calibration succeeds 2\n")] {
             return Calibrating(*bench);
         }},
        {"tilt-cancelling",
         [bench = TiltBench(roots, "tilt-calibration succeeds 2\n")] {
             auto dialog = Calibrating(*bench);
             bench->simulator.SetScripted([](auto) { return std::vector<std::uint8_t>(); });
             dialog->CancelButton()->click(); // and the receiver takes its time
             return dialog;
         }},
        {"bubble-window",
         [tilt] { return SmallBubble(std::make_unique<TiltStatusDlg>(&tilt->command)); }},
        {"bubble-levelling", Levelling},
        {"bubble-not-ready", [] { return View({}); }},
        {"bubble-needs-calibration", [] { return View(Leaning(0.0, 0.0, false)); }},
        {"bubble-stale",
         [] { return View(Leaning(0.008, -0.006), BubbleView::Source::NotReceived); }},
        {"bubble-no-sensor", [] { return View({}, BubbleView::Source::NoSensor); }},
    };
}

} // namespace fieldcore
