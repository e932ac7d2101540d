#include "core/equipment/ReceiverFields.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/GPSError.h"
#include "core/input/Angles.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"
#include "core/planning/PlaneRectangular.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <type_traits>
#include <utility>

namespace fieldcore {

namespace {

using std::chrono::seconds;
using Known = std::optional<FieldValue>;
using R = const Receiver&;
using V = const StatusView&;

constexpr std::chrono::hours kJst{9}; // Japan has no daylight saving time
constexpr double kLargestDop = 99.8;  // 99.9 says that there is none
constexpr int kSecondDecimals = 4;    // of an arc second: 3 mm
constexpr int kDegreeDecimals = 8;    // about a millimetre
constexpr std::uint8_t kMetreDecimals = 3;
constexpr seconds kSeldom{75}; // what is asked for at every fifteenth round

// In the order of their numbers.
constexpr std::array kFixes{
    Term{"none", "no fix", text::kFixNone},
    Term{"searching", "searching", text::kFixSearching},
    Term{"single", "single", text::kFixSingle},
    Term{"differential", "differential", text::kFixDifferential},
    Term{"float", "RTK float", text::kFixFloat},
    Term{"fixed", "RTK fixed", text::kFixFixed},
};
constexpr std::array kFamilies{Term{"oldest", "oldest", 0}, Term{"pica", "Pica", 0},
                               Term{"lark", "Lark", 0}};
constexpr Term kClockSet{"set", "set when synchronised", text::kStatusClockSet};
constexpr Term kClockRefused{"refused", "could not be set", text::kStatusClockRefused};
constexpr Term kClockLeft{"left", "left alone", text::kStatusClockLeft};

/// A number or a text as a field has it.
template <typename Raw>
FieldValue Made(const Raw& raw)
{
    if constexpr (std::is_same_v<Raw, bool>) {
        return raw;
    } else if constexpr (std::is_integral_v<Raw>) {
        return static_cast<std::int64_t>(raw);
    } else if constexpr (std::is_floating_point_v<Raw>) {
        return static_cast<double>(raw);
    } else {
        return raw;
    }
}

/// A member of a reply, as it is.
template <auto Reply, auto Member>
Known Told(R r, V /*view*/)
{
    const auto& timed = r.*Reply;
    return timed ? Known(Made(timed->value.*Member)) : std::nullopt;
}

/// A dilution of precision, as a number that can be one.
Known DopOf(R r, float PositionStatusReply::*member, bool isTrusted)
{
    const auto dop = r.position ? PdopOf(isTrusted, r.position->value.*member) : std::nullopt;
    return dop ? Known(*dop) : std::nullopt;
}

const SiteReply* PlaceOf(R r)
{
    return r.position && HasPlace(r.position->value) ? &r.position->value.position : nullptr;
}

Known AngleOf(R r, double SiteReply::*member)
{
    const SiteReply* const place = PlaceOf(r);
    return place != nullptr ? Known(Angle{place->*member}) : std::nullopt;
}

struct PlanePlace
{
    int zone;
    PlanePosition position;
};

std::optional<PlanePlace> PlaneOf(R r, V view)
{
    const SiteReply* const place = PlaceOf(r);
    if (place == nullptr) {
        return std::nullopt;
    }
    const int zone = view.planeZone != 0 ? view.planeZone : NearestPlaneZone(*place);
    const std::optional<PlaneProjection> plane =
        PlaneOfGeodetic(zone, {place->latitudeRad, place->longitudeRad, place->heightM});
    return plane ? std::optional(PlanePlace{zone, plane->position}) : std::nullopt;
}

Known PlaneOf(R r, V view, double PlanePosition::*member)
{
    const std::optional<PlanePlace> plane = PlaneOf(r, view);
    return plane ? Known(plane->position.*member) : std::nullopt;
}

Known MomentOf(R r, bool isJst)
{
    return r.time ? Known(Moment{r.time->value.jst - (isJst ? seconds(0) : seconds(kJst)),
                                 r.isSynchronised, isJst})
                  : std::nullopt;
}

/// What only a time that has been accepted can tell.
template <typename Read>
Known Synchronised(R r, Read read)
{
    return r.isSynchronised && r.time ? Known(read(r.time->value)) : std::nullopt;
}

Known TextOf(const wchar_t* text)
{
    std::wstring trimmed(text != nullptr ? text : L"");
    trimmed.erase(trimmed.find_last_not_of(L' ') + 1);
    return trimmed.empty() ? std::nullopt : Known(std::move(trimmed));
}

const ReceiverType* TypeOf(R r)
{
    return FindReceiverType(r.identity.TypeNumber());
}

using F = ReceiverField;
using S = FieldSource;
constexpr unsigned kEverywhere = F::Report | F::PositionReport | F::Page;

constexpr std::
    array
        kFields{
            // Who it is
            F{"model", "model", text::kVersionModel, F::Who | F::Version, S::Identity,
              [](R r, V) {
                  return TypeOf(r) != nullptr ? TextOf(TypeOf(r)->model) : std::nullopt;
              }},
            F{.key = "typeNumber",
              .label = "type number",
              .textId = text::kVersionTypeNumber,
              .places = F::Who | F::Version,
              .source = S::Identity,
              .read = [](R r, V) { return Known(Made(r.identity.TypeNumber())); },
              .least = 1},
            F{"typeText", "type text", text::kVersionType, F::Who | F::Version, S::Identity,
              [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvType()); }},
            F{"family", "family", 0, F::Who, S::Identity,
              [](R r, V) {
                  return TypeOf(r) != nullptr
                             ? Known(&kFamilies[static_cast<std::size_t>(TypeOf(r)->family)])
                             : std::nullopt;
              }},
            F{"serial", "serial number", text::kVersionSerial, F::Who | F::Version, S::Identity,
              [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvSN()); }},
            F{"longSerial", "long serial number", text::kVersionLongSerial, F::Who | F::Version,
              S::Identity, [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvSNLong()); }},
            F{.key = "navigationFirmware",
              .label = "navigation firmware",
              .textId = text::kVersionNav,
              .places = F::Who | F::Firmware,
              .source = S::Identity,
              .read = [](R r, V) { return Known(CRecvInfo(r.identity).GetNavVer()); },
              .decimals = 2,
              .least = 0.01},
            F{.key = "signalFirmware",
              .label = "signal firmware",
              .textId = text::kVersionSig,
              .places = F::Who | F::Firmware,
              .source = S::Identity,
              .read = [](R r, V) { return Known(CRecvInfo(r.identity).GetSigVer()); },
              .decimals = 2,
              .least = 0.01},
            F{.key = "bootFirmware",
              .label = "boot firmware",
              .textId = text::kVersionBoot,
              .places = F::Who | F::Firmware,
              .source = S::Identity,
              .read = [](R r, V) { return Known(CRecvInfo(r.identity).GetBootVer()); },
              .decimals = 2,
              .least = 0.01},
            F{.key = "memoryMb",
              .label = "memory",
              .textId = text::kVersionMemory,
              .places = F::Who | F::Version,
              .source = S::Identity,
              .read = [](R r, V) { return Known(Made(CRecvInfo(r.identity).GetRecvMemory())); },
              .unit = "MB",
              .least = 1},
            F{"port", "port in use", 0, F::Who, S::Identity,
              [](R r, V) {
                  return r.identity.options ? Known(Made(r.identity.options->currentPort))
                                            : std::nullopt;
              }},
            F{"ports", "ports", 0, F::Who, S::Identity,
              [](R r, V) {
                  return r.identity.options ? Known(Made(r.identity.options->portCount))
                                            : std::nullopt;
              }},

            // Its time
            F{"utc", "time", text::kStatusUtc, F::Report | F::Page, S::Time,
              [](R r, V) { return MomentOf(r, false); }},
            F{"jst", "", text::kStatusJst, F::Report | F::Page, S::Time,
              [](R r, V) { return MomentOf(r, true); }},
            F{.key = "gpsWeek",
              .label = "GPS week",
              .textId = 0,
              .places = F::Report,
              .source = S::Time,
              .read = &Told<&Receiver::time, &ReceiverTime::week>,
              .least = 0},
            F{.key = "gpsSecondsOfWeek",
              .label = "second of the week",
              .textId = 0,
              .places = F::Report,
              .source = S::Time,
              .read =
                  [](R r, V) {
                      return Synchronised(r, [](const ReceiverTime& t) { // it tells whole seconds
                          return Made(static_cast<std::int64_t>(t.secondsOfWeek));
                      });
                  },
              .unit = "s",
              .least = 0,
              .most = 604799},
            F{"timeValid", "time is valid", 0, F::Report, S::Status,
              &Told<&Receiver::status, &StatusReply::timeValid>},
            F{.key = "utcOffsetS",
              .label = "GPS time minus UTC",
              .textId = text::kStatusOffset,
              .places = F::Report | F::Page,
              .source = S::Time,
              .read =
                  [](R r, V) {
                      return Synchronised(r,
                                          [&](const ReceiverTime&) { return Made(r.utcOffsetS); });
                  },
              .unit = "s",
              .unitTextId = text::kUnitSeconds,
              .least = -100,
              .most = 100},
            F{"synchronised", "time can be trusted", text::kStatusSynchro, F::Report | F::Page,
              S::Time,
              [](R r, V) { return r.time || r.position ? Known(r.isSynchronised) : std::nullopt; }},
            F{.key = "controllerAheadS",
              .label = "controller ahead by",
              .textId = text::kStatusClock,
              .places = F::Page,
              .source = S::Time,
              .read =
                  [](R r, V) {
                      return Synchronised(r, [](const ReceiverTime& t) {
                          return Made(std::chrono::duration<double>(t.controllerAhead).count());
                      });
                  },
              .unit = "s",
              .unitTextId = text::kUnitSeconds,
              .decimals = 1,
              .isSigned = true},
            F{"controllerClock", "controller's clock", text::kStatusClockSetting, F::Page, S::Time,
              [](R r, V view) {
                  return Synchronised(r, [&](const ReceiverTime&) {
                      const bool isSet = r.clockChange && r.clockChange->isSet;
                      const Term& not_set = view.maySetClock ? kClockRefused : kClockLeft;
                      return FieldValue(isSet ? &kClockSet : &not_set);
                  });
              }},

            // Its position
            F{"fix", "fix", text::kStatusFix, kEverywhere, S::Position,
              [](R r, V) {
                  const int kind = r.position ? r.position->value.fixKind : -1;
                  const bool isKind = kind >= 0 && kind < static_cast<int>(kFixes.size());
                  return isKind ? Known(&kFixes[static_cast<std::size_t>(kind)]) : std::nullopt;
              }},
            F{.key = "satellitesTracked",
              .label = "satellites tracked",
              .textId = text::kStatusTracked,
              .places = F::Report | F::Page,
              .source = S::Status,
              .read = &Told<&Receiver::status, &StatusReply::satellitesTracked>,
              .least = 0},
            F{.key = "satellitesUsed",
              .label = "satellites used",
              .textId = text::kStatusUsed,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read = &Told<&Receiver::position, &PositionStatusReply::satellitesUsed>,
              .least = 0},
            F{.key = "pdop",
              .label = "PDOP",
              .textId = text::kGraphPdop,
              .places = kEverywhere,
              .source = S::Position,
              .read = [](R r, V) { return DopOf(r, &PositionStatusReply::pdop, r.isSynchronised); },
              .decimals = 1,
              .most = kLargestDop,
              .unknownTextId = text::kStatusNoPdop},
            F{.key = "hdop",
              .label = "HDOP",
              .textId = text::kStatusHdop,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read = [](R r, V) { return DopOf(r, &PositionStatusReply::hdop, true); },
              .decimals = 1,
              .most = kLargestDop},
            F{.key = "vdop",
              .label = "VDOP",
              .textId = text::kStatusVdop,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read = [](R r, V) { return DopOf(r, &PositionStatusReply::vdop, true); },
              .decimals = 1,
              .most = kLargestDop},
            F{"latitudeDeg", "latitude", text::kStatusLatitude, F::PositionReport | F::Page,
              S::Position, [](R r, V) { return AngleOf(r, &SiteReply::latitudeRad); }},
            F{"longitudeDeg", "longitude", text::kStatusLongitude, F::PositionReport | F::Page,
              S::Position, [](R r, V) { return AngleOf(r, &SiteReply::longitudeRad); }},
            F{.key = "heightM",
              .label = "ellipsoidal height",
              .textId = text::kStatusHeight,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read =
                  [](R r, V) {
                      return PlaceOf(r) != nullptr ? Known(PlaceOf(r)->heightM) : std::nullopt;
                  },
              .unit = "m",
              .decimals = kMetreDecimals},
            F{.key = "planeZone",
              .label = "plane zone",
              .textId = text::kStatusZone,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read =
                  [](R r, V view) {
                      const std::optional<PlanePlace> plane = PlaneOf(r, view);
                      return plane ? Known(Made(plane->zone)) : std::nullopt;
                  },
              .unitTextId = text::kUnitZone},
            F{.key = "planeXM",
              .label = "plane x",
              .textId = text::kStatusPlaneX,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read = [](R r, V view) { return PlaneOf(r, view, &PlanePosition::xM); },
              .unit = "m",
              .decimals = kMetreDecimals},
            F{.key = "planeYM",
              .label = "plane y",
              .textId = text::kStatusPlaneY,
              .places = F::PositionReport | F::Page,
              .source = S::Position,
              .read = [](R r, V view) { return PlaneOf(r, view, &PlanePosition::yM); },
              .unit = "m",
              .decimals = kMetreDecimals},

            // Its battery and its memory
            F{.key = "batteryPercent",
              .label = "battery",
              .textId = text::kStatusBattery,
              .places = F::Report | F::Page,
              .source = S::Status,
              .read = &Told<&Receiver::status, &StatusReply::batteryPercent>,
              .unit = "%",
              .least = 0,
              .most = 100,
              .unknownTextId = text::kBatteryUnknown},
            F{.key = "powerSource",
              .label = "power source",
              .textId = 0,
              .places = F::Report,
              .source = S::PowerSource,
              .read =
                  [](R r, V) {
                      return r.powerSource ? Known(Made(r.powerSource->value)) : std::nullopt;
                  },
              .least = 1,
              .most = 3},
            F{.key = "powerSourceName",
              .label = "power source name",
              .textId = text::kStatusSource,
              .places = F::Report | F::Page,
              .source = S::PowerSource,
              .read =
                  [](R r, V) {
                      return r.powerSource ? Known(PowerSourceName(r.identity.TypeNumber(),
                                                                   r.powerSource->value))
                                           : std::nullopt;
                  },
              .stale = kSeldom},
            F{.key = "batteryTrendPercentPerHour",
              .label = "battery trend",
              .textId = text::kStatusTrend,
              .places = F::Report | F::Page,
              .source = S::Status,
              .read = [](R r,
                         V) { return r.trend ? Known(r.trend->percentPerHour) : std::nullopt; },
              .unit = "%/h",
              .unitTextId = text::kUnitPercentPerHour,
              .decimals = 1,
              .stale = kSeldom,
              .isSigned = true},
            F{.key = "batteryMinutesLeft",
              .label = "battery lasts",
              .textId = text::kStatusLeft,
              .places = F::Report | F::Page,
              .source = S::Status,
              .read =
                  [](R r, V) {
                      return r.trend && r.trend->left
                                 ? Known(std::chrono::floor<std::chrono::minutes>(*r.trend->left))
                                 : std::nullopt;
                  },
              .unit = "min",
              .stale = kSeldom},
            F{.key = "freeMemoryPercent",
              .label = "free memory",
              .textId = text::kStatusMemory,
              .places = F::Report | F::Page,
              .source = S::Status,
              .read =
                  [](R r, V) {
                      return r.status ? Known(Made(r.status->value.freeMemoryTenths * 10))
                                      : std::nullopt;
                  },
              .unit = "%",
              .least = 0,
              .most = 100},
            F{
                "survey", "running survey", 0, F::Report, S::Status,
                [](R r, V) { // blank: none runs
                    return r.status ? Known(TextOf(r.status->value.survey.c_str())
                                                .value_or(std::wstring()))
                                    : std::nullopt;
                }},
        };

template <typename Number>
bool IsWithin(const ReceiverField& field, Number number)
{
    const auto value = static_cast<double>(number);
    return std::isfinite(value) && value >= field.least && value <= field.most;
}

std::optional<Clock::Duration> AgeOf(const ReceiverField& field, R receiver, V view)
{
    const std::optional<Clock::Duration> at = TimeOf(field.source, receiver);
    return at ? std::optional(std::max(view.now - *at, Clock::Duration::zero())) : std::nullopt;
}

struct MomentParts
{
    std::string date;
    std::string timeOfDay;
};

MomentParts PartsOf(std::chrono::local_seconds time, bool hasSeconds)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss parts(time - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    MomentParts made{text.data(), {}};
    std::snprintf(text.data(), text.size(), hasSeconds ? "%02d:%02d:%02d" : "%02d:%02d",
                  static_cast<int>(parts.hours().count()),
                  static_cast<int>(parts.minutes().count()),
                  static_cast<int>(parts.seconds().count()));
    made.timeOfDay = text.data();
    return made;
}

/// As ISO 8601 for programs.
Value ReportMoment(const Moment& moment)
{
    const MomentParts parts = PartsOf(moment.time, moment.hasSeconds);
    return Value::Word(parts.date + "T" + parts.timeOfDay + (moment.isJst ? "+09:00" : "Z"),
                       parts.date + " " + parts.timeOfDay + (moment.isJst ? " JST" : " UTC"));
}

/// The moment as it is by now.
std::chrono::local_seconds MovedOn(const Moment& moment, Clock::Duration age)
{
    return moment.time + std::chrono::floor<seconds>(age);
}

/// How old a value is for what goes on as long as it is fresh.
Clock::Duration GoneBy(const ReceiverField& field, R receiver, V view)
{
    return IsStale(field, receiver, view)
               ? Clock::Duration::zero()
               : AgeOf(field, receiver, view).value_or(Clock::Duration::zero());
}

std::wstring WithUnit(const ReceiverField& field, std::wstring number, bool isBelowZero)
{
    number = (field.isSigned && !isBelowZero ? L"+" : L"") + number;
    const std::wstring unit =
        field.unitTextId != 0 ? std::wstring(Text(field.unitTextId)) : FromUtf8(field.unit);
    return unit.empty() ? number : number + L" " + unit;
}

std::wstring MinutesText(std::chrono::minutes left)
{
    const auto minutes = static_cast<int>(left.count());
    return minutes >= 60 ? FormatText(text::kBatteryHoursLeft, minutes / 60, minutes % 60)
                         : FormatText(text::kBatteryMinutesLeft, minutes);
}

/// What a receiver sends is shown as it is, but for what would break the line.
std::wstring OneLine(std::wstring text)
{
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c < L' '; }, L'?');
    return text;
}

template <typename... Cases>
struct Overloaded : Cases...
{
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace

std::optional<Clock::Duration> TimeOf(FieldSource source, const Receiver& receiver)
{
    const auto at = [](const auto& timed) {
        return timed ? std::optional(timed->at) : std::nullopt;
    };
    switch (source) {
    case FieldSource::Identity:
        break;
    case FieldSource::Status:
        return at(receiver.status);
    case FieldSource::Position:
        return at(receiver.position);
    case FieldSource::Time:
        return at(receiver.time);
    case FieldSource::PowerSource:
        return at(receiver.powerSource);
    }
    return std::nullopt;
}

std::span<const ReceiverField> AllReceiverFields()
{
    return kFields;
}

const ReceiverField& FieldOf(std::string_view key)
{
    const auto* const field =
        std::find_if(kFields.begin(), kFields.end(),
                     [key](const ReceiverField& candidate) { return candidate.key == key; });
    assert(field != kFields.end());
    return *field;
}

std::optional<FieldValue> ReadField(const ReceiverField& field, const Receiver& receiver,
                                    const StatusView& view)
{
    const Known value = field.read(receiver, view);
    if (!value) {
        return std::nullopt;
    }
    const auto* const whole = std::get_if<std::int64_t>(&*value);
    const auto* const real = std::get_if<double>(&*value);
    const bool isPossible = (whole == nullptr || IsWithin(field, *whole)) &&
                            (real == nullptr || IsWithin(field, *real));
    return isPossible ? value : std::nullopt;
}

Value ReportField(const ReceiverField& field, const Receiver& receiver, const StatusView& view)
{
    const Known value = ReadField(field, receiver, view);
    if (!value) {
        return Value::Unknown();
    }
    return std::visit(
        Overloaded{
            [](bool yes) { return Value::YesNo(yes); },
            [&](std::int64_t whole) { return Value::Integer(whole, field.unit); },
            [&](double real) { return Value::Real(real, field.decimals, field.unit); },
            [](const std::wstring& text) { return Value::Text(ToUtf8(text), "none"); },
            [](const Term* term) { return Value::Word(term->code, term->words); },
            [](Angle angle) {
                return Value::Real(angle.rad * 180.0 / std::numbers::pi, kDegreeDecimals, "deg");
            },
            [](const Moment& moment) { return ReportMoment(moment); },
            [&](std::chrono::minutes left) { return Value::Integer(left.count(), field.unit); },
        },
        *value);
}

std::wstring FieldText(const ReceiverField& field, const Receiver& receiver, const StatusView& view)
{
    const Known value = ReadField(field, receiver, view);
    if (!value) {
        return Text(field.unknownTextId != 0 ? field.unknownTextId : text::kStatusUnknown);
    }
    return std::visit(
        Overloaded{
            [](bool yes) -> std::wstring {
                return Text(yes ? text::kStatusSynchronised : text::kStatusNotSynchronised);
            },
            [&](std::int64_t whole) { return WithUnit(field, std::to_wstring(whole), whole < 0); },
            [&](double real) {
                const auto decimals = static_cast<std::uint8_t>(field.decimals);
                return WithUnit(field, FormatFixed(real, decimals), real < 0.0);
            },
            [](const std::wstring& text) { return OneLine(text); },
            [](const Term* term) { return std::wstring(Text(term->textId)); },
            [](Angle angle) { return RADtoDEGStr(angle.rad, 1, kSecondDecimals); },
            [&](const Moment& moment) {
                const MomentParts parts =
                    PartsOf(MovedOn(moment, GoneBy(field, receiver, view)), moment.hasSeconds);
                return FromUtf8(parts.date + " " + parts.timeOfDay);
            },
            [](std::chrono::minutes left) { return MinutesText(left); },
        },
        *value);
}

bool IsStale(const ReceiverField& field, const Receiver& receiver, const StatusView& view)
{
    const std::optional<Clock::Duration> age = AgeOf(field, receiver, view);
    return !age || *age >= field.stale || receiver.link != LinkState::Connected;
}

std::wstring JstTimeOfDay(const Receiver& receiver, const StatusView& view)
{
    const ReceiverField& field = FieldOf("jst");
    const Known value = ReadField(field, receiver, view);
    if (!value) {
        return {};
    }
    const auto& moment = std::get<Moment>(*value);
    const Clock::Duration age = GoneBy(field, receiver, view);
    return FromUtf8(PartsOf(MovedOn(moment, age), moment.hasSeconds).timeOfDay);
}

std::wstring ControllerTimeOfDay(Clock::UtcTime utc)
{
    const auto jst = std::chrono::floor<seconds>(utc + kJst).time_since_epoch();
    return FromUtf8(PartsOf(std::chrono::local_seconds(jst), true).timeOfDay);
}

Value UtcValue(Clock::UtcTime utc)
{
    const auto time = std::chrono::floor<seconds>(utc).time_since_epoch();
    return ReportMoment({std::chrono::local_seconds(time), true, false});
}

bool HasPlace(const PositionStatusReply& position)
{
    const SiteReply& site = position.position;
    return IsPositionComputed(position) && std::isfinite(site.latitudeRad) &&
           std::isfinite(site.longitudeRad) && std::isfinite(site.heightM) &&
           std::abs(site.latitudeRad) <= std::numbers::pi / 2 &&
           std::abs(site.longitudeRad) <= 2 * std::numbers::pi;
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

} // namespace fieldcore
