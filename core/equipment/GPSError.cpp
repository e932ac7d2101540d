#include "core/equipment/GPSError.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/planning/GPSTime.h"
#include "core/platform/Calendar.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace fieldcore {

namespace {

using std::chrono::local_seconds;
using std::chrono::seconds;

constexpr int kFirstRefusedOffsetS = 101;
constexpr int kFirstComputedFix = 2;
constexpr std::uint8_t kPdopDecimals = 1;

constexpr seconds kLast =
    std::chrono::sys_days(std::chrono::year(10000) / 1 / 1) - kGpsEpoch - seconds(1);

constexpr double kUnixEpochJulianDate = 2440587.5; // 1970-01-01 00:00
// Beyond these days a system clock in nanoseconds has no such time; since 1970.
constexpr int kFirstDay =
    std::chrono::sys_days(std::chrono::year(1680) / 1 / 1).time_since_epoch().count();
constexpr int kLastDay =
    std::chrono::sys_days(std::chrono::year(2260) / 12 / 31).time_since_epoch().count();

/// The parts of a date and time that no zone moves.
CTime::LocalParts CalendarPartsOf(local_seconds time)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const auto number = [](unsigned part) { return static_cast<int>(part); };
    const auto second = static_cast<int>((time - day).count());
    return {static_cast<int>(date.year()),
            number(static_cast<unsigned>(date.month())),
            number(static_cast<unsigned>(date.day())),
            second / 3600,
            second / 60 % 60,
            second % 60,
            number(std::chrono::weekday(day).c_encoding())};
}

} // namespace

bool IsPositionComputed(const ReturnPositionStatusInformation& status)
{
    return status.fixKind >= kFirstComputedFix;
}

std::optional<double> PdopOf(bool isSynchronised, double pdop)
{
    if (!isSynchronised || !std::isfinite(pdop) || pdop <= 0.0) {
        return std::nullopt;
    }
    return CParts::atof(CParts::Round(pdop, kPdopDecimals));
}

std::optional<Clock::UtcTime> ControllerTime(int week, double seconds, int utcOffsetS)
{
    const double julianDate = kUnixEpochJulianDate + kGpsEpoch.time_since_epoch().count() +
                              (week * kWeekS + seconds) / kDayS;
    const double day = std::floor(julianDate - kUnixEpochJulianDate);
    if (!(day >= kFirstDay && day <= kLastDay)) {
        return std::nullopt;
    }
    const double t = seconds - utcOffsetS;
    double ofDay = std::trunc(t - std::trunc(t / kDayS) * kDayS);
    if (ofDay < 0.0) {
        ofDay += kDayS;
    }
    return Clock::UtcTime(std::chrono::sys_days(std::chrono::days(static_cast<int>(day)))) +
           std::chrono::seconds(static_cast<std::int64_t>(ofDay));
}

CGPSError::CGPSError(CCommand* command, Clock* clock)
    : m_command(command), m_clock(clock != nullptr ? *clock : SystemClock::Instance())
{}

void CGPSError::SetTimeSynchro(int flag)
{
    if (m_isSynchronised != 0) {
        return;
    }
    GpsTimeReply time;
    if (stRequestGpsTime(time) == 0 || time.utcOffsetS >= kFirstRefusedOffsetS ||
        time.utcOffsetS <= -kFirstRefusedOffsetS) {
        m_utcOffsetS = 0;
        return;
    }
    m_utcOffsetS = time.utcOffsetS;
    m_isSynchronised = flag;
    SetClock(time);
}

void CGPSError::SetClock(const GpsTimeReply& time)
{
    const std::optional<Clock::UtcTime> by =
        ControllerTime(time.week, time.secondsOfWeek, time.utcOffsetS);
    if (by) {
        const Clock::UtcTime was = m_clock.Utc();
        m_change = ClockChange{was, *by, m_clock.SetUtc(*by)};
    }
}

int CGPSError::CheckTimeSynchro()
{
    if (IsPositionComputed(m_status)) {
        SetTimeSynchro(1);
    } else if (m_isSynchronised != 0) {
        StatusReply status;
        const bool isValid = stRequestStatus(status) == 1 && status.timeValid;
        SetTimeSynchro(isValid ? 1 : 0);
    }
    return m_isSynchronised;
}

std::wstring CGPSError::GetPDOP() const
{
    const std::optional<double> pdop = PdopOf(m_isSynchronised != 0, m_status.pdop);
    return pdop ? FormatFixed(*pdop, kPdopDecimals) : Text(text::kStatusNoPdop);
}

local_seconds CGPSError::GetJST()
{
    auto week = static_cast<std::int32_t>(m_status.week);
    auto secondsOfWeek = static_cast<double>(m_status.secondsOfWeek);
    if (CheckTimeSynchro() == 0) {
        GpsTimeReply time;
        if (stRequestGpsTime(time) == 1) {
            week = time.week;
            secondsOfWeek = time.secondsOfWeek;
        }
    }
    CGPSTime gps(CGPSTime::m_OriginalTime);
    gps.SetGpsTime(week, secondsOfWeek);
    // Elapsed time, because the parts of its calendar are moved by daylight saving.
    CTimeSpan span = gps.GetUtcTime() - CGPSTime::m_OriginalTime;
    span += CTimeSpan(0, kJst.count(), 0, -m_utcOffsetS);
    const auto time = kGpsEpoch + std::min(seconds(span.GetTotalSeconds()), kLast);
    return local_seconds(time.time_since_epoch());
}

CTime CGPSError::GetJSTCTime()
{
    const CTime::LocalParts p = CalendarPartsOf(GetJST());
    return CTime(p.year, p.month, p.day, p.hour, p.minute, p.second);
}

std::wstring CGPSError::GetJSTTime(int timeOnly)
{
    // Not by way of CTime, which cannot have the hour that daylight saving leaves out.
    return Format(CalendarPartsOf(GetJST()), timeOnly);
}

std::wstring CGPSError::ChangeCTimetoString(const CTime& time, int timeOnly) const
{
    return Format(time.GetLocalParts(), timeOnly);
}

std::wstring CGPSError::Format(const CTime::LocalParts& p, int timeOnly) const
{
    const auto two = [](int part) { return FormatWhole(static_cast<std::uint32_t>(part), 2); };
    const std::wstring colon = timeOnly != 0 ? L":" : L"";
    std::wstring text = two(p.hour) + colon + two(p.minute);
    if (m_isSynchronised != 0) {
        text += colon + two(p.second);
    }
    return timeOnly != 0 ? text : text + L"-" + std::to_wstring(p.year) + two(p.month) + two(p.day);
}

int CGPSError::stRequestGpsTime(GpsTimeReply& reply)
{
    return m_command != nullptr ? m_command->RequestGpsTime(reply) : 0;
}

int CGPSError::stRequestStatus(StatusReply& reply)
{
    return m_command != nullptr ? m_command->RequestStatus(reply) : 0;
}

} // namespace fieldcore
