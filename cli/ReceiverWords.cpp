#include "cli/ReceiverWords.h"

#include "core/equipment/GPSError.h"
#include "core/equipment/InstalledOptions.h"
#include "core/link/ReceiverTypes.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace fieldcore::cli {

namespace {

using std::chrono::sys_days;

constexpr std::chrono::hours kJst{9}; // Japan has no daylight saving time
constexpr double kNoPdop = 99.9;
constexpr int kWeekCycle = 1024;
constexpr auto kGpsEpoch = sys_days(std::chrono::year(1980) / 1 / 6);

Value FamilyValue(ReceiverFamily family)
{
    switch (family) {
    case ReceiverFamily::Oldest:
        return Value::Word("oldest", "oldest");
    case ReceiverFamily::Pica:
        return Value::Word("pica", "Pica");
    case ReceiverFamily::Lark:
        return Value::Word("lark", "Lark");
    }
    return Value::Unknown();
}

Value TextOrUnknown(const wchar_t* text)
{
    if (text == nullptr) {
        return Value::Unknown();
    }
    std::wstring trimmed(text);
    trimmed.erase(trimmed.find_last_not_of(L' ') + 1);
    return Value::Text(std::wstring_view(trimmed));
}

/// @param zone  what ISO 8601 writes behind the time
/// @param place  what a person reads there
Value Moment(Clock::UtcTime local, const char* zone, const char* place)
{
    using namespace std::chrono;
    const auto day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss time(floor<seconds>(local - day));
    const auto write = [&](const char* between, const char* behind) {
        std::array<char, 64> buffer{};
        std::snprintf(buffer.data(), buffer.size(), "%04d-%02u-%02u%s%02ld:%02ld:%02ld%s",
                      static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                      static_cast<unsigned>(date.day()), between,
                      static_cast<long>(time.hours().count()),
                      static_cast<long>(time.minutes().count()),
                      static_cast<long>(time.seconds().count()), behind);
        return std::string(buffer.data());
    };
    return Value::Word(write("T", zone), write(" ", place));
}

} // namespace

std::vector<std::string> OptionsInWords(const CRecvInfo& info)
{
    std::vector<std::string> words;
    for (const InstalledOption& option : AllInstalledOptions()) {
        if (option.has(info) != 0) {
            words.emplace_back(option.words);
        }
    }
    return words;
}

void AddIdentity(Report& report, const CRecvInfo& info)
{
    const std::uint32_t number = info.GetRecvTypeNum();
    const ReceiverType* const type = FindReceiverType(number);
    report.Add("model", "model", TextOrUnknown(type != nullptr ? type->model : nullptr));
    report.Add("typeNumber", "type number", Value::Integer(number));
    report.Add("typeText", "type text", TextOrUnknown(info.GetRecvType()));
    report.Add("family", "family", type != nullptr ? FamilyValue(type->family) : Value::Unknown());
    report.Add("serial", "serial number", TextOrUnknown(info.GetRecvSN()));
    report.Add("longSerial", "long serial number", TextOrUnknown(info.GetRecvSNLong()));
    report.Add("navigationFirmware", "navigation firmware", Value::Real(info.GetNavVer(), 2));
    report.Add("signalFirmware", "signal firmware", Value::Real(info.GetSigVer(), 2));
    report.Add("bootFirmware", "boot firmware", Value::Real(info.GetBootVer(), 2));
    report.Add("memoryMb", "memory", Value::Integer(info.GetRecvMemory(), "MB"));
    report.Add("port", "port in use", Value::Integer(info.GetCurrentPortID()));
    report.Add("ports", "ports", Value::Integer(info.GetPortsAvailable()));
    report.Add("options", "options", Value::List(OptionsInWords(info)));
}

Value FixInWords(int kind)
{
    switch (kind) {
    case 0:
        return Value::Word("none", "no fix");
    case 1:
        return Value::Word("searching", "searching");
    case 2:
        return Value::Word("single", "single");
    case 3:
        return Value::Word("differential", "differential");
    case 4:
        return Value::Word("float", "RTK float");
    case 5:
        return Value::Word("fixed", "RTK fixed");
    default:
        return Value::Unknown();
    }
}

Value PdopValue(double pdop)
{
    // A single-precision 99.9 lies a little above the real one.
    const bool exists = std::isfinite(pdop) && pdop > 0.0 && pdop < kNoPdop - 1e-3;
    return exists ? Value::Real(pdop, 1) : Value::Unknown();
}

Clock::UtcTime UtcOf(const GpsTimeReply& time, Clock::UtcTime now)
{
    using namespace std::chrono;
    int week = time.week;
    if (week < kWeekCycle) {
        const auto current = static_cast<int>(duration_cast<days>(now - kGpsEpoch).count() / 7);
        week += (current - week + kWeekCycle / 2) / kWeekCycle * kWeekCycle;
    }
    const int offsetS = IsUsableUtcOffset(time.utcOffsetS) ? time.utcOffsetS : 0;
    const auto sinceEpoch =
        weeks(week) + seconds(std::lround(time.secondsOfWeek)) - seconds(offsetS);
    return Clock::UtcTime(kGpsEpoch.time_since_epoch() + sinceEpoch);
}

Value UtcValue(Clock::UtcTime time)
{
    return Moment(time, "Z", " UTC");
}

Value JstValue(Clock::UtcTime time)
{
    return Moment(time + kJst, "+09:00", " JST");
}

} // namespace fieldcore::cli
