#include "core/equipment/StatusPoll.h"

#include "core/link/Command.h"
#include "core/link/ReceiverLink.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <numbers>
#include <utility>

namespace fieldcore {

namespace {

constexpr double kNoPdop = 99.0;
constexpr std::chrono::hours kJst{9};

/// Polling must not stop the program for long.
class ShortTimeout
{
public:
    ShortTimeout(CCommand& command, std::chrono::milliseconds usual)
        : m_command(command), m_usual(usual)
    {
        m_command.SetReplyTimeout(
            std::min<std::chrono::milliseconds>(usual, ReceiverLink::kReplyTimeout));
    }
    ~ShortTimeout() { m_command.SetReplyTimeout(m_usual); }
    ShortTimeout(const ShortTimeout&) = delete;
    ShortTimeout& operator=(const ShortTimeout&) = delete;

private:
    CCommand& m_command;
    const std::chrono::milliseconds m_usual;
};

} // namespace

bool HasPlace(const ReturnPositionStatusInformation& position)
{
    const SiteReply& site = position.position;
    return IsPositionComputed(position) && std::isfinite(site.latitudeRad) &&
           std::isfinite(site.longitudeRad) && std::isfinite(site.heightM) &&
           std::abs(site.latitudeRad) <= std::numbers::pi / 2 &&
           std::abs(site.longitudeRad) <= 2 * std::numbers::pi;
}

StatusPoll::StatusPoll(CCommand& command, const ReceiverLink& link, Clock* clock)
    : m_command(command), m_link(link), m_clock(clock)
{}

bool StatusPoll::MayAsk() const
{
    return m_link.State() == LinkState::Connected && !m_link.IsHeld() && !m_command.IsBusy() &&
           m_command.IsPortOpen() == 1;
}

bool StatusPoll::Tick()
{
    if (m_isTicking) {
        return false;
    }
    const bool isConnected = m_link.State() == LinkState::Connected;
    const bool hasChanged = std::exchange(m_wasConnected, isConnected) != isConnected;
    const Clock::Duration now = m_command.GetClock().Steady();
    if (hasChanged && !isConnected) {
        m_history.Add({now, std::nullopt, std::nullopt}); // here the line of the graph breaks
    }
    if (!MayAsk() || (now < m_due && m_connection == m_link.Connections())) {
        return hasChanged;
    }
    m_isTicking = true;
    bool isGood = false;
    {
        const ShortTimeout shorter(m_command, m_link.Target().settings.replyTimeout);
        isGood = Round();
    }
    m_failures = isGood ? 0 : m_failures + 1;
    m_due = m_command.GetClock().Steady() +
            std::min<Clock::Duration>(kInterval * (1 + m_failures), kLongestPause);
    m_isTicking = false;
    return true;
}

/// What a receiver does not know is left out; silence ends the round.
bool StatusPoll::GoesOn() const
{
    const CommandFault fault = m_command.Fault();
    return fault == CommandFault::None || fault == CommandFault::Refused ||
           fault == CommandFault::WrongType || fault == CommandFault::WrongAnswer;
}

bool StatusPoll::Round()
{
    if (m_connection != m_link.Connections() && !BeginConnection()) {
        return false;
    }
    if (m_link.Status()) {
        m_now.status = m_link.Status();
    }
    const bool isBatteryDue = m_rounds++ % kRoundsPerBattery == 0;
    const bool hasPosition = AskPosition();
    Remember(hasPosition);
    return GoesOn() && AskTime() && (!isBatteryDue || AskBattery());
}

bool StatusPoll::BeginConnection()
{
    const unsigned connection = m_link.Connections();
    CRecvInfo info;
    if (info.GetOptionData(m_command) == 0) {
        return false;
    }
    std::wstring who = std::to_wstring(info.GetRecvTypeNum());
    for (const wchar_t* const serial : {info.GetRecvSN(), info.GetRecvSNLong()}) {
        who += std::wstring(L" ") + (serial != nullptr ? serial : L"");
    }
    if (std::exchange(m_who, who) != who) {
        m_now = {};
        m_history.Clear();
        m_watch = {};
    }
    m_info = info;
    m_error.emplace(&m_command, m_clock);
    m_battLevel.emplace(&m_command);
    m_battLevel->SetRecvTypeNum(info.GetRecvTypeNum());
    m_connection = connection;
    m_rounds = 0;
    return true;
}

bool StatusPoll::AskPosition()
{
    if (m_command.RequestPositionStatus(*m_error->GetRETPOS3()) == 0) {
        return false;
    }
    m_now.position = {*m_error->GetRETPOS3(), m_command.GetClock().Steady()};
    return true;
}

void StatusPoll::Remember(bool hasPosition)
{
    StatusHistory::Sample sample{m_command.GetClock().Steady(), std::nullopt, std::nullopt};
    if (hasPosition) {
        const ReturnPositionStatusInformation& position = m_now.position->value;
        sample.satellites = position.satellitesUsed;
        if (IsPositionComputed(position) && position.pdop > 0.0F && position.pdop < kNoPdop) {
            sample.pdop = position.pdop;
        }
    }
    m_history.Add(sample);
}

bool StatusPoll::AskTime()
{
    // A receiver that does not know the time itself sends one all the same.
    const bool isKnown = m_now.status && m_now.status->value.timeValid;
    const bool isSynchronised = m_error->CheckTimeSynchro() != 0;
    if (isSynchronised || isKnown) {
        const std::chrono::local_seconds jst = m_error->GetJST();
        if (isSynchronised || m_command.Fault() == CommandFault::None) {
            // Once synchronised it is the time of the last position, which may have come earlier.
            const Clock& clock = m_command.GetClock();
            const Clock::Duration now = clock.Steady();
            const Clock::Duration at = isSynchronised && m_now.position ? m_now.position->at : now;
            const auto utc = clock.Utc().time_since_epoch() - (now - at);
            m_now.time = {ReceiverTime{jst, m_error->GetUTCOffsetTime(), isSynchronised,
                                       std::chrono::floor<std::chrono::milliseconds>(
                                           utc + kJst - jst.time_since_epoch())},
                          at};
        }
    }
    if (m_now.position) {
        m_now.pdop = {m_error->GetPDOP(), m_now.position->at};
    }
    m_now.clockChange = m_error->LastClockChange();
    return GoesOn();
}

bool StatusPoll::AskBattery()
{
    BatteryReading reading;
    m_battLevel->GetBattLevel();
    reading.percent = m_battLevel->LastCharge();
    if (!GoesOn()) {
        m_now.battery = {reading, m_command.GetClock().Steady()};
        return false;
    }
    reading.source = m_battLevel->GetBattPort();
    const Clock::Duration now = m_command.GetClock().Steady();
    if (m_now.battery && m_now.battery->value.source != reading.source) {
        m_watch.ForgetTrend(); // another battery
    }
    if (reading.percent) {
        const BatteryWatch::Warning warning = m_watch.Take(*reading.percent, now);
        m_warning = warning != BatteryWatch::Warning::None ? warning : m_warning;
    }
    m_now.battery = {std::move(reading), now};
    m_now.trend = m_watch.Trend();
    return GoesOn();
}

BatteryWatch::Warning StatusPoll::TakeWarning()
{
    return std::exchange(m_warning, BatteryWatch::Warning::None);
}

} // namespace fieldcore
