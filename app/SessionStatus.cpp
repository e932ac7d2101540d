// How a session shows the receiver's state.

#include "app/MainWindow.h"
#include "app/Session.h"
#include "app/SimulatedHour.h"
#include "core/host/MesBox.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/StatusHistoryView.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"

#include <chrono>
#include <memory>
#include <optional>

namespace fieldcore {

void Session::ShowStatus()
{
    StatusPage page(m_window.get());
    const auto show = [this, &page] {
        page.Show(m_controller.Poll().Now(), m_controller.Poll().History(), m_controller.View());
    };
    connect(&m_controller, &Controller::Changed, &page, show);
    connect(&page, &StatusPage::VersionRequested, this, [this, &page] { ShowVersion(&page); });
    show();
    page.DoModal();
}

void Session::ShowVersion(QWidget* parent)
{
    const ReceiverLink::Hold hold(m_controller.Link());
    CVersion(&m_controller.Command(), parent).DoModal();
}

void Session::WarnOfBattery(const QString& words)
{
    CMesBox(m_controller.Host()).Warn(words.toStdWString(), text::kBatteryCaption);
}

void Session::AddStatusScreens(std::vector<Screen>& screens)
{
    // Lived through once for all pictures.
    static const std::optional<SimulatedHour> hour = LiveAnHour();
    if (!hour) {
        return;
    }
    const auto page = [](Clock::Duration later, bool isConnected) {
        return [later, isConnected]() -> std::unique_ptr<QWidget> {
            auto made = std::make_unique<StatusPage>();
            made->Show(hour->status, hour->history,
                       {hour->now + later, hour->utc + later, isConnected});
            return made;
        };
    };
    screens.push_back({QStringLiteral("status"), page({}, true)});
    screens.push_back({QStringLiteral("status-stale"), page(std::chrono::minutes(3), true)});
    screens.push_back({QStringLiteral("status-lost"), page(std::chrono::minutes(3), false)});
    screens.push_back({QStringLiteral("status-empty"), []() -> std::unique_ptr<QWidget> {
                           return std::make_unique<StatusPage>();
                       }});
    screens.push_back({QStringLiteral("status-history"), []() -> std::unique_ptr<QWidget> {
                           auto made = std::make_unique<StatusHistoryView>();
                           made->Show(hour->history, hour->now);
                           return made;
                       }});
    screens.push_back({QStringLiteral("version"), [this]() -> std::unique_ptr<QWidget> {
                           return std::make_unique<CVersion>(&m_controller.Command());
                       }});
    screens.push_back({QStringLiteral("battery-low"), []() -> std::unique_ptr<QWidget> {
                           return std::make_unique<MessageDlg>(
                               ToQt(FormatText(text::kBatteryLow, 20)),
                               UiText(text::kBatteryCaption),
                               BoxStyle{BoxButtons::Ok, BoxIcon::Exclamation});
                       }});
}

} // namespace fieldcore
