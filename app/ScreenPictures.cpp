#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "app/FilePictures.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "app/SimulatedHour.h"
#include "app/TiltScreens.h"
#include "app/Worlds.h"
#include "core/platform/Utf8.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"
#include "ui/equipment/StatusHistoryView.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <optional>
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

ScreenPictures::Pictures ScreenPictures::All()
{
    Pictures all;
    for (const Pictures& group :
         {Own(), Ports(), Files(), Planning(), Antennas(), Status(), TiltScreens(m_controller)}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

ScreenPictures::Pictures ScreenPictures::Own()
{
    return {{QStringLiteral("frames"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<FramesDlg>(m_controller.Frames());
             }},
            {QStringLiteral("settings"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<SettingsSheet>(m_controller.Ports(), Scenarios(),
                                                        m_controller.Choice(),
                                                        m_controller.MaySetClock());
             }},
            {QStringLiteral("port"), [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<PortChooserDlg>(m_controller.Ports(), Scenarios(),
                                                         m_controller.Choice());
             }}};
}

ScreenPictures::Pictures ScreenPictures::Ports()
{
    Pictures made;
    for (int count = 1; count <= 3; ++count) {
        made.push_back(
            {QStringLiteral("com-%1").arg(count), [this, count]() -> std::unique_ptr<QWidget> {
                 CComPort::Surroundings world = PortsWorld(m_controller);
                 world.ports = count;
                 return std::make_unique<CComPort>(
                     &m_controller.Command(), m_controller.ReceiverPort(), UiText(text::kComTitle),
                     nullptr, count - 1, world);
             }});
    }
    return made;
}

ScreenPictures::Pictures ScreenPictures::Files()
{
    const auto files = std::make_shared<FilePictures>(m_controller.Host(), m_controller.GetClock());
    return {{QStringLiteral("files"), [files] { return files->Sheet(0); }},
            {QStringLiteral("files-bin"), [files] { return files->Sheet(1); }},
            {QStringLiteral("files-progress"), [files] { return files->Progress(); }},
            {QStringLiteral("files-destination"), [files] { return files->Destination(); }},
            {QStringLiteral("files-error"), &FilePictures::Error}};
}

ScreenPictures::Pictures ScreenPictures::Planning()
{
    Pictures made;
    const char* const names[] = {"count", "skyplot", "azimuth", "elevation", "pdop"};
    for (int drawType = 0; drawType < static_cast<int>(std::size(names)); ++drawType) {
        made.push_back({QStringLiteral("plan-") + QLatin1String(names[drawType]),
                        [this, drawType]() -> std::unique_ptr<QWidget> {
                            auto dialog = std::make_unique<CSurveyPlan>(
                                &m_controller.Command(), 0, PlanWorld(m_controller, nullptr));
                            dialog->show();
                            for (QAction* action : dialog->findChildren<QAction*>()) {
                                if (action->data().toInt() == CSurveyPlan::GetMenuID(drawType)) {
                                    action->trigger();
                                }
                            }
                            return dialog;
                        }});
    }
    made.push_back(
        {QStringLiteral("skyplot"), [this]() -> std::unique_ptr<QWidget> {
             auto dialog =
                 std::make_unique<CSkyPlot>(&m_controller.Command(), 0, SkyWorld(m_controller));
             dialog->show(); // which asks the receiver
             const auto* const list = dialog->findChild<QAbstractItemView*>();
             const QDeadlineTimer patience(std::chrono::seconds(5));
             while (list != nullptr && list->model()->rowCount() == 0 && !patience.hasExpired()) {
                 QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
             }
             return dialog;
         }});
    return made;
}

ScreenPictures::Pictures ScreenPictures::Antennas()
{
    const auto antenna = [this](int way, double heightM) {
        return [this, way, heightM]() -> std::unique_ptr<QWidget> {
            auto dialog = std::make_unique<CAntenna>(
                &m_controller.Command(), 1, 0,
                AntennaSettings::Surroundings{m_controller.ProgramFolder(), &m_controller.Roots()});
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

ScreenPictures::Pictures ScreenPictures::Status()
{
    static const std::optional<SimulatedHour> hour = LiveAnHour(); // once for all pictures
    if (!hour) {
        return {};
    }
    const auto page = [](Clock::Duration later, LinkState link) {
        return [later, link]() -> std::unique_ptr<QWidget> {
            auto made = std::make_unique<StatusPage>();
            Receiver receiver = hour->receiver;
            receiver.link = link;
            made->Show(receiver, hour->history, {hour->now + later, hour->utc + later});
            return made;
        };
    };
    return {{QStringLiteral("status"), page({}, LinkState::Connected)},
            {QStringLiteral("status-stale"), page(std::chrono::minutes(3), LinkState::Connected)},
            {QStringLiteral("status-lost"), page(std::chrono::minutes(3), LinkState::Lost)},
            {QStringLiteral("status-empty"),
             []() -> std::unique_ptr<QWidget> { return std::make_unique<StatusPage>(); }},
            {QStringLiteral("status-history"),
             []() -> std::unique_ptr<QWidget> {
                 auto made = std::make_unique<StatusHistoryView>();
                 made->Show(hour->history, hour->now);
                 return made;
             }},
            {QStringLiteral("version"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<CVersion>(&m_controller.Command());
             }},
            {QStringLiteral("battery-low"), []() -> std::unique_ptr<QWidget> {
                 return std::make_unique<MessageDlg>(
                     ToQt(FormatText(text::kBatteryLow, 20)), UiText(text::kBatteryCaption),
                     BoxStyle{BoxButtons::Ok, BoxIcon::Exclamation});
             }}};
}

} // namespace fieldcore
