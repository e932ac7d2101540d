#include "core/tilt/BubblePoll.h"

namespace fieldcore {

TiltHeard AskTilt(CCommand& command, bool withRecord)
{
    TiltHeard heard;
    TiltReading reading;
    if (command.RequestTiltReading(reading) == 1) {
        heard.reading = reading;
    }
    heard.isAnswered = ClassOf(command.Fault()) != FaultClass::Silent;
    heard.at = command.GetClock().Steady();
    TiltCalibration record;
    if (heard.reading && withRecord && command.RequestTiltCalibration(record) == 1) {
        heard.record = record;
    }
    return heard;
}

void BubblePoll::Take(const TiltHeard& heard, const BubbleRules& rules)
{
    if (heard.reading && IsUsable(*heard.reading)) {
        m_reading = heard.reading;
        m_readAt = heard.at;
        Recompute(rules);
    }
}

void BubblePoll::Recompute(const BubbleRules& rules)
{
    if (m_reading) {
        m_picture = PictureOf(*m_reading, rules);
    }
}

bool BubblePoll::IsStale(Clock::Duration now) const
{
    return !m_reading || now - m_readAt > kStaleAge;
}

} // namespace fieldcore
