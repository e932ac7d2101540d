#include "core/equipment/StatusRows.h"

#include "core/input/Angles.h"
#include "core/input/Parts.h"
#include "core/planning/PlaneRectangular.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cwchar>
#include <limits>

namespace fieldcore {

namespace {

using std::chrono::seconds;

constexpr std::chrono::hours kJst{9};
constexpr double kNoDop = 99.0;
constexpr int kSecondDecimals = 4; // of an arc second: 3 mm
constexpr int kMetreDecimals = 3;

std::wstring Unknown()
{
    return Text(text::kStatusUnknown);
}

std::wstring Dop(double dop)
{
    return std::isfinite(dop) && dop > 0.0 && dop < kNoDop ? CParts::Round(dop, 1) : Unknown();
}

std::wstring TimeOfDay(seconds ofDay, bool hasSeconds)
{
    const std::chrono::hh_mm_ss parts(ofDay);
    std::array<wchar_t, 32> text{};
    const int hour = static_cast<int>(parts.hours().count());
    const int minute = static_cast<int>(parts.minutes().count());
    if (hasSeconds) {
        std::swprintf(text.data(), text.size(), L"%02d:%02d:%02d", hour, minute,
                      static_cast<int>(parts.seconds().count()));
    } else {
        std::swprintf(text.data(), text.size(), L"%02d:%02d", hour, minute);
    }
    return text.data();
}

/// Date and time of a calendar that no zone moves.
std::wstring Moment(std::chrono::local_seconds time, bool hasSeconds)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    std::array<wchar_t, 32> text{};
    std::swprintf(text.data(), text.size(), L"%04d-%02u-%02u ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text.data() + TimeOfDay(time - day, hasSeconds);
}

/// Makes the rows of values that came together.
class Rows
{
public:
    explicit Rows(const StatusView& view) : m_view(view) {}

    template <typename Value, typename Write>
    void Add(int labelId, const std::optional<TimedValue<Value>>& timed, seconds stale, Write write)
    {
        StatusRow row{labelId, Unknown(), L"", true};
        if (timed) {
            const Clock::Duration age = std::max(m_view.now - timed->at, Clock::Duration::zero());
            row.isStale = !m_view.isConnected || age >= stale;
            row.value = write(timed->value, row.isStale ? Clock::Duration::zero() : age);
            row.age = row.isStale ? LastReceivedText(m_view.utc, age) : AgeText(age);
        }
        m_rows.push_back(std::move(row));
    }
    std::vector<StatusRow> Take() { return std::move(m_rows); }

private:
    const StatusView& m_view;
    std::vector<StatusRow> m_rows;
};

std::optional<PlanePosition> PlaneOf(const ReturnPositionStatusInformation& position, int zone)
{
    const SiteReply& p = position.position;
    const std::optional<PlaneProjection> plane =
        HasPlace(position) ? PlaneOfGeodetic(zone, {p.latitudeRad, p.longitudeRad, p.heightM})
                           : std::nullopt;
    return plane ? std::optional(plane->position) : std::nullopt;
}

void AddPosition(Rows& rows, const LiveStatus& status, const StatusView& view)
{
    using Position = ReturnPositionStatusInformation;
    const auto add = [&](int id, auto write) {
        rows.Add(id, status.position, kStaleStatus,
                 [&](const Position& p, Clock::Duration) -> std::wstring { return write(p); });
    };
    add(text::kStatusFix, [](const Position& p) { return FixText(p.fixKind); });
    add(text::kStatusUsed, [](const Position& p) { return std::to_wstring(p.satellitesUsed); });
    rows.Add(text::kGraphPdop, status.pdop, kStaleStatus,
             [](const std::wstring& pdop, Clock::Duration) { return pdop; });
    add(text::kStatusHdop, [](const Position& p) { return Dop(p.hdop); });
    add(text::kStatusVdop, [](const Position& p) { return Dop(p.vdop); });
    const auto angle = [](const Position& p, double SiteReply::*which) {
        return HasPlace(p) ? RADtoDEGStr(p.position.*which, 1, kSecondDecimals) : Unknown();
    };
    add(text::kStatusLatitude,
        [&](const Position& p) { return angle(p, &SiteReply::latitudeRad); });
    add(text::kStatusLongitude,
        [&](const Position& p) { return angle(p, &SiteReply::longitudeRad); });
    const auto metres = [](double m) { return FormatFixed(m, kMetreDecimals) + L" m"; };
    add(text::kStatusHeight,
        [&](const Position& p) { return HasPlace(p) ? metres(p.position.heightM) : Unknown(); });
    add(text::kStatusPlane, [&](const Position& p) {
        const int zone = view.planeZone != 0 ? view.planeZone : NearestPlaneZone(p.position);
        const std::optional<PlanePosition> plane = PlaneOf(p, zone);
        return plane ? FormatText(text::kStatusPlaneValue, zone, plane->xM, plane->yM) : Unknown();
    });
}

std::wstring ClockText(const ReceiverTime& time, const LiveStatus& status, const StatusView& view)
{
    if (!time.isSynchronised) {
        return Unknown();
    }
    const bool isSet = status.clockChange && status.clockChange->isSet;
    const double ahead = std::chrono::duration<double>(time.controllerAhead).count();
    return FormatText(text::kStatusClockAhead, ahead) + Text(isSet ? text::kStatusClockSet
                                                             : view.maySetClock
                                                                 ? text::kStatusClockRefused
                                                                 : text::kStatusClockLeft);
}

void AddTime(Rows& rows, const LiveStatus& status, const StatusView& view)
{
    const auto add = [&](int id, std::chrono::hours behind) {
        rows.Add(
            id, status.time, kStaleStatus, [behind](const ReceiverTime& t, Clock::Duration age) {
                return Moment(t.jst - behind + std::chrono::floor<seconds>(age), t.isSynchronised);
            });
    };
    add(text::kStatusJst, {});
    add(text::kStatusUtc, kJst);
    rows.Add(text::kStatusSynchro, status.time, kStaleStatus,
             [](const ReceiverTime& t, Clock::Duration) {
                 return t.isSynchronised ? FormatText(text::kStatusSynchronised, t.utcOffsetS)
                                         : std::wstring(Text(text::kStatusNotSynchronised));
             });
    rows.Add(text::kStatusClock, status.time, kStaleStatus,
             [&](const ReceiverTime& t, Clock::Duration) { return ClockText(t, status, view); });
}

} // namespace

const wchar_t* FixText(int fixKind)
{
    constexpr int kKinds = 6; // their texts follow one another
    return Text(fixKind >= 0 && fixKind < kKinds ? text::kFixNone + fixKind : text::kStatusUnknown);
}

std::wstring BatteryText(const BatteryReading& reading)
{
    if (!reading.percent) {
        return Text(text::kBatteryUnknown);
    }
    return FormatText(text::kBatteryValue, *reading.percent, reading.source.c_str());
}

std::wstring TrendText(const std::optional<BatteryTrend>& trend)
{
    if (!trend) {
        return Unknown();
    }
    std::wstring text = FormatText(text::kBatteryTrend, trend->percentPerHour);
    if (trend->left) {
        const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(*trend->left).count();
        text += minutes >= 60 ? FormatText(text::kBatteryHoursLeft, static_cast<int>(minutes / 60),
                                           static_cast<int>(minutes % 60))
                              : FormatText(text::kBatteryMinutesLeft, static_cast<int>(minutes));
    }
    return text;
}

std::wstring LastReceivedText(Clock::UtcTime utc, Clock::Duration age)
{
    const auto jst = std::chrono::floor<seconds>(utc - age + kJst);
    const auto day = std::chrono::floor<std::chrono::days>(jst);
    return FormatText(text::kStatusLastReceived, TimeOfDay(jst - day, true).c_str());
}

int NearestPlaneZone(const SiteReply& place)
{
    int nearest = kFirstPlaneZone;
    double least = std::numeric_limits<double>::infinity();
    for (int zone = kFirstPlaneZone; zone <= kLastPlaneZone; ++zone) {
        const GeodeticPosition origin = PlaneOrigin(zone).value_or(GeodeticPosition{});
        const double north = place.latitudeRad - origin.latitudeRad;
        const double east =
            (place.longitudeRad - origin.longitudeRad) * std::cos(origin.latitudeRad);
        const double distance = std::hypot(north, east);
        if (distance < least) {
            least = distance;
            nearest = zone;
        }
    }
    return nearest;
}

std::vector<StatusRow> StatusRowsOf(const LiveStatus& status, const StatusView& view)
{
    Rows rows(view);
    AddPosition(rows, status, view);
    AddTime(rows, status, view);
    rows.Add(
        text::kStatusTracked, status.status, kStaleStatus,
        [](const StatusReply& s, Clock::Duration) { return std::to_wstring(s.satellitesTracked); });
    rows.Add(text::kStatusBattery, status.battery, kStaleBattery,
             [](const BatteryReading& b, Clock::Duration) { return BatteryText(b); });
    rows.Add(text::kStatusTrend, status.battery, kStaleBattery,
             [&](const BatteryReading&, Clock::Duration) { return TrendText(status.trend); });
    rows.Add(text::kStatusMemory, status.status, kStaleStatus,
             [](const StatusReply& s, Clock::Duration) {
                 const bool isPossible = s.freeMemoryTenths >= 0 && s.freeMemoryTenths <= 10;
                 return isPossible ? FormatText(text::kStatusPercent, s.freeMemoryTenths * 10)
                                   : Unknown();
             });
    return rows.Take();
}

} // namespace fieldcore
