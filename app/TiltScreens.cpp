#include "app/TiltScreens.h"

#include "app/Controller.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltCalibDlg.h"
#include "ui/tilt/TiltStatusDlg.h"
#include "ui/tilt/TrackingDlg.h"

#include <cmath>
#include <iterator>
#include <utility>

namespace fieldcore {

namespace {

/// A simulated receiver and a channel to it.
struct Bench
{
    std::unique_ptr<simulator::Simulator> simulator;
    std::unique_ptr<CCommand> command;
};

/// A receiver beside the session's.
std::shared_ptr<Bench> MakeBench(const char* scenarioName, bool isLocked)
{
    std::string error;
    auto scenario = simulator::LoadScenario(scenarioName, error);
    auto bench = std::make_shared<Bench>();
    bench->command = std::make_unique<CCommand>();
    if (scenario) {
        scenario->signalsLocked = isLocked;
        bench->simulator = std::make_unique<simulator::Simulator>(*scenario);
        if (bench->simulator->Start(error)) {
            bench->command->OpenPort(bench->simulator->PortPath());
        }
    }
    return bench;
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

Picture Bubble(const QString& name, const TiltReading& reading)
{
    return {name, [reading]() -> std::unique_ptr<QWidget> {
                constexpr BubbleRules kRules{40.0, 0.02, 1.8};
                auto view = std::make_unique<BubbleView>();
                view->Show(PictureOf(reading, kRules), false);
                return view;
            }};
}

} // namespace

std::vector<Picture> TiltScreens(Controller& controller)
{
    const auto bench = MakeBench("tilted", false);
    const auto locked = MakeBench("tilted", true);
    const CReg& reg = controller.Reg();
    SettingsRoots& roots = controller.Roots();
    std::vector<Picture> screens{
        {QStringLiteral("signals"),
         [bench, &reg]() -> std::unique_ptr<QWidget> {
             return std::make_unique<SetSignal>(bench->command.get(), reg);
         }},
        {QStringLiteral("signals-locked"),
         [locked, &reg]() -> std::unique_ptr<QWidget> {
             return std::make_unique<SetSignal>(locked->command.get(), reg);
         }},
        {QStringLiteral("tracking"),
         [&roots]() -> std::unique_ptr<QWidget> { return std::make_unique<TrackingDlg>(roots); }},
        {QStringLiteral("tilt-status"),
         [bench, &reg]() -> std::unique_ptr<QWidget> {
             return std::make_unique<TiltStatusDlg>(bench->command.get(), reg);
         }},
        {QStringLiteral("tilt-no-receiver"),
         [&reg]() -> std::unique_ptr<QWidget> {
             return std::make_unique<TiltStatusDlg>(nullptr, reg);
         }},
        {QStringLiteral("tilt-calibrating"),
         [bench]() -> std::unique_ptr<QWidget> {
             auto dialog = std::make_unique<TiltCalibDlg>(bench->command.get());
             dialog->show();
             return dialog;
         }},
    };
    TiltReading uncalibrated = Leaning(0.0, 0.0);
    uncalibrated.calibrated = false;
    screens.push_back(Bubble(QStringLiteral("bubble-not-ready"), TiltReading()));
    screens.push_back(Bubble(QStringLiteral("bubble-needs-calibration"), uncalibrated));
    // A levelling: from the rim, out of tolerance, to the middle.
    const std::pair<double, double> steps[] = {
        {0.08, -0.09}, {0.04, -0.03}, {0.02, -0.015}, {0.008, -0.006}, {0.0, 0.0}};
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        screens.push_back(Bubble(QStringLiteral("bubble-levelling-%1").arg(i + 1),
                                 Leaning(steps[i].first, steps[i].second)));
    }
    return screens;
}

} // namespace fieldcore
