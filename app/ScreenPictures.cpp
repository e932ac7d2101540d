#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "app/Worlds.h"
#include "core/platform/Utf8.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>

#include <algorithm>
#include <chrono>
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
};

/// On the controller with the taller screen.
constexpr Look kTallLooks[] = {
    {"q77-480x800-daylight", {480, 800}, Theme::Kind::Daylight},
    {"q77-480x640-daylight", {480, 640}, Theme::Kind::Daylight},
};

bool Grab(QWidget& window, const QString& name, const Look& look, const QDir& folder)
{
    if (window.minimumWidth() != window.maximumWidth()) { // a message has its own size
        window.resize(look.size);
    }
    window.show();
    for (int i = 0; i < 3; ++i) { // some fill their lists behind the first painting
        QCoreApplication::processEvents();
    }
    const QString file = folder.filePath(name + QLatin1Char('-') + QLatin1String(look.name) +
                                         QStringLiteral(".png"));
    const bool saved = window.grab().save(file);
    if (!saved) {
        std::fprintf(stderr, "fieldcore: %s cannot be written.\n", qPrintable(file));
    }
    return saved;
}

Pictures Own(Controller& controller)
{
    return {{QStringLiteral("frames"),
             [&controller] { return std::make_unique<FramesDlg>(controller.Frames()); }},
            {QStringLiteral("settings"),
             [&controller] {
                 return std::make_unique<SettingsSheet>(controller.Ports(), Scenarios(),
                                                        controller.Choice(),
                                                        controller.MaySetClock());
             }},
            {QStringLiteral("port"), [&controller] {
                 return std::make_unique<PortChooserDlg>(controller.Ports(), Scenarios(),
                                                         controller.Choice());
             }}};
}

Pictures Ports(Controller& controller)
{
    Pictures made;
    for (int count = 1; count <= 3; ++count) {
        made.push_back({QStringLiteral("com-%1").arg(count), [&controller, count] {
                            CComPort::Surroundings world = PortsWorld(controller);
                            world.ports = count;
                            return std::make_unique<CComPort>(
                                &controller.Command(), controller.ReceiverPort(),
                                UiText(text::kComTitle), nullptr, count - 1, world);
                        }});
    }
    return made;
}

Pictures Antennas(Controller& controller)
{
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
    return {{QStringLiteral("antenna-vertical"), antenna(0, 1.543)},
            {QStringLiteral("antenna-slant"), antenna(1, 1.543)},
            {QStringLiteral("antenna-base"), antenna(2, 1.543)},
            {QStringLiteral("antenna-too-short"), antenna(1, 0.05)}};
}

} // namespace

ScreenPictures::ScreenPictures(Controller& controller, MainWindow& window)
    : m_controller(controller), m_window(window)
{}

int ScreenPictures::Write(const QString& folder, const std::function<bool()>& stop)
{
    constexpr int kNoPort = 3; // as of the command line
    constexpr int kCancelled = 7;
    constexpr int kLocalFile = 8;
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "fieldcore: %s cannot be made.\n", qPrintable(folder));
        return kLocalFile;
    }
    std::wstring fault;
    if (!m_controller.ConnectQuietly(fault) && !m_controller.Target().target) {
        std::fprintf(stderr, "fieldcore: %s\n", ToUtf8(fault).c_str());
        return kNoPort;
    }
    const QDeadlineTimer patience(std::chrono::seconds(5));
    while (!m_controller.Link().Heard().powerSource && !patience.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20); // which asks how it is
    }
    int written = 0;
    int failed = 0;
    const bool isTall = m_controller.Host().IsQ77();
    const auto looks = isTall ? std::span<const Look>(kTallLooks) : std::span(kLooks);
    const auto grab = [&](QWidget& screen, const QString& name) {
        for (const Look& look : looks) {
            Theme::Use(look.theme);
            m_window.ShowState(m_controller.State()); // in its colours
            ++(Grab(screen, name, look, folder) ? written : failed);
        }
        screen.hide();
    };
    grab(m_window, QStringLiteral("home"));
    for (const Picture& picture : All()) {
        if (stop()) {
            m_controller.Disconnect();
            return kCancelled;
        }
        grab(*picture.make(), picture.name);
    }
    m_controller.Disconnect();
    std::printf("%d pictures in %s\n", written, qPrintable(folder));
    return failed == 0 ? 0 : kLocalFile;
}

Pictures ScreenPictures::All()
{
    Pictures all;
    for (const auto& group :
         {Own, Ports, FilePictures, PlanPictures, Antennas, StatusPictures, TiltPictures}) {
        std::ranges::move(group(m_controller), std::back_inserter(all));
    }
    return all;
}

} // namespace fieldcore
