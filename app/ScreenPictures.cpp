#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "core/platform/Utf8.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"
#include "ui/link/FramesView.h"
#include "ui/tilt/TrackingDlg.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <span>

namespace fieldcore {

namespace {

struct Look
{
    const char* name;
    QSize size;
    Theme::Kind theme;
};

constexpr Look kLooks[] = {
    {"480x640-daylight", {480, 640}, Theme::Kind::Daylight},
    {"480x640-dark", {480, 640}, Theme::Kind::Dark},
    {"1280x800-daylight", {1280, 800}, Theme::Kind::Daylight},
    {"1280x800-dark", {1280, 800}, Theme::Kind::Dark},
    // On the controller with the taller screen.
    {"q77-480x800-daylight", {480, 800}, Theme::Kind::Daylight},
    {"q77-480x640-daylight", {480, 640}, Theme::Kind::Daylight},
};

bool Grab(QWidget& window, const char* name, const Look& look, const QDir& folder)
{
    if (window.minimumWidth() != window.maximumWidth()) { // a message has its own size
        window.resize(look.size);
    }
    window.show();
    for (int i = 0; i < 3; ++i) { // some fill their lists behind the first painting
        QCoreApplication::processEvents();
    }
    const QString file = folder.filePath(
        QStringLiteral("%1-%2.png").arg(QLatin1String(name), QLatin1String(look.name)));
    const bool saved = window.grab().save(file);
    if (!saved) {
        std::fprintf(stderr, "fieldcore: %s cannot be written.\n", qPrintable(file));
    }
    return saved;
}

/// What the controller is set to.
Pictures SettingsPictures(Controller& controller)
{
    const auto ports = [&controller](int count) {
        return [&controller, count] {
            CComPort::Surroundings world = controller.PortsWorld();
            world.ports = count;
            return std::make_unique<CComPort>(&controller.Command(), controller.ReceiverPort(),
                                              UiText(text::kComTitle), nullptr, count - 1, world);
        };
    };
    const auto antenna = [&controller](int way, double heightM) {
        return [&controller, way, heightM] {
            auto dialog = std::make_unique<CAntenna>(&controller.Command(), 1, 0);
            dialog->show(); // which reads the settings
            dialog->SetAntTypeFlag(std::min(3, dialog->GetMaxCount() - 1));
            dialog->SetAntWayFlag(way);
            dialog->SetAntInputH(heightM);
            dialog->ShowValues();
            return dialog;
        };
    };
    return {{"frames", [&] { return std::make_unique<FramesView>(controller.Frames()); }},
            {"settings", [&] { return std::make_unique<SettingsSheet>(controller); }},
            {"port",
             [&] {
                 return std::make_unique<PortChooserDlg>(controller.Ports(), Scenarios(),
                                                         controller.Choice());
             }},
            {"com-1", ports(1)},
            {"com-2", ports(2)},
            {"com-3", ports(3)},
            {"antenna-vertical", antenna(0, 1.543)},
            {"antenna-slant", antenna(1, 1.543)},
            {"antenna-base", antenna(2, 1.543)},
            {"antenna-too-short", antenna(1, 0.05)},
            {"tracking", [&] { return std::make_unique<TrackingDlg>(&controller.Command()); }}};
}

} // namespace

Pictures AllPictures(Controller& controller)
{
    Pictures all = SettingsPictures(controller);
    std::ranges::move(PlanPictures(controller), std::back_inserter(all));
    std::ranges::move(ReceiverPictures(controller), std::back_inserter(all));
    return all;
}

int WritePictures(Controller& controller, MainWindow& window, const QString& folder,
                  const std::function<bool()>& stop)
{
    constexpr int kNoPort = 3; // as of the command line
    constexpr int kCancelled = 7;
    constexpr int kLocalFile = 8;
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "fieldcore: %s cannot be made.\n", qPrintable(folder));
        return kLocalFile;
    }
    std::wstring fault;
    if (!controller.ConnectQuietly(fault) && !controller.Target().target) {
        std::fprintf(stderr, "fieldcore: %s\n", ToUtf8(fault).c_str());
        return kNoPort;
    }
    WaitUntil([&] { return controller.Link().Heard().powerSource.has_value(); });
    int written = 0;
    int failed = 0;
    const std::span all(kLooks);
    const auto looks = controller.Host().IsQ77() ? all.last(2) : all.first(4);
    const auto grab = [&](QWidget& screen, const char* name) {
        for (const Look& look : looks) {
            Theme::Use(look.theme);
            window.ShowState(controller.State()); // in its colours
            ++(Grab(screen, name, look, folder) ? written : failed);
        }
        screen.hide();
    };
    grab(window, "home");
    for (const Picture& picture : AllPictures(controller)) {
        if (stop()) {
            controller.Disconnect();
            return kCancelled;
        }
        grab(*picture.make(), picture.name);
    }
    controller.Disconnect();
    std::printf("%d pictures in %s\n", written, qPrintable(folder));
    return failed == 0 ? 0 : kLocalFile;
}

void WaitUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience)
{
    const QDeadlineTimer end(patience);
    while (!isDone() && !end.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

} // namespace fieldcore
