#include "core/equipment/ReceiverFields.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/GPSError.h"
#include "core/input/Angles.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"
#include "core/planning/PlaneRectangular.h"
#include "core/platform/Calendar.h"
#include "core/platform/Degrees.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/tilt/CalibrationStatus.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <functional>
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

template <std::size_t Count>
Known TermOf(const std::array<Term, Count>& terms, int number)
{
    const bool isOne = number >= 0 && number < static_cast<int>(Count);
    return isOne ? Known(&terms[static_cast<std::size_t>(number)]) : std::nullopt;
}

/// What was read as a field has it: a text without blanks at its end, and none for an empty one.
template <typename Raw>
Known Made(const Raw& raw)
{
    if constexpr (requires { raw.has_value(); }) {
        return raw ? Known(*raw) : std::nullopt;
    } else if constexpr (std::is_same_v<Raw, const wchar_t*>) {
        const std::wstring_view text(raw != nullptr ? raw : L"");
        const std::wstring trimmed(text.substr(0, text.find_last_not_of(L' ') + 1));
        return trimmed.empty() ? std::nullopt : Known(trimmed);
    } else if constexpr (std::is_integral_v<Raw> && !std::is_same_v<Raw, bool>) {
        return static_cast<std::int64_t>(raw);
    } else {
        return raw;
    }
}

/// What @p Read makes of a value: a member of it, or a function of it alone or of all.
template <auto Read, typename Whole, typename... Rest>
Known Ask(const Whole& value, const Rest&... rest)
{
    if constexpr (std::is_invocable_v<decltype(Read), const Whole&>) {
        return Made(std::invoke(Read, value));
    } else {
        return Made(std::invoke(Read, value, rest...));
    }
}

template <auto Reply>
std::optional<Clock::Duration> When(R r)
{
    return r.*Reply ? std::optional((r.*Reply)->at) : std::nullopt;
}

/// A reply of the receiver. @p Read may also take the receiver and the view.
template <auto Reply, auto Read>
constexpr FieldReader Told()
{
    return {When<Reply>, [](R r, V view) {
                return r.*Reply ? Ask<Read>((r.*Reply)->value, r, view) : std::nullopt;
            }};
}

/// Who the receiver is.
template <auto Read>
constexpr FieldReader Who()
{
    return {nullptr, [](R r, V /*view*/) { return Ask<Read>(CRecvInfo(r.identity)); }};
}

/// Whether a place is there: a position is computed, and it is one.
bool HasPlace(const PositionStatusReply& position)
{
    const SiteReply& site = position.position;
    return IsPositionComputed(position) && std::isfinite(site.latitudeRad) &&
           std::isfinite(site.longitudeRad) && std::isfinite(site.heightM) &&
           std::abs(site.latitudeRad) <= std::numbers::pi / 2 &&
           std::abs(site.longitudeRad) <= 2 * std::numbers::pi;
}

/// A place where there is one. @p Read may also take the view.
template <auto Read>
constexpr FieldReader Placed()
{
    return Told<&Receiver::position, [](const PositionStatusReply& p, R /*r*/, V view) {
        return HasPlace(p) ? Ask<Read>(p.position, view) : std::nullopt;
    }>();
}

/// What only a time that has been accepted can tell. @p Read may also take the receiver and the
/// view.
template <auto Read>
constexpr FieldReader Synchronised()
{
    return Told<&Receiver::time, [](const ReceiverTime& t, R r, V view) {
        return r.isSynchronised ? Ask<Read>(t, r, view) : std::nullopt;
    }>();
}

template <auto Member>
Known Option(const CRecvInfo& info)
{
    const std::optional<OptionsReply>& options = info.Known().options;
    return options ? Made((*options).*Member) : std::nullopt;
}

const wchar_t* Model(const CRecvInfo& info)
{
    const ReceiverType* const type = FindReceiverType(info.GetRecvTypeNum());
    return type != nullptr ? type->model : nullptr;
}

Known Family(const CRecvInfo& info)
{
    const ReceiverType* const type = FindReceiverType(info.GetRecvTypeNum());
    return type != nullptr ? TermOf(kFamilies, static_cast<int>(type->family)) : std::nullopt;
}

template <bool IsJst>
Moment MomentOf(const ReceiverTime& t, R r, V /*view*/)
{
    return {t.jst - (IsJst ? seconds(0) : seconds(kJst)), r.isSynchronised, IsJst};
}

constexpr FieldReader kTrust{When<&Receiver::time>, [](R r, V /*view*/) {
                                 return r.time || r.position ? Known(r.isSynchronised)
                                                             : std::nullopt;
                             }};

const Term* ControllerClock(const ReceiverTime& /*t*/, R r, V view)
{
    return r.clockChange && r.clockChange->isSet ? &kClockSet
           : view.maySetClock                    ? &kClockRefused
                                                 : &kClockLeft;
}

/// The plane zone whose origin is nearest to a place. Which zone a survey must use is a matter of
/// the prefecture; this is a proposal.
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

struct PlanePlace
{
    int zone;
    double xM;
    double yM;
};

template <auto Member>
Known Plane(const SiteReply& place, V view)
{
    const int zone = view.planeZone != 0 ? view.planeZone : NearestPlaneZone(place);
    const std::optional<PlaneProjection> plane =
        PlaneOfGeodetic(zone, {place.latitudeRad, place.longitudeRad, place.heightM});
    return plane ? Made(PlanePlace{zone, plane->position.xM, plane->position.yM}.*Member)
                 : std::nullopt;
}

Known Trend(const StatusReply& /*status*/, R r, V /*view*/)
{
    return r.trend ? Known(r.trend->percentPerHour) : std::nullopt;
}

Known TimeLeft(const StatusReply& /*status*/, R r, V /*view*/)
{
    return r.trend && r.trend->left
               ? Known(std::chrono::floor<std::chrono::minutes>(*r.trend->left))
               : std::nullopt;
}

Known AboveMask(const SatelliteList& list, R /*r*/, V view)
{
    return view.limits
               ? Made(std::ranges::count_if(list.satellites,
                                            [mask = view.limits->maskDeg](const auto& sv) {
                                                return sv.HasDirection() && sv.elevationDeg >= mask;
                                            }))
               : std::nullopt;
}

template <auto Member>
double Degrees(const TiltReading& tilt)
{
    return DegreesOf(tilt.*Member);
}

/// How far the antenna stands beside the point, mm.
Known TiltOffset(const TiltReading& tilt, R /*r*/, V view)
{
    constexpr double kMmInM = 1000.0;
    return view.antennaHeightM > 0.0 && tilt.tiltRad <= std::numbers::pi / 2
               ? Known(std::sin(tilt.tiltRad) * view.antennaHeightM * kMmInM)
               : std::nullopt;
}

Known StateOfTilt(const TiltReading& tilt)
{
    return tilt.sensorPresent ? TermOf(kTiltStates, tilt.state) : Known(&kNoTiltSensor);
}

Known StateOfCalibration(const TiltReading& tilt)
{
    const bool isTold = tilt.calibrationValid && !tilt.error1 && !tilt.error2;
    return isTold ? TermOf(kCalibrations, tilt.calibrationState) : std::nullopt;
}

Known CalibrationLeft(const TiltCalibration& calibration, R r, V /*view*/)
{
    return r.tilt ? Made(RemainingSeconds(calibration, r.tilt->value)) : std::nullopt;
}

using F = ReceiverField;
using Info = CRecvInfo;

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
    {"model", "model", text::kVersionModel, kWho, Who<Model>()},
    {"typeNumber", "type number", text::kVersionTypeNumber, kWho, Who<&Info::GetRecvTypeNum>(),
     kTypeNumber},
    {"typeText", "type text", text::kVersionType, kWho, Who<&Info::GetRecvType>()},
    {"family", "family", text::kFieldFamily, F::Who, Who<Family>()},
    {"serial", "serial number", text::kVersionSerial, kWho, Who<&Info::GetRecvSN>()},
    {"longSerial", "long serial number", text::kVersionLongSerial, kWho,
     Who<&Info::GetRecvSNLong>()},
    {"navigationFirmware", "navigation firmware", text::kVersionNav, kFirmware,
     Who<&Info::GetNavVer>(), kVersion},
    {"signalFirmware", "signal firmware", text::kVersionSig, kFirmware, Who<&Info::GetSigVer>(),
     kVersion},
    {"bootFirmware", "boot firmware", text::kVersionBoot, kFirmware, Who<&Info::GetBootVer>(),
     kVersion},
    {"memoryMb", "memory", text::kVersionMemory, kWho, Who<&Info::GetRecvMemory>(), kMegabytes},
    {"port", "port in use", text::kFieldPort, F::Who, Who<Option<&OptionsReply::currentPort>>()},
    {"ports", "ports", text::kFieldPorts, F::Who, Who<Option<&OptionsReply::portCount>>()},

    // Its time
    {"utc", "time", text::kStatusUtc, kStatus, Told<&Receiver::time, MomentOf<false>>()},
    {"jst", "", text::kStatusJst, kStatus, Told<&Receiver::time, MomentOf<true>>()},
    {"gpsWeek", "GPS week", text::kFieldGpsWeek, F::Report,
     Told<&Receiver::time, &ReceiverTime::week>(), kCount},
    {"gpsSecondsOfWeek", "second of the week", text::kFieldSecondsOfWeek, F::Report,
     Synchronised<[](const ReceiverTime& t) { // it tells whole ones
         return static_cast<std::int64_t>(t.secondsOfWeek);
     }>(),
     kOfWeek},
    {"timeValid", "time is valid", text::kFieldTimeValid, F::Report,
     Told<&Receiver::status, &StatusReply::timeValid>()},
    {"utcOffsetS", "GPS time minus UTC", text::kStatusOffset, kStatus,
     Synchronised<[](const ReceiverTime&, R r, V) { return r.utcOffsetS; }>(), kOffset},
    {"synchronised", "time can be trusted", text::kStatusSynchro, kStatus, kTrust},
    {"controllerAheadS", "controller ahead by", text::kStatusClock, F::Page,
     Synchronised<[](const ReceiverTime& t) {
         return std::chrono::duration<double>(t.controllerAhead).count();
     }>(),
     kAhead},
    {"controllerClock", "controller's clock", text::kStatusClockSetting, F::Page,
     Synchronised<ControllerClock>()},

    // Its position
    {"fix", "fix", text::kStatusFix, kPosition | F::Report,
     Told<&Receiver::position,
          [](const PositionStatusReply& p) { return TermOf(kFixes, p.fixKind); }>()},
    {"satellitesTracked", "satellites tracked", text::kStatusTracked, kStatus,
     Told<&Receiver::status, &StatusReply::satellitesTracked>(), kCount},
    {"satellitesUsed", "satellites used", text::kStatusUsed, kPosition,
     Told<&Receiver::position, &PositionStatusReply::satellitesUsed>(), kCount},
    {"satellitesAboveMask", "satellites above the mask", text::kStatusAboveMask, F::Page,
     Told<&Receiver::tracked, AboveMask>(), kCount, kTracked},
    {"pdop", "PDOP", text::kGraphPdop, kPosition | F::Report,
     Told<&Receiver::position,
          [](const PositionStatusReply& p, R r, V) { return PdopOf(r.isSynchronised, p.pdop); }>(),
     kDop, kUsual, text::kStatusNoPdop},
    {"hdop", "HDOP", text::kStatusHdop, kPosition,
     Told<&Receiver::position, [](const PositionStatusReply& p) { return PdopOf(true, p.hdop); }>(),
     kDop},
    {"vdop", "VDOP", text::kStatusVdop, kPosition,
     Told<&Receiver::position, [](const PositionStatusReply& p) { return PdopOf(true, p.vdop); }>(),
     kDop},
    {"latitudeDeg", "latitude", text::kStatusLatitude, kPosition,
     Placed<[](const SiteReply& place) { return Angle{place.latitudeRad}; }>()},
    {"longitudeDeg", "longitude", text::kStatusLongitude, kPosition,
     Placed<[](const SiteReply& place) { return Angle{place.longitudeRad}; }>()},
    {"heightM", "ellipsoidal height", text::kStatusHeight, kPosition, Placed<&SiteReply::heightM>(),
     kMetres},
    {"planeZone", "plane zone", text::kStatusZone, kPosition, Placed<Plane<&PlanePlace::zone>>(),
     kZone},
    {"planeXM", "plane x", text::kStatusPlaneX, kPosition, Placed<Plane<&PlanePlace::xM>>(),
     kMetres},
    {"planeYM", "plane y", text::kStatusPlaneY, kPosition, Placed<Plane<&PlanePlace::yM>>(),
     kMetres},

    // Its battery and its memory
    {"batteryPercent", "battery", text::kStatusBattery, kStatus,
     Told<&Receiver::status, &StatusReply::batteryPercent>(), kPercent, kUsual,
     text::kBatteryUnknown},
    {"powerSource", "power source", text::kFieldPowerSource, F::Report,
     Told<&Receiver::powerSource, std::identity{}>(), kSource, kSeldom},
    {"powerSourceName", "power source name", text::kStatusSource, kStatus,
     Told<&Receiver::powerSource,
          [](int source, R r, V) { return PowerSourceName(r.identity.TypeNumber(), source); }>(),
     kPlain, kSeldom},
    {"batteryTrendPercentPerHour", "battery trend", text::kStatusTrend, kStatus,
     Told<&Receiver::status, Trend>(), kPerHour, kSeldom},
    {"batteryMinutesLeft", "battery lasts", text::kStatusLeft, kStatus,
     Told<&Receiver::status, TimeLeft>(), kMinutes, kSeldom},
    {"freeMemoryPercent", "free memory", text::kStatusMemory, kStatus,
     Told<&Receiver::status, [](const StatusReply& s) { return s.freeMemoryTenths * 10; }>(),
     kPercent},
    {"survey", "running survey", text::kFieldSurvey, F::Report,
     Told<&Receiver::status,
          [](const StatusReply& s) { // blank: none runs
              return Made(s.survey.c_str()).value_or(std::wstring());
          }>()},

    // Its tilt sensor
    {"state", "state", text::kFieldTiltState, F::Tilt, Told<&Receiver::tilt, StateOfTilt>()},
    {"tiltDeg", "tilt", text::kTiltAngle, F::Tilt,
     Told<&Receiver::tilt, Degrees<&TiltReading::tiltRad>>(), kTiltDegrees, kOfBubble},
    {"t1Deg", "first component", text::kFieldTilt1, F::Tilt,
     Told<&Receiver::tilt, Degrees<&TiltReading::t1Rad>>(), kTiltDegrees, kOfBubble},
    {"t2Deg", "second component", text::kFieldTilt2, F::Tilt,
     Told<&Receiver::tilt, Degrees<&TiltReading::t2Rad>>(), kTiltDegrees, kOfBubble},
    {"tiltOffsetMm", "antenna beside the point", text::kTiltOffset, 0,
     Told<&Receiver::tilt, TiltOffset>(), kMillimetres, kOfBubble},
    {"calibrated", "calibrated", text::kFieldCalibrated, F::Tilt,
     Told<&Receiver::tilt, &TiltReading::calibrated>()},
    {"calibration", "calibration", text::kFieldCalibration, F::Tilt,
     Told<&Receiver::tilt, StateOfCalibration>()},
    {"expiryHours", "valid for", text::kFieldExpiry, F::Tilt,
     Told<&Receiver::calibration, &TiltCalibration::validityHours>(), kHours},
    {"remainingSeconds", "still valid for", text::kFieldRemaining, F::Tilt,
     Told<&Receiver::calibration, CalibrationLeft>(), kLeftS},
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
    const std::chrono::sys_seconds t(time.time_since_epoch()); // as it is called there
    return {FormatDate(t, "%F"), FormatDate(t, hasSeconds ? "%T" : "%H:%M")};
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

std::optional<Clock::Duration> AgeOf(const ReceiverField& field, const Receiver& receiver,
                                     const StatusView& view)
{
    const auto at = field.reader.at != nullptr ? field.reader.at(receiver) : std::nullopt;
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
    const Known value = field.reader.read(receiver, view);
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

} // namespace fieldcore
