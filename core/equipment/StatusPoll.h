#pragma once

#include "core/equipment/BatteryWatch.h"
#include "core/equipment/ReceiverQuestions.h"
#include "core/equipment/StatusHistory.h"

#include <chrono>
#include <mutex>

namespace fieldcore {

class CCommand;
class ReceiverLink;

/// Asks a connected receiver how it is: position and time every two seconds, the satellites that it
/// tracks at every fifth round, the power source at every fifteenth. The answers go into what the
/// link has heard. It acts only in Tick(), which the program calls a few times a second, and does
/// nothing while the channel is busy or somebody holds the link. What the link does not know of who
/// is there is asked once for a connection, behind the first round: another receiver begins anew,
/// the same one keeps its history. Tick() comes from the thread of the face that is asked; any
/// thread may look.
class StatusPoll
{
public:
    static constexpr std::chrono::seconds kInterval{2};
    /// Between rounds of a receiver that keeps silent.
    static constexpr std::chrono::seconds kLongestPause{16};
    static constexpr unsigned kRoundsPerBattery = 15;
    static constexpr unsigned kRoundsPerSky = 5;

    /// @param command  not owned, must outlive the object, as must the next two
    /// @param clock    that is set by the receiver's time; null: the system's, if that is allowed
    StatusPoll(CCommand& command, ReceiverLink& link, Clock* clock = nullptr);

    /// Does what is due.
    /// @return whether there is anything new
    bool Tick();

    [[nodiscard]] StatusHistory History() const;
    /// The warning that is due, once.
    [[nodiscard]] BatteryWatch::Warning TakeWarning();

private:
    [[nodiscard]] bool MayAsk() const;
    bool Round();
    void BeginConnection();
    void Remember(const Receiver& heard, bool hasPosition);
    void FollowBattery(Receiver& heard);
    void Add(const StatusHistory::Sample& sample);

    CCommand& m_command;
    ReceiverLink& m_link;
    ReceiverQuestions m_questions;

    unsigned m_connection = 0; // of the link, that the questions are about
    unsigned m_receiver = 0;   // the same, that the history and the watch belong to
    BatteryWatch m_watch;
    Clock::Duration m_due{};
    unsigned m_rounds = 0;
    int m_failures = 0; // in a row
    bool m_isTicking = false;
    bool m_wasConnected = false;

    mutable std::mutex m_mutex; // guards these
    StatusHistory m_history;
    BatteryWatch::Warning m_warning = BatteryWatch::Warning::None;
};

} // namespace fieldcore
