#pragma once

#include "core/link/Command.h"
#include "core/tilt/Bubble.h"

#include <chrono>
#include <optional>

namespace fieldcore {

/// What a tilt sensor told in one round.
struct TiltHeard
{
    std::optional<TiltReading> reading;
    std::optional<TiltCalibration> record;
    bool isAnswered = false; ///< be it with a refusal
    Clock::Duration at{};    ///< of the channel's clock
};

/// Asks for a reading, and for the calibration record behind a reading that came.
[[nodiscard]] TiltHeard AskTilt(CCommand& command, bool withRecord);

/// What the bubble shows: the last reading that could be used. A failed one leaves the picture as
/// it was; it is stale when it gets old. One thread.
class BubblePoll
{
public:
    static constexpr std::chrono::milliseconds kInterval{200};
    static constexpr std::chrono::seconds kLongestPause{8}; ///< of a sensor that keeps silent
    static constexpr std::chrono::seconds kStaleAge{2};

    void Take(const TiltHeard& heard, const BubbleRules& rules);
    /// Another look at the last reading. Nothing changes before the first.
    void Recompute(const BubbleRules& rules);

    [[nodiscard]] const BubblePicture& Picture() const { return m_picture; }
    /// The last reading that could be used; nothing before the first.
    [[nodiscard]] const std::optional<TiltReading>& Reading() const { return m_reading; }
    [[nodiscard]] bool IsStale(Clock::Duration now) const;

private:
    BubblePicture m_picture;
    std::optional<TiltReading> m_reading;
    Clock::Duration m_readAt{};
};

} // namespace fieldcore
