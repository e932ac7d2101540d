#pragma once

#include "core/platform/Clock.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace fieldcore {

class ReceiverLink;
class StatusPoll;

/// What the controller knows of its receiver at a moment. What is not known is empty.
struct ReceiverState
{
    enum class Link
    {
        None, ///< nobody has asked for a connection
        Connecting,
        Connected,
        Lost, ///< it was there; the controller tries to have it back
    };
    Link link = Link::None;
    QString receiver;      ///< name of the model
    QString antenna;       ///< its height and how it was measured, in one line
    QString simulator;     ///< name of the scenario; empty: a real receiver
    QDateTime receivedUtc; ///< when the values below came, by the controller's clock
    std::optional<int> batteryPercent;
    bool batteryFailed = false; ///< it was asked for and not told
    QString batterySource;      ///< name of the power source in use
    std::optional<double> pdop;
    std::optional<int> satellites;
};

/// From this age on, seconds, what is known of the receiver is not fresh.
inline constexpr int kStaleS = 10;

/// Whether what is known of the receiver is from now.
[[nodiscard]] bool IsFresh(const ReceiverState& state, const QDateTime& nowUtc);
/// Time of day in Japan, "12:34:56".
[[nodiscard]] QString JstText(const QDateTime& utc);

[[nodiscard]] QDateTime QtTime(Clock::UtcTime time);

/// What the link and the questions over it tell. Antenna and simulator stay empty.
[[nodiscard]] ReceiverState StateOf(const ReceiverLink& link, const StatusPoll& poll,
                                    const Clock& clock);

} // namespace fieldcore
