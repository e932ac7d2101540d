#pragma once

#include "core/link/Receiver.h"
#include "core/planning/CalendarTime.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <optional>
#include <string>

namespace fieldcore {

class CCommand;

/// The receiver's last position status; see docs/protocol.md.
using ReturnPositionStatusInformation = PositionStatusReply;

/// Whether a position is being computed.
[[nodiscard]] bool IsPositionComputed(const ReturnPositionStatusInformation& status);

/// The PDOP where there is one to show: the receiver's time has been accepted, and it is a number
/// above 0. As all screens round it.
[[nodiscard]] std::optional<double> PdopOf(bool isSynchronised, double pdop);

/// The date and time, UTC, to which the controller is set by GPS time.
///
/// The date is that of GPS time and the time of day that of UTC: within the offset after midnight
/// UTC the result is one day ahead. This is kept on purpose.
/// @param week     as the receiver sends it, not repaired
/// @param seconds  of the week; the fraction is cut
/// @param utcOffsetS  GPS time minus UTC; where it leads before the week's start, a day is added to
///         the time of day
/// @return nothing if @p seconds is not finite or there is no such date
[[nodiscard]] std::optional<Clock::UtcTime> ControllerTime(int week, double seconds,
                                                           int utcOffsetS);

/// Keeps the receiver's last position status, decides whether its time may be trusted, and sets
/// the controller's clock by it if that clock allows it. Once the time has been accepted it stays
/// so for the object's life. The thread of the command channel; what asks the receiver says so.
class CGPSError
{
public:
    /// @param command  not owned; must outlive the object, as must @p clock
    /// @param clock    that is set; null: the system's, which is not unless the user has allowed it
    explicit CGPSError(CCommand* command, Clock* clock = nullptr);
    virtual ~CGPSError() = default;

    /// For the host to fill with CCommand::RequestPositionStatus().
    [[nodiscard]] ReturnPositionStatusInformation* GetRETPOS3() { return &m_status; }

    /// The synchronised flag; 0 until the time was accepted.
    [[nodiscard]] int GetTimeSynchro() const { return m_isSynchronised; }
    /// 1 if GetTimeSynchro() is not 0.
    [[nodiscard]] int GetSingleFlag() const { return m_isSynchronised != 0 ? 1 : 0; }

    /// Asks for GPS time, accepts it if its offset is nearer than 101 s, and sets the clock. Does
    /// nothing once synchronised. An offset that is refused, or no answer, leaves the offset 0.
    /// @param flag  what the synchronised flag becomes
    void SetTimeSynchro(int flag);

    /// Accepts the time while a position is computed. Once synchronised, asks for the receiver's
    /// status while there is none; the flag stays whatever it says.
    /// @return the synchronised flag
    int CheckTimeSynchro();

    /// GPS time minus UTC, seconds; 0 until known.
    [[nodiscard]] int GetUTCOffsetTime() const { return m_utcOffsetS; }

    /// With one decimal; "-.- " while not synchronised or without a PDOP.
    [[nodiscard]] std::wstring GetPDOP() const;

    /// The receiver's time in Japan: the stored status once synchronised, else what it is asked
    /// for. Its local parts read that time, whatever zone the controller has, but for the hour
    /// that a change to daylight saving leaves out there.
    [[nodiscard]] CTime GetJSTCTime();
    /// The same as a date and time that no zone moves, until the end of the year 9999.
    [[nodiscard]] std::chrono::local_seconds GetJST();
    /// The same as text, see ChangeCTimetoString().
    [[nodiscard]] std::wstring GetJSTTime(int timeOnly);

    /// "12:34:56", or "123456-20261121" if @p timeOnly is 0; without the seconds while not
    /// synchronised.
    [[nodiscard]] std::wstring ChangeCTimetoString(const CTime& time, int timeOnly) const;

    /// The last change of the clock, made or only meant; nothing before the time was accepted.
    [[nodiscard]] const std::optional<ClockChange>& LastClockChange() const { return m_change; }

protected:
    /// The two requests that decide about the time. 1 or 0.
    virtual int stRequestGpsTime(GpsTimeReply& reply);
    virtual int stRequestStatus(StatusReply& reply);

private:
    [[nodiscard]] std::wstring Format(const CTime::LocalParts& parts, int timeOnly) const;
    void SetClock(const GpsTimeReply& time);

    CCommand* const m_command;
    Clock& m_clock;
    ReturnPositionStatusInformation m_status;
    int m_utcOffsetS = 0;
    int m_isSynchronised = 0;
    std::optional<ClockChange> m_change;
};

} // namespace fieldcore
