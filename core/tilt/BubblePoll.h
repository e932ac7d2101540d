#pragma once

#include "core/link/Command.h"
#include "core/tilt/Bubble.h"

#include <chrono>

namespace fieldcore {

/// Asks the receiver for its tilt, five times a second, and keeps what is to be seen. The thread of
/// the command channel.
///
/// A failed reading leaves the picture as it was; it is stale when it gets old. A reading that was
/// not answered has blocked the program for two reply time-outs, so the next one is left out for a
/// pause that doubles up to kLongestPause; any other failure costs no time and no pause.
class BubblePoll
{
public:
    static constexpr std::chrono::milliseconds kInterval{200};
    static constexpr std::chrono::seconds kStaleAge{2};
    static constexpr std::chrono::seconds kFirstPause{1};
    static constexpr std::chrono::seconds kLongestPause{8};

    /// @param command  may be null; must outlive the object
    explicit BubblePoll(CCommand* command) : m_command(command) {}

    /// One tick.
    /// @return whether there was a question, answered or not; none while another exchange is under
    ///         way, or in a pause
    bool Tick(const BubbleRules& rules);
    /// Another look at the last reading. Nothing changes before the first.
    void Recompute(const BubbleRules& rules);

    [[nodiscard]] const BubblePicture& Picture() const { return m_picture; }
    /// The last reading that could be used; nothing before the first.
    [[nodiscard]] const std::optional<TiltReading>& Reading() const { return m_reading; }
    [[nodiscard]] bool IsStale() const;
    [[nodiscard]] bool IsPolling() const { return m_isPolling; }

private:
    CCommand* const m_command;
    BubblePicture m_picture;
    std::optional<TiltReading> m_reading;
    Clock::Duration m_readAt{};
    Clock::Duration m_pausedUntil{};
    std::chrono::seconds m_pause{0}; // the last one
    bool m_isPolling = false;
};

} // namespace fieldcore
