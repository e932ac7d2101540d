#include "core/equipment/StatusPoll.h"

#include "core/equipment/StatusRows.h"
#include "core/link/Command.h"
#include "core/link/ReceiverLink.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

StatusPoll::StatusPoll(CCommand& command, ReceiverLink& link, Clock* clock)
    : m_command(command), m_link(link), m_questions(command, clock)
{}

bool StatusPoll::MayAsk() const
{
    return m_link.State() == LinkState::Connected && !m_command.IsBusy() &&
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
        Add({now, std::nullopt, std::nullopt}); // here the line of the graph breaks
    }
    if (!MayAsk() || (now < m_due && m_connection == m_link.Connections())) {
        return hasChanged;
    }
    m_isTicking = true;
    m_failures = Round() ? 0 : m_failures + 1;
    m_due = m_command.GetClock().Steady() +
            std::min<Clock::Duration>(kInterval * (1 + m_failures), kLongestPause);
    m_isTicking = false;
    return true;
}

/// What a receiver does not know is left out; silence ends the round.
bool StatusPoll::Round()
{
    if (m_connection != m_link.Connections()) {
        BeginConnection();
    }
    Receiver heard = m_link.Heard();
    const bool isSourceDue = m_rounds % kRoundsPerBattery == 0;
    const bool isSkyDue = m_rounds++ % kRoundsPerSky == 1; // never together
    const Clock::Duration begun = m_command.GetClock().Steady();
    const auto before = heard.powerSource;
    bool isAnswering = m_questions.AskPosition(heard) && m_questions.AskTime(heard);
    Remember(heard, heard.position && heard.position->at >= begun);
    m_link.Put(heard);
    // How it is comes first, who it is in all its options behind that.
    isAnswering = isAnswering && m_questions.AskIdentity(heard);
    if (isAnswering && isSourceDue) {
        isAnswering = m_questions.AskPowerSource(heard);
        if (before && heard.powerSource->value != before->value) {
            m_watch.ForgetTrend(); // another battery
        }
        FollowBattery(heard);
    }
    if (isAnswering && isSkyDue) {
        isAnswering = m_questions.AskTracked(heard);
    }
    m_link.Put(std::move(heard));
    return isAnswering;
}

void StatusPoll::BeginConnection()
{
    if (std::exchange(m_receiver, m_link.Receivers()) != m_link.Receivers()) {
        const std::scoped_lock lock(m_mutex);
        m_history.Clear();
        m_watch = {};
    }
    m_questions.Begin();
    m_connection = m_link.Connections();
    m_rounds = 0;
}

void StatusPoll::Remember(const Receiver& heard, bool hasPosition)
{
    StatusHistory::Sample sample{m_command.GetClock().Steady(), std::nullopt, std::nullopt};
    if (hasPosition) {
        sample.satellites = heard.position->value.satellitesUsed;
        if (const auto pdop = ReadField(FieldOf("pdop"), heard)) {
            sample.pdop = std::get<double>(*pdop);
        }
    }
    Add(sample);
}

void StatusPoll::FollowBattery(Receiver& heard)
{
    if (const std::optional<int> percent = BatteryPercent(heard)) {
        const BatteryWatch::Warning warning = m_watch.Take(*percent, heard.status->at);
        const std::scoped_lock lock(m_mutex);
        m_warning = warning != BatteryWatch::Warning::None ? warning : m_warning;
    }
    heard.trend = m_watch.Trend();
}

void StatusPoll::Add(const StatusHistory::Sample& sample)
{
    const std::scoped_lock lock(m_mutex);
    m_history.Add(sample);
}

StatusHistory StatusPoll::History() const
{
    const std::scoped_lock lock(m_mutex);
    return m_history;
}

BatteryWatch::Warning StatusPoll::TakeWarning()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_warning, BatteryWatch::Warning::None);
}

} // namespace fieldcore
