#include "core/equipment/GPSError.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/planning/GPSTime.h"
#include "core/planning/JulianDate.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cwchar>

namespace fieldcore {

namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::seconds;

constexpr int kFirstRefusedOffsetS = 101;
constexpr int kFirstComputedFix = 2;
constexpr double kSecondsPerWeek = 604800.0;
constexpr double kSecondsPerDay = 86400.0;
constexpr std::uint8_t kPdopDecimals = 1;

constexpr local_seconds kGpsEpoch{local_days(std::chrono::year(1980) / 1 / 6)};
constexpr local_seconds kLast{local_days(std::chrono::year(10000) / 1 / 1) - seconds(1)};

} // namespace

bool IsUsableUtcOffset(int offsetS)
{
    return offsetS < kFirstRefusedOffsetS && offsetS > -kFirstRefusedOffsetS;
}

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
    const std::optional<std::chrono::year_month_day> date = CalendarDateOfJulian(
        kGpsEpochJulianDate + (week * kSecondsPerWeek + seconds) / kSecondsPerDay);
    // Beyond these years a system clock in nanoseconds has no such time.
    if (!date || date->year() < std::chrono::year(1680) || date->year() > std::chrono::year(2260)) {
        return std::nullopt;
    }
    const double t = seconds - utcOffsetS;
    double ofDay = std::trunc(t - std::trunc(t / kSecondsPerDay) * kSecondsPerDay);
    if (ofDay < 0.0) {
        ofDay += kSecondsPerDay;
    }
    return Clock::UtcTime(std::chrono::sys_days(*date)) +
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
    if (stRequestGpsTime(time) == 0 || !IsUsableUtcOffset(time.utcOffsetS)) {
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
    span += CTimeSpan(0, 9, 0, -m_utcOffsetS);
    return kGpsEpoch + std::min(seconds(span.GetTotalSeconds()), kLast - kGpsEpoch);
}

CTime CGPSError::GetJSTCTime()
{
    const Shown p = PartsOf(GetJST());
    return CTime(p.year, p.month, p.day, p.hour, p.minute, p.second);
}

std::wstring CGPSError::GetJSTTime(int timeOnly)
{
    // Not by way of CTime, which cannot have the hour that daylight saving leaves out.
    return Format(PartsOf(GetJST()), timeOnly);
}

CGPSError::Shown CGPSError::PartsOf(local_seconds time)
{
    const auto day = std::chrono::floor<days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss ofDay(time - day);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(ofDay.hours().count()),
            static_cast<int>(ofDay.minutes().count()),
            static_cast<int>(ofDay.seconds().count())};
}

std::wstring CGPSError::ChangeCTimetoString(const CTime& time, int timeOnly) const
{
    const CTime::LocalParts parts = time.GetLocalParts();
    return Format({parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second},
                  timeOnly);
}

std::wstring CGPSError::Format(const Shown& p, int timeOnly) const
{
    std::array<wchar_t, 64> clock{};
    const bool hasSeconds = m_isSynchronised != 0;
    if (timeOnly != 0 && hasSeconds) {
        std::swprintf(clock.data(), clock.size(), L"%02d:%02d:%02d", p.hour, p.minute, p.second);
    } else if (timeOnly != 0) {
        std::swprintf(clock.data(), clock.size(), L"%02d:%02d", p.hour, p.minute);
    } else if (hasSeconds) {
        std::swprintf(clock.data(), clock.size(), L"%02d%02d%02d-%d%02d%02d", p.hour, p.minute,
                      p.second, p.year, p.month, p.day);
    } else {
        std::swprintf(clock.data(), clock.size(), L"%02d%02d-%d%02d%02d", p.hour, p.minute, p.year,
                      p.month, p.day);
    }
    return clock.data();
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
