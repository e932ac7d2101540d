#pragma once

#include "core/link/Receiver.h"
#include "core/platform/Clock.h"
#include "core/platform/Value.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace fieldcore {

// What is told of a receiver, a field a row: every screen, the terminal and its JSON print these
// rows, so that none of them knows what another does not.

/// What a survey asks of the sky.
struct ObservingLimits
{
    int maskDeg = 0;    ///< satellites below do not count
    int satellites = 0; ///< so many have to be there
    double pdop = 0.0;  ///< it must not be above

    friend bool operator==(const ObservingLimits&, const ObservingLimits&) = default;
};

/// What a field is made of beside the receiver.
struct StatusView
{
    Clock::Duration now{};                   ///< of the clock that the values are timed by
    Clock::UtcTime utc{};                    ///< the controller's date and time
    int planeZone = 0;                       ///< 1 to 19; 0: the one whose origin is nearest
    bool maySetClock = false;                ///< the user wants the controller's clock set
    std::optional<ObservingLimits> limits{}; ///< of the survey that is run
    double antennaHeightM = 0.0;             ///< above the point; 0 or less: not known
};

/// One of a few things that a value may be.
struct Term
{
    const char* code;  ///< for programs
    const char* words; ///< for reports
    int textId;        ///< for the user; 0: the words are a name
};

struct Angle
{
    double rad;
};

/// A moment of a calendar that no zone moves.
struct Moment
{
    std::chrono::local_seconds time;
    bool hasSeconds; ///< false: they mean nothing, and are not shown
    bool isJst;      ///< else UTC
};

using FieldValue = std::variant<bool, std::int64_t, double, std::wstring, const Term*, Angle,
                                Moment, std::chrono::minutes>;

/// Where a field comes from.
struct FieldReader
{
    /// When its reply came; nothing if it has not. Null: it tells who the receiver is.
    std::optional<Clock::Duration> (*at)(const Receiver& receiver);
    /// What it says; nothing for what is not known. Its range is not checked.
    std::optional<FieldValue> (*read)(const Receiver& receiver, const StatusView& view);
};

/// How a number is shown, and between what it lies.
struct FieldNumber
{
    const char* unit = "";
    int unitTextId = 0; ///< the unit for the user; 0: the same
    int decimals = 0;
    int userDecimals = -1; ///< for the user; less than 0: the same
    double least = -std::numeric_limits<double>::infinity();
    double most = std::numeric_limits<double>::infinity();
    bool isSigned = false; ///< the user sees a plus, too
};

struct ReceiverField
{
    /// Where it is shown.
    enum Place : unsigned
    {
        Report = 1,         ///< among the values of a status report
        PositionReport = 2, ///< among those of its position
        Page = 4,           ///< on the status page
        Who = 8,            ///< among those of the identity
        Version = 16,       ///< on the version page
        Firmware = 32,      ///< there, below the heading of the firmware
        Tilt = 64,          ///< among the values of the tilt sensor
    };

    const char* key;   ///< in JSON
    const char* label; ///< its name in reports; empty: it stands below the field in front of it
    int textId;        ///< its name for the user, and in reports in Japanese
    unsigned places;
    FieldReader reader;
    FieldNumber number{};
    std::chrono::seconds stale{10}; ///< from this age on
    int unknownTextId = 0;          ///< for the user when it is not known; 0: "--"
};

/// All of them, in the order in which they are listed.
[[nodiscard]] std::span<const ReceiverField> AllReceiverFields();
/// @param key  of a field that there is
[[nodiscard]] const ReceiverField& FieldOf(std::string_view key);

/// The value of a field; nothing if it is not known or out of its range.
[[nodiscard]] std::optional<FieldValue>
ReadField(const ReceiverField& field, const Receiver& receiver, const StatusView& view = {});
/// The same for reports and JSON.
[[nodiscard]] Value ReportField(const ReceiverField& field, const Receiver& receiver,
                                const StatusView& view = {});
/// The same for the user, with its unit. The time goes on while it is fresh.
[[nodiscard]] std::wstring FieldText(const ReceiverField& field, const Receiver& receiver,
                                     const StatusView& view);
/// How old a field is; nothing if its reply has not come, and for who the receiver is.
[[nodiscard]] std::optional<Clock::Duration>
AgeOf(const ReceiverField& field, const Receiver& receiver, const StatusView& view);
/// Whether the user should see that the value is old, or that there is none.
[[nodiscard]] bool IsStale(const ReceiverField& field, const Receiver& receiver,
                           const StatusView& view);

/// The receiver's time of day in Japan, without seconds unless they can be trusted; empty if it is
/// not known.
[[nodiscard]] std::wstring JstTimeOfDay(const Receiver& receiver, const StatusView& view);
/// Time of day in Japan at a moment of the controller's clock: "12:34:56".
[[nodiscard]] std::wstring ControllerTimeOfDay(Clock::UtcTime utc);

/// A moment of the controller's clock for reports, in UTC.
[[nodiscard]] Value UtcValue(Clock::UtcTime utc);

} // namespace fieldcore
