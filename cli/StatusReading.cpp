#include "cli/StatusReading.h"

#include "cli/PortSession.h"
#include "cli/ReceiverWords.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/LiveStatus.h"
#include "core/equipment/StatusRows.h"
#include "core/link/RecvInfo.h"
#include "core/planning/PlaneRectangular.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace fieldcore::cli {

namespace {

constexpr int kDegreeDecimals = 8; // about a millimetre
constexpr int kMetreDecimals = 3;

/// Asks for one thing that not every receiver can tell.
template <typename Reply>
bool Ask(CCommand& command, int (CCommand::*request)(Reply&), std::optional<Reply>& kept,
         Clock::Duration& at)
{
    Reply reply{};
    if ((command.*request)(reply) == 1) {
        kept = reply;
        at = command.GetClock().Steady();
        return true;
    }
    const CommandFault fault = command.Fault();
    return fault == CommandFault::Refused || fault == CommandFault::WrongType ||
           fault == CommandFault::WrongAnswer;
}

/// The value of what was read, or unknown.
template <typename Reply, typename Read>
Value Known(const std::optional<Reply>& reply, Read read)
{
    return reply ? read(*reply) : Value::Unknown();
}

Value Percent(int number)
{
    return number >= 0 && number <= 100 ? Value::Integer(number, "%") : Value::Unknown();
}

struct Place
{
    Value latitude = Value::Unknown();
    Value longitude = Value::Unknown();
    Value height = Value::Unknown();
    Value zone = Value::Unknown();
    Value planeX = Value::Unknown();
    Value planeY = Value::Unknown();
};

Place PlaceOf(const StatusReading& reading)
{
    if (!reading.HasPosition()) {
        return {};
    }
    const SiteReply& site = reading.position->position;
    const auto degrees = [](double rad) {
        return Value::Real(rad * 180.0 / std::numbers::pi, kDegreeDecimals, "deg");
    };
    Place place;
    place.latitude = degrees(site.latitudeRad);
    place.longitude = degrees(site.longitudeRad);
    place.height = Value::Real(site.heightM, kMetreDecimals, "m");
    const int zone = NearestPlaneZone(site);
    if (const auto plane =
            PlaneOfGeodetic(zone, {site.latitudeRad, site.longitudeRad, site.heightM})) {
        place.zone = Value::Integer(zone);
        place.planeX = Value::Real(plane->position.xM, kMetreDecimals, "m");
        place.planeY = Value::Real(plane->position.yM, kMetreDecimals, "m");
    }
    return place;
}

Value Utc(const StatusReading& reading)
{
    return Known(reading.Utc(), UtcValue);
}

Value Fix(const StatusReading& reading)
{
    return Known(reading.status, [](const StatusReply& s) { return FixInWords(s.fixKind); });
}

Value Satellites(const StatusReading& reading)
{
    return Known(reading.status,
                 [](const StatusReply& s) { return Value::Integer(s.satellitesTracked); });
}

Value Pdop(const StatusReading& reading)
{
    return Known(reading.status, [](const StatusReply& s) { return PdopValue(s.pdop); });
}

Value Battery(const StatusReading& reading)
{
    return Known(reading.status, [](const StatusReply& s) { return Percent(s.batteryPercent); });
}

Value Survey(const StatusReply& status)
{
    std::wstring text = status.survey;
    text.erase(text.find_last_not_of(L' ') + 1);
    const Value value = Value::Text(std::wstring_view(text));
    return value.IsUnknown() ? Value::Text(std::string(), "none") : value;
}

void AddPosition(Report& report, const StatusReading& reading)
{
    const auto dop = [&](float PositionStatusReply::*which) {
        return Known(reading.position,
                     [which](const PositionStatusReply& p) { return PdopValue(p.*which); });
    };
    Place place = PlaceOf(reading);
    report.Add("fix", "fix", Known(reading.position, [](const PositionStatusReply& p) {
                   return FixInWords(p.fixKind);
               }));
    report.Add("satellitesUsed", "satellites used",
               Known(reading.position, [](const PositionStatusReply& p) {
                   return Value::Integer(p.satellitesUsed);
               }));
    report.Add("latitudeDeg", "latitude", std::move(place.latitude));
    report.Add("longitudeDeg", "longitude", std::move(place.longitude));
    report.Add("heightM", "ellipsoidal height", std::move(place.height));
    report.Add("planeZone", "plane zone", std::move(place.zone));
    report.Add("planeXM", "plane x", std::move(place.planeX));
    report.Add("planeYM", "plane y", std::move(place.planeY));
    report.Add("pdop", "PDOP", dop(&PositionStatusReply::pdop));
    report.Add("hdop", "HDOP", dop(&PositionStatusReply::hdop));
    report.Add("vdop", "VDOP", dop(&PositionStatusReply::vdop));
}

void AddTrend(Report& report, const std::optional<BatteryTrend>& trend)
{
    report.Add("batteryTrendPercentPerHour", "battery trend",
               Known(trend, [](const auto& t) { return Value::Real(t.percentPerHour, 1, "%/h"); }));
    const bool isDraining = trend && trend->left;
    report.Add(
        "batteryMinutesLeft", "battery lasts",
        isDraining
            ? Value::Integer(std::chrono::floor<std::chrono::minutes>(*trend->left).count(), "min")
            : Value::Unknown());
}

struct WatchColumn
{
    const char* label;
    std::size_t width;
    Value (*read)(const StatusReading&);
};

constexpr std::array kWatchColumns{
    WatchColumn{"TIME", 25, Utc},
    WatchColumn{"FIX", 14, Fix},
    WatchColumn{"SATS", 6, Satellites},
    WatchColumn{"PDOP", 6, Pdop},
    WatchColumn{"BATTERY", 9, Battery},
    WatchColumn{"LATITUDE", 18, [](const StatusReading& r) { return PlaceOf(r).latitude; }},
    WatchColumn{"LONGITUDE", 18, [](const StatusReading& r) { return PlaceOf(r).longitude; }},
    WatchColumn{"HEIGHT", 0, [](const StatusReading& r) { return PlaceOf(r).height; }},
};

} // namespace

std::optional<Clock::UtcTime> StatusReading::Utc() const
{
    if (!status || !status->timeValid || !time) {
        return std::nullopt;
    }
    return UtcOf(*time, controllerTime);
}

bool StatusReading::HasPosition() const
{
    return position && HasPlace(*position);
}

std::optional<Failure> ReadStatus(PortSession& session, StatusReading& reading)
{
    CCommand& command = session.Command();
    StatusReading fresh;
    StatusReply status;
    if (command.RequestStatus(status) == 0) {
        return session.RequestFailed();
    }
    fresh.statusAt = session.GetClock().Steady();
    const bool hasTime = Ask(command, &CCommand::RequestGpsTime, fresh.time, fresh.timeAt);
    fresh.controllerTime = session.GetClock().Utc();
    const bool answered =
        hasTime &&
        Ask(command, &CCommand::RequestPositionStatus, fresh.position, fresh.positionAt) &&
        Ask(command, &CCommand::RequestBatteryPort, fresh.powerSource, fresh.powerSourceAt);
    if (!answered) {
        return session.RequestFailed();
    }
    fresh.status = std::move(status);
    fresh.endedAt = session.GetClock().Steady();
    reading = std::move(fresh);
    return std::nullopt;
}

void BatteryFollow::Follow(PortSession& session, StatusReading& reading)
{
    if (m_typeNumber == 0) {
        m_typeNumber = GetRecvTypeNum(session.Command());
    }
    const int source = reading.powerSource.value_or(1); // one that does not tell has one
    reading.powerSourceName = PowerSourceName(m_typeNumber, source);
    if (m_source != source) {
        m_watch.ForgetTrend(); // another battery
    }
    m_source = source;
    const int percent = reading.status ? reading.status->batteryPercent : -1;
    if (percent >= 0 && percent <= 100) {
        m_watch.Take(percent, reading.statusAt);
    }
    reading.trend = m_watch.Trend();
}

void AddStatus(Report& report, const StatusReading& reading)
{
    const std::optional<StatusReply>& status = reading.status;
    report.Add("utc", "time", Utc(reading));
    report.Add("jst", "", Known(reading.Utc(), JstValue));
    report.Add("gpsWeek", "GPS week",
               Known(reading.time, [](const GpsTimeReply& t) { return Value::Integer(t.week); }));
    report.Add("gpsSecondsOfWeek", "second of the week",
               Known(reading.time, [](const GpsTimeReply& t) {
                   return Value::Integer(std::lround(t.secondsOfWeek), "s");
               }));
    report.Add("timeValid", "time is valid",
               Known(status, [](const StatusReply& s) { return Value::YesNo(s.timeValid); }));
    report.Add("utcOffsetS", "GPS time minus UTC", Known(reading.time, [](const GpsTimeReply& t) {
                   return IsUsableUtcOffset(t.utcOffsetS) ? Value::Integer(t.utcOffsetS, "s")
                                                          : Value::Unknown();
               }));
    report.Add("synchronised", "time can be trusted", Known(reading.position, [&](const auto& p) {
                   return Value::YesNo(reading.time &&
                                       IsUsableUtcOffset(reading.time->utcOffsetS) &&
                                       IsPositionComputed(p));
               }));
    report.Add("fix", "fix", Fix(reading));
    report.Add("satellitesTracked", "satellites tracked", Satellites(reading));
    report.Add("pdop", "PDOP", Pdop(reading));
    report.Add("batteryPercent", "battery", Battery(reading));
    report.Add("powerSource", "power source",
               Known(reading.powerSource, [](int source) { return Value::Integer(source); }));
    report.Add("powerSourceName", "power source name", Value::Text(reading.powerSourceName));
    AddTrend(report, reading.trend);
    report.Add("freeMemoryPercent", "free memory", Known(status, [](const StatusReply& s) {
                   return Percent(s.freeMemoryTenths * 10);
               }));
    report.Add("survey", "running survey", Known(status, Survey));
    AddPosition(report.AddSection("position", "position"), reading);
}

void AddAges(Report& report, const StatusReading& reading)
{
    Report& ages = report.AddSection("agesS", "age");
    const auto add = [&](const char* key, const char* label, bool isThere, Clock::Duration at) {
        const std::chrono::duration<double> age = reading.endedAt - at;
        ages.Add(key, label, isThere ? Value::Real(age.count(), 3, "s") : Value::Unknown());
    };
    // By the answer that they came with.
    add("status", "status, battery", reading.status.has_value(), reading.statusAt);
    add("time", "time", reading.time.has_value(), reading.timeAt);
    add("position", "position", reading.position.has_value(), reading.positionAt);
    add("powerSource", "power source", reading.powerSource.has_value(), reading.powerSourceAt);
}

std::string WatchLine(const StatusReading& reading)
{
    std::string line;
    for (const WatchColumn& column : kWatchColumns) {
        line += Padded(column.read(reading).Words(), column.width);
    }
    return line + "\n";
}

std::string WatchHeader()
{
    std::string line;
    for (const WatchColumn& column : kWatchColumns) {
        line += Padded(column.label, column.width);
    }
    return line + "\n";
}

} // namespace fieldcore::cli
