#pragma once

#include "core/equipment/BattLevel.h"
#include "core/equipment/BatteryWatch.h"
#include "core/equipment/GPSError.h"
#include "core/equipment/LiveStatus.h"
#include "core/equipment/StatusHistory.h"
#include "core/link/RecvInfo.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace fieldcore {

class CCommand;
class ReceiverLink;

/// Asks a connected receiver how it is: position and time every two seconds, the battery at every
/// fifteenth round. It acts only in Tick(), which the program calls a few times a second, and does
/// nothing while the channel is busy or somebody holds the link. Who is connected is asked once for
/// each connection: another receiver begins anew, the same one keeps its history. The thread of the
/// command channel, which a round blocks for its exchanges, with the link's short reply time-out.
class StatusPoll
{
public:
    static constexpr std::chrono::seconds kInterval{2};
    /// Between rounds of a receiver that keeps silent.
    static constexpr std::chrono::seconds kLongestPause{16};
    static constexpr int kRoundsPerBattery = 15;

    /// @param command  not owned, must outlive the object, as must the next two
    /// @param clock    that is set by the receiver's time; null: the system's, if that is allowed
    StatusPoll(CCommand& command, const ReceiverLink& link, Clock* clock = nullptr);

    /// Does what is due.
    /// @return whether there is anything new
    bool Tick();

    [[nodiscard]] const LiveStatus& Now() const { return m_now; }
    [[nodiscard]] const StatusHistory& History() const { return m_history; }
    /// The receiver of the connection; empty before the first round.
    [[nodiscard]] const CRecvInfo& Receiver() const { return m_info; }
    /// The warning that is due, once.
    [[nodiscard]] BatteryWatch::Warning TakeWarning();

private:
    [[nodiscard]] bool MayAsk() const;
    bool Round();
    bool BeginConnection();
    bool AskPosition();
    bool AskTime();
    bool AskBattery();
    void Remember(bool hasPosition);
    [[nodiscard]] bool GoesOn() const;

    CCommand& m_command;
    const ReceiverLink& m_link;
    Clock* const m_clock;

    unsigned m_connection = 0; // of the link, that the next three belong to
    CRecvInfo m_info;
    std::optional<CGPSError> m_error;
    std::optional<CBattLevel> m_battLevel;

    std::wstring m_who; // serial number and type of the receiver; empty: nobody yet
    LiveStatus m_now;
    StatusHistory m_history;
    BatteryWatch m_watch;
    BatteryWatch::Warning m_warning = BatteryWatch::Warning::None;
    Clock::Duration m_due{};
    unsigned m_rounds = 0;
    int m_failures = 0; // in a row
    bool m_isTicking = false;
    bool m_wasConnected = false;
};

} // namespace fieldcore
