#include "app/Picture.h"

#include "app/Controller.h"
#include "core/equipment/StatusHistory.h"
#include "core/equipment/StatusPoll.h"
#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/ReceiverLink.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/StatusHistoryView.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

namespace fieldcore {

namespace {

using namespace std::chrono_literals;

/// Goes with the real time, and leaps when told. Cannot be set.
class LeapingClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override
    {
        return SystemClock::Instance().Steady() + m_leapt.load();
    }
    [[nodiscard]] UtcTime Utc() const override
    {
        return UtcTime(std::chrono::sys_days(2026y / 3 / 19) + 3h) +
               std::chrono::duration_cast<UtcTime::duration>(Steady() - m_began);
    }
    [[nodiscard]] bool SetUtc(UtcTime /*time*/) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }
    void Leap(Duration duration) { m_leapt = m_leapt.load() + duration; }

private:
    std::atomic<Duration> m_leapt{};
    const Duration m_began = SystemClock::Instance().Steady();
};

constexpr const char* kScenario = "model 3017\nserial 00301701\noptions l2 rtk glonass\n"
                                  "almanacs 31\nmask 15\nbattery 34 16\npower-source 1\n";
constexpr int kLeaps = 356;
constexpr std::chrono::seconds kStep{10};
constexpr int kRounds = 16; // at their usual pace, to end with a fresh battery

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
/// @return nothing if the simulator cannot be started or reached
std::optional<SimulatedHour> LiveAnHour()
{
    std::string error;
    const auto scenario = simulator::ParseScenario(kScenario, error);
    if (!scenario) {
        return std::nullopt;
    }
    LeapingClock clock;
    simulator::Simulator receiver(*scenario, clock);
    if (!receiver.Start(error)) {
        return std::nullopt;
    }
    CCommand command({&SilentHost::Instance(), &clock, nullptr, nullptr});
    ReceiverLink link(command);
    StatusPoll poll(command, link, &clock);
    ConnectTarget target;
    target.devicePath = receiver.PortPath();
    if (command.OpenPort(target.devicePath, target.settings) == 0) {
        return std::nullopt;
    }
    CConnect connect(command, 0, target); // its port is open: it asks nothing
    connect.SupportAllTypes();
    if (link.Adopt(connect) == 0) {
        return std::nullopt;
    }
    for (int round = 0; round < kLeaps + kRounds; ++round) {
        clock.Leap(round < kLeaps ? kStep : StatusPoll::kInterval);
        link.Tick();
        poll.Tick();
    }
    return SimulatedHour{link.Heard(), poll.History(), clock.Steady(), clock.Utc()};
}

} // namespace

Pictures StatusPictures(Controller& controller)
{
    static const std::optional<SimulatedHour> hour = LiveAnHour(); // once for all pictures
    if (!hour) {
        return {};
    }
    const auto page = [](Clock::Duration later, LinkState link) {
        return [later, link] {
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
            {QStringLiteral("status-empty"), [] { return std::make_unique<StatusPage>(); }},
            {QStringLiteral("status-history"),
             [] {
                 auto made = std::make_unique<StatusHistoryView>();
                 made->Show(hour->history, hour->now);
                 return made;
             }},
            {QStringLiteral("version"),
             [&controller] { return std::make_unique<CVersion>(&controller.Command()); }},
            {QStringLiteral("battery-low"), [] {
                 return std::make_unique<MessageDlg>(
                     ToQt(FormatText(text::kBatteryLow, 20)), UiText(text::kBatteryCaption),
                     BoxStyle{BoxButtons::Ok, BoxIcon::Exclamation});
             }}};
}

} // namespace fieldcore
