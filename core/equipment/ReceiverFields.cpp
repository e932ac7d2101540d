#include "core/equipment/ReceiverFields.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/GPSError.h"
#include "core/input/Angles.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"
#include "core/planning/Degrees.h"
#include "core/planning/PlaneRectangular.h"
#include "core/platform/Calendar.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/tilt/CalibrationStatus.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <type_traits>
#include <utility>

namespace fieldcore {

namespace {

using std::chrono::seconds;
using Known = std::optional<FieldValue>;
using R = const Receiver&;
using V = const StatusView&;

constexpr double kLargestDop = 99.8; // 99.9 says that there is none
constexpr int kSecondDecimals = 4;   // of an arc second: 3 mm
constexpr int kDegreeDecimals = 8;   // about a millimetre
constexpr seconds kUsual{10};
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
constexpr std::array kFamilies{Term{"oldest", "oldest", text::kTermOldest}, Term{"pica", "Pica", 0},
                               Term{"lark", "Lark", 0}};
constexpr Term kClockSet{"set", "set when synchronised", text::kStatusClockSet};
constexpr Term kClockRefused{"refused", "could not be set", text::kStatusClockRefused};
constexpr Term kClockLeft{"left", "left alone", text::kStatusClockLeft};

constexpr Term kNoTiltSensor{"absent", "no sensor", text::kTermNoSensor};
constexpr std::array kTiltStates{
    // in the order of their numbers, as the next
    Term{"starting", "starting", text::kTermStarting},
    Term{"measuring", "measuring", text::kTermMeasuring},
    Term{"moving", "moving too fast", text::kTermMoving},
    Term{"out-of-range", "out of range", text::kTermOutOfRange},
};
constexpr std::array kCalibrations{
    Term{"none", "not completed", text::kTermNotCompleted},
    Term{"completed", "completed", text::kTermCompleted},
    Term{"running", "running", text::kTermRunning},
    Term{"failed", "failed", text::kTermFailed},
    Term{"expired", "too old", text::kTermTooOld},
};

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

template <auto Reply>
std::optional<Clock::Duration> When(R r)
{
    return r.*Reply ? std::optional((r.*Reply)->at) : std::nullopt;
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

template <std::size_t Count>
Known TermOf(const std::array<Term, Count>& terms, int number)
{
    const bool isOne = number >= 0 && number < static_cast<int>(Count);
    return isOne ? Known(&terms[static_cast<std::size_t>(number)]) : std::nullopt;
}

const ReceiverType* TypeOf(R r)
{
    return FindReceiverType(r.identity.TypeNumber());
}

/// A member of the options.
template <auto Member>
Known Option(R r, V /*view*/)
{
    return r.identity.options ? Known(Made((*r.identity.options).*Member)) : std::nullopt;
}

Known Model(R r, V /*view*/)
{
    const ReceiverType* const type = TypeOf(r);
    return type != nullptr ? TextOf(type->model) : std::nullopt;
}

Known Family(R r, V /*view*/)
{
    const ReceiverType* const type = TypeOf(r);
    return type != nullptr ? TermOf(kFamilies, static_cast<int>(type->family)) : std::nullopt;
}

Known SecondsOfWeek(R r, V /*view*/)
{
    return Synchronised(r, [](const ReceiverTime& t) { // it tells whole ones
        return Made(static_cast<std::int64_t>(t.secondsOfWeek));
    });
}

Known ControllerAhead(R r, V /*view*/)
{
    return Synchronised(r, [](const ReceiverTime& t) {
        return Made(std::chrono::duration<double>(t.controllerAhead).count());
    });
}

Known ControllerClock(R r, V view)
{
    const Term& other = view.maySetClock ? kClockRefused : kClockLeft;
    const bool isSet = r.clockChange && r.clockChange->isSet;
    return Synchronised(
        r, [&](const ReceiverTime&) { return FieldValue(isSet ? &kClockSet : &other); });
}

Known Fix(R r, V /*view*/)
{
    return r.position ? TermOf(kFixes, r.position->value.fixKind) : std::nullopt;
}

Known Height(R r, V /*view*/)
{
    const SiteReply* const place = PlaceOf(r);
    return place != nullptr ? Known(place->heightM) : std::nullopt;
}

Known Zone(R r, V view)
{
    const std::optional<PlanePlace> plane = PlaneOf(r, view);
    return plane ? Known(Made(plane->zone)) : std::nullopt;
}

Known PowerSource(R r, V /*view*/)
{
    return r.powerSource ? Known(Made(r.powerSource->value)) : std::nullopt;
}

Known NameOfPowerSource(R r, V /*view*/)
{
    return r.powerSource ? Known(PowerSourceName(r.identity.TypeNumber(), r.powerSource->value))
                         : std::nullopt;
}

Known Trend(R r, V /*view*/)
{
    return r.trend ? Known(r.trend->percentPerHour) : std::nullopt;
}

Known TimeLeft(R r, V /*view*/)
{
    return r.trend && r.trend->left
               ? Known(std::chrono::floor<std::chrono::minutes>(*r.trend->left))
               : std::nullopt;
}

Known FreeMemory(R r, V /*view*/)
{
    return r.status ? Known(Made(r.status->value.freeMemoryTenths * 10)) : std::nullopt;
}

/// Blank: none runs.
Known Survey(R r, V /*view*/)
{
    return r.status ? Known(TextOf(r.status->value.survey.c_str()).value_or(std::wstring()))
                    : std::nullopt;
}

Known AboveMask(R r, V view)
{
    if (!r.tracked || !view.limits) {
        return std::nullopt;
    }
    const auto& all = r.tracked->value.satellites;
    return Known(static_cast<std::int64_t>(std::count_if(
        all.begin(), all.end(), [mask = view.limits->maskDeg](const ListedSatellite& satellite) {
            return satellite.HasDirection() && satellite.elevationDeg >= mask;
        })));
}

Known StateOfTilt(R r, V /*view*/)
{
    if (!r.tilt) {
        return std::nullopt;
    }
    return r.tilt->value.sensorPresent ? TermOf(kTiltStates, r.tilt->value.state)
                                       : Known(&kNoTiltSensor);
}

/// An angle of the reading, degrees.
template <auto Member>
Known TiltAngle(R r, V /*view*/)
{
    return r.tilt ? Known(DegreesOf(r.tilt->value.*Member)) : std::nullopt;
}

/// How far the antenna stands beside the point, mm.
Known TiltOffset(R r, V view)
{
    constexpr double kMmInM = 1000.0;
    return r.tilt && view.antennaHeightM > 0.0 && r.tilt->value.tiltRad <= std::numbers::pi / 2
               ? Known(std::sin(r.tilt->value.tiltRad) * view.antennaHeightM * kMmInM)
               : std::nullopt;
}

Known StateOfCalibration(R r, V /*view*/)
{
    const bool isTold =
        r.tilt && r.tilt->value.calibrationValid && !r.tilt->value.error1 && !r.tilt->value.error2;
    return isTold ? TermOf(kCalibrations, r.tilt->value.calibrationState) : std::nullopt;
}

Known CalibrationLeft(R r, V /*view*/)
{
    return r.tilt && r.calibration ? Known(static_cast<std::int64_t>(
                                         RemainingSeconds(r.calibration->value, r.tilt->value)))
                                   : std::nullopt;
}

using F = ReceiverField;
using S = FieldSource;

constexpr unsigned kWho = F::Who | F::Version;
constexpr unsigned kFirmware = F::Who | F::Firmware;
constexpr unsigned kStatus = F::Report | F::Page;
constexpr unsigned kPosition = F::PositionReport | F::Page;

constexpr FieldNumber kPlain{};
constexpr FieldNumber kTypeNumber{.least = 1};
constexpr FieldNumber kOfWeek{.unit = "s", .least = 0, .most = 604799};
constexpr FieldNumber kZone{.unitTextId = text::kUnitZone};
constexpr FieldNumber kSource{.least = 1, .most = 3};
constexpr FieldNumber kMinutes{.unit = "min"};
constexpr FieldNumber kCount{.least = 0};
constexpr FieldNumber kVersion{.decimals = 2, .least = 0.01};
constexpr FieldNumber kMegabytes{.unit = "MB", .least = 1};
constexpr FieldNumber kOffset{
    .unit = "s", .unitTextId = text::kUnitSeconds, .least = -100, .most = 100};
constexpr FieldNumber kAhead{
    .unit = "s", .unitTextId = text::kUnitSeconds, .decimals = 1, .isSigned = true};
constexpr FieldNumber kDop{.decimals = 1, .most = kLargestDop};
constexpr FieldNumber kMetres{.unit = "m", .decimals = 3};
constexpr FieldNumber kPercent{.unit = "%", .least = 0, .most = 100};
constexpr FieldNumber kPerHour{
    .unit = "%/h", .unitTextId = text::kUnitPercentPerHour, .decimals = 1, .isSigned = true};

constexpr FieldNumber kTiltDegrees{.unit = "deg",
                                   .unitTextId = text::kUnitDegrees,
                                   .decimals = 4,
                                   .userDecimals = 2,
                                   .least = -360,
                                   .most = 360};
constexpr FieldNumber kMillimetres{.unit = "mm",
                                   .unitTextId = text::kUnitMillimetres,
                                   .decimals = 1,
                                   .userDecimals = 0,
                                   .least = 0};
constexpr FieldNumber kHours{.unit = "h", .least = 0};
constexpr FieldNumber kLeftS{.unit = "s", .least = 1};
constexpr seconds kTracked{30}; // what is asked for at every fifth round
constexpr seconds kOfBubble{2};

constexpr ReceiverField kFields[] = {
    // Who it is
    {"model", "model", text::kVersionModel, kWho, S::Identity, Model},
    {"typeNumber", "type number", text::kVersionTypeNumber, kWho, S::Identity,
     [](R r, V) { return Known(Made(r.identity.TypeNumber())); }, kTypeNumber},
    {"typeText", "type text", text::kVersionType, kWho, S::Identity,
     [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvType()); }},
    {"family", "family", text::kFieldFamily, F::Who, S::Identity, Family},
    {"serial", "serial number", text::kVersionSerial, kWho, S::Identity,
     [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvSN()); }},
    {"longSerial", "long serial number", text::kVersionLongSerial, kWho, S::Identity,
     [](R r, V) { return TextOf(CRecvInfo(r.identity).GetRecvSNLong()); }},
    {"navigationFirmware", "navigation firmware", text::kVersionNav, kFirmware, S::Identity,
     [](R r, V) { return Known(CRecvInfo(r.identity).GetNavVer()); }, kVersion},
    {"signalFirmware", "signal firmware", text::kVersionSig, kFirmware, S::Identity,
     [](R r, V) { return Known(CRecvInfo(r.identity).GetSigVer()); }, kVersion},
    {"bootFirmware", "boot firmware", text::kVersionBoot, kFirmware, S::Identity,
     [](R r, V) { return Known(CRecvInfo(r.identity).GetBootVer()); }, kVersion},
    {"memoryMb", "memory", text::kVersionMemory, kWho, S::Identity, Option<&OptionsReply::memory>,
     kMegabytes},
    {"port", "port in use", text::kFieldPort, F::Who, S::Identity,
     Option<&OptionsReply::currentPort>},
    {"ports", "ports", text::kFieldPorts, F::Who, S::Identity, Option<&OptionsReply::portCount>},

    // Its time
    {"utc", "time", text::kStatusUtc, kStatus, S::Time, [](R r, V) { return MomentOf(r, false); }},
    {"jst", "", text::kStatusJst, kStatus, S::Time, [](R r, V) { return MomentOf(r, true); }},
    {"gpsWeek", "GPS week", text::kFieldGpsWeek, F::Report, S::Time,
     Told<&Receiver::time, &ReceiverTime::week>, kCount},
    {"gpsSecondsOfWeek", "second of the week", text::kFieldSecondsOfWeek, F::Report, S::Time,
     SecondsOfWeek, kOfWeek},
    {"timeValid", "time is valid", text::kFieldTimeValid, F::Report, S::Status,
     Told<&Receiver::status, &StatusReply::timeValid>},
    {"utcOffsetS", "GPS time minus UTC", text::kStatusOffset, kStatus, S::Time,
     [](R r, V) {
         return Synchronised(r, [&](const ReceiverTime&) { return Made(r.utcOffsetS); });
     },
     kOffset},
    {"synchronised", "time can be trusted", text::kStatusSynchro, kStatus, S::Time,
     [](R r, V) { return r.time || r.position ? Known(r.isSynchronised) : std::nullopt; }},
    {"controllerAheadS", "controller ahead by", text::kStatusClock, F::Page, S::Time,
     ControllerAhead, kAhead},
    {"controllerClock", "controller's clock", text::kStatusClockSetting, F::Page, S::Time,
     ControllerClock},

    // Its position
    {"fix", "fix", text::kStatusFix, kPosition | F::Report, S::Position, Fix},
    {"satellitesTracked", "satellites tracked", text::kStatusTracked, kStatus, S::Status,
     Told<&Receiver::status, &StatusReply::satellitesTracked>, kCount},
    {"satellitesUsed", "satellites used", text::kStatusUsed, kPosition, S::Position,
     Told<&Receiver::position, &PositionStatusReply::satellitesUsed>, kCount},
    {"satellitesAboveMask", "satellites above the mask", text::kStatusAboveMask, F::Page,
     S::Tracked, AboveMask, kCount, kTracked},
    {"pdop", "PDOP", text::kGraphPdop, kPosition | F::Report, S::Position,
     [](R r, V) { return DopOf(r, &PositionStatusReply::pdop, r.isSynchronised); }, kDop, kUsual,
     text::kStatusNoPdop},
    {"hdop", "HDOP", text::kStatusHdop, kPosition, S::Position,
     [](R r, V) { return DopOf(r, &PositionStatusReply::hdop, true); }, kDop},
    {"vdop", "VDOP", text::kStatusVdop, kPosition, S::Position,
     [](R r, V) { return DopOf(r, &PositionStatusReply::vdop, true); }, kDop},
    {"latitudeDeg", "latitude", text::kStatusLatitude, kPosition, S::Position,
     [](R r, V) { return AngleOf(r, &SiteReply::latitudeRad); }},
    {"longitudeDeg", "longitude", text::kStatusLongitude, kPosition, S::Position,
     [](R r, V) { return AngleOf(r, &SiteReply::longitudeRad); }},
    {"heightM", "ellipsoidal height", text::kStatusHeight, kPosition, S::Position, Height, kMetres},
    {"planeZone", "plane zone", text::kStatusZone, kPosition, S::Position, Zone, kZone},
    {"planeXM", "plane x", text::kStatusPlaneX, kPosition, S::Position,
     [](R r, V view) { return PlaneOf(r, view, &PlanePosition::xM); }, kMetres},
    {"planeYM", "plane y", text::kStatusPlaneY, kPosition, S::Position,
     [](R r, V view) { return PlaneOf(r, view, &PlanePosition::yM); }, kMetres},

    // Its battery and its memory
    {"batteryPercent", "battery", text::kStatusBattery, kStatus, S::Status,
     Told<&Receiver::status, &StatusReply::batteryPercent>, kPercent, kUsual,
     text::kBatteryUnknown},
    {"powerSource", "power source", text::kFieldPowerSource, F::Report, S::PowerSource, PowerSource,
     kSource, kSeldom},
    {"powerSourceName", "power source name", text::kStatusSource, kStatus, S::PowerSource,
     NameOfPowerSource, kPlain, kSeldom},
    {"batteryTrendPercentPerHour", "battery trend", text::kStatusTrend, kStatus, S::Status, Trend,
     kPerHour, kSeldom},
    {"batteryMinutesLeft", "battery lasts", text::kStatusLeft, kStatus, S::Status, TimeLeft,
     kMinutes, kSeldom},
    {"freeMemoryPercent", "free memory", text::kStatusMemory, kStatus, S::Status, FreeMemory,
     kPercent},
    {"survey", "running survey", text::kFieldSurvey, F::Report, S::Status, Survey},

    // Its tilt sensor
    {"state", "state", text::kFieldTiltState, F::Tilt, S::Tilt, StateOfTilt},
    {"tiltDeg", "tilt", text::kTiltAngle, F::Tilt, S::Tilt, TiltAngle<&TiltReading::tiltRad>,
     kTiltDegrees, kOfBubble},
    {"t1Deg", "first component", text::kFieldTilt1, F::Tilt, S::Tilt,
     TiltAngle<&TiltReading::t1Rad>, kTiltDegrees, kOfBubble},
    {"t2Deg", "second component", text::kFieldTilt2, F::Tilt, S::Tilt,
     TiltAngle<&TiltReading::t2Rad>, kTiltDegrees, kOfBubble},
    {"tiltOffsetMm", "antenna beside the point", text::kTiltOffset, 0, S::Tilt, TiltOffset,
     kMillimetres, kOfBubble},
    {"calibrated", "calibrated", text::kFieldCalibrated, F::Tilt, S::Tilt,
     Told<&Receiver::tilt, &TiltReading::calibrated>},
    {"calibration", "calibration", text::kFieldCalibration, F::Tilt, S::Tilt, StateOfCalibration},
    {"expiryHours", "valid for", text::kFieldExpiry, F::Tilt, S::Calibration,
     Told<&Receiver::calibration, &TiltCalibration::validityHours>, kHours},
    {"remainingSeconds", "still valid for", text::kFieldRemaining, F::Tilt, S::Calibration,
     CalibrationLeft, kLeftS},
};

template <typename Number>
bool IsWithin(const ReceiverField& field, Number number)
{
    const auto value = static_cast<double>(number);
    return std::isfinite(value) && value >= field.number.least && value <= field.number.most;
}

struct MomentParts
{
    std::string date;
    std::string timeOfDay;
};

MomentParts PartsOf(std::chrono::local_seconds time, bool hasSeconds)
{
    const CTime::LocalParts p = CalendarPartsOf(time);
    std::array<char, 64> date{};
    std::array<char, 64> timeOfDay{};
    std::snprintf(date.data(), date.size(), "%04d-%02d-%02d", p.year, p.month, p.day);
    std::snprintf(timeOfDay.data(), timeOfDay.size(), hasSeconds ? "%02d:%02d:%02d" : "%02d:%02d",
                  p.hour, p.minute, p.second);
    return {date.data(), timeOfDay.data()};
}

/// As ISO 8601 for programs.
Value ReportMoment(const Moment& moment)
{
    const MomentParts parts = PartsOf(moment.time, moment.hasSeconds);
    return Value::Word(parts.date + "T" + parts.timeOfDay + (moment.isJst ? "+09:00" : "Z"),
                       parts.date + " " + parts.timeOfDay + (moment.isJst ? " JST" : " UTC"));
}

/// The moment as it is by now: it goes on as long as it is fresh.
MomentParts PartsByNow(const Moment& moment, const ReceiverField& field, R receiver, V view)
{
    const auto age = IsStale(field, receiver, view) ? std::nullopt : AgeOf(field, receiver, view);
    const auto goneBy = std::chrono::floor<seconds>(age.value_or(Clock::Duration::zero()));
    return PartsOf(moment.time + goneBy, moment.hasSeconds);
}

std::wstring WithUnit(const ReceiverField& field, std::wstring number, bool isBelowZero)
{
    number = (field.number.isSigned && !isBelowZero ? L"+" : L"") + number;
    const std::wstring unit = field.number.unitTextId != 0
                                  ? std::wstring(Text(field.number.unitTextId))
                                  : FromUtf8(field.number.unit);
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
    constexpr std::array kTimes{When<&Receiver::status>,     When<&Receiver::position>,
                                When<&Receiver::time>,       When<&Receiver::powerSource>,
                                When<&Receiver::tracked>,    When<&Receiver::tilt>,
                                When<&Receiver::calibration>}; // in the order of the others
    return source != FieldSource::Identity
               ? kTimes.at(static_cast<std::size_t>(source) - 1)(receiver)
               : std::nullopt;
}

std::optional<Clock::Duration> AgeOf(const ReceiverField& field, const Receiver& receiver,
                                     const StatusView& view)
{
    const std::optional<Clock::Duration> at = TimeOf(field.source, receiver);
    return at ? std::optional(std::max(view.now - *at, Clock::Duration::zero())) : std::nullopt;
}

std::span<const ReceiverField> AllReceiverFields()
{
    return kFields;
}

const ReceiverField& FieldOf(std::string_view key)
{
    const auto* const field =
        std::find_if(std::begin(kFields), std::end(kFields),
                     [key](const ReceiverField& candidate) { return candidate.key == key; });
    assert(field != std::end(kFields));
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
            [&](std::int64_t whole) { return Value::Integer(whole, field.number.unit); },
            [&](double real) {
                return Value::Real(real, field.number.decimals, field.number.unit);
            },
            [](const std::wstring& text) { return Value::Text(ToUtf8(text), "none"); },
            [](const Term* term) {
                const bool isPlain = term->textId == 0 || CurrentLanguage() == Language::English;
                return Value::Word(term->code, isPlain ? term->words : ToUtf8(Text(term->textId)));
            },
            [](Angle angle) { return Value::Real(DegreesOf(angle.rad), kDegreeDecimals, "deg"); },
            [](const Moment& moment) { return ReportMoment(moment); },
            [&](std::chrono::minutes left) {
                return Value::Integer(left.count(), field.number.unit);
            },
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
                const FieldNumber& number = field.number;
                const auto decimals = static_cast<std::uint8_t>(
                    number.userDecimals < 0 ? number.decimals : number.userDecimals);
                return WithUnit(field, FormatFixed(real, decimals), real < 0.0);
            },
            [](const std::wstring& text) { return OneLine(text); },
            [](const Term* term) { return std::wstring(Text(term->textId)); },
            [](Angle angle) { return RADtoDEGStr(angle.rad, 1, kSecondDecimals); },
            [&](const Moment& moment) {
                const MomentParts parts = PartsByNow(moment, field, receiver, view);
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
    return value ? FromUtf8(PartsByNow(std::get<Moment>(*value), field, receiver, view).timeOfDay)
                 : std::wstring();
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
