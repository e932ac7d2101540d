#pragma once

#include "core/link/Replies.h"
#include "core/link/SatelliteReplies.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace fieldcore {

// What is known of a receiver, as plain values: copied and put together at will, on any
// thread that has a copy of its own.

/// A value with the time at which the receiver gave it.
template <typename Value>
struct TimedValue
{
    Value value;
    Clock::Duration at; ///< of the channel's clock
};

enum class LinkState
{
    NotConnected,
    Connecting, ///< the user connects
    Connected,
    Lost,         ///< waiting to try again
    Reconnecting, ///< trying
    // Not connected, and what became of the attempt: for who tells the user. A link has neither.
    Failed, ///< nobody has answered as a receiver does
    Refused ///< it has answered, and is not acceptable
};

/// Who a receiver is and what it can do: what it says once for a connection. CRecvInfo answers
/// what the dialogs ask of it.
struct ReceiverIdentity
{
    std::optional<SerialReply> serial;
    std::optional<OptionsReply> options;
    std::optional<ExtendedOptionsReply> extended; ///< nothing for a receiver that has none, too

    /// 0 while its options are not known.
    [[nodiscard]] std::uint32_t TypeNumber() const;
    /// The model's name, the type number for one that has none, or how it calls itself while its
    /// options are not known; empty if nothing is.
    [[nodiscard]] std::wstring Model() const;
    /// Model and serial number, for the user.
    [[nodiscard]] std::wstring Name() const;
    /// Whether both are the same receiver, whatever has been installed in it since. One that did
    /// not tell its serial number is the same as no other.
    [[nodiscard]] bool IsSame(const ReceiverIdentity& other) const;
};

/// The time that a receiver told.
struct ReceiverTime
{
    int week = 0;                              ///< of GPS time, as sent
    double secondsOfWeek = 0.0;                ///< of GPS time
    std::chrono::local_seconds jst;            ///< without synchronisation its seconds mean nothing
    std::chrono::milliseconds controllerAhead; ///< of the receiver; counts when synchronised
};

/// What was made of the controller's clock when a receiver's time was accepted.
struct ClockChange
{
    Clock::UtcTime was; ///< the controller's time
    Clock::UtcTime by;  ///< what it was to be set to
    bool isSet = false; ///< false: the clock may not be set, or the system refused
};

/// How the charge of a battery has changed.
struct BatteryTrend
{
    double percentPerHour = 0.0;         ///< negative: it drains
    std::optional<Clock::Duration> left; ///< until it is empty; nothing unless it drains
};

/// What was last heard of a receiver, each reply with its time, and what was made of it. What has
/// not come is nothing; what has come may be out of every range: ReceiverFields.h says what of it
/// is a value.
struct Receiver
{
    LinkState link = LinkState::NotConnected;
    ReceiverIdentity identity;

    std::optional<TimedValue<StatusReply>> status;
    std::optional<TimedValue<PositionStatusReply>> position;
    std::optional<TimedValue<int>> powerSource; ///< its number
    std::optional<TimedValue<SatelliteList>> tracked;
    std::optional<TimedValue<SatelliteList>> inView;
    std::optional<TimedValue<TiltReading>> tilt;
    std::optional<TimedValue<TiltCalibration>> calibration;

    // By the rules of CGPSError.
    bool isSynchronised = false; ///< its time has been accepted on this connection
    int utcOffsetS = 0;          ///< GPS time minus UTC; counts when synchronised
    std::optional<TimedValue<ReceiverTime>> time;
    std::optional<ClockChange> clockChange;

    std::optional<BatteryTrend> trend;
};

} // namespace fieldcore
