#include "core/equipment/ReceiverQuestions.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/GPSError.h"
#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "core/platform/Calendar.h"

#include <chrono>
#include <utility>

namespace fieldcore {

/// The rules of the time over what is known already: nothing is asked twice in a round.
class ReceiverQuestions::Judge final : public CGPSError
{
public:
    using CGPSError::CGPSError;

    void BeginRound(const Receiver& receiver)
    {
        if (receiver.position) {
            *GetRETPOS3() = receiver.position->value;
        }
        m_status = receiver.status;
        m_time.reset();
        m_isTimeAsked = false;
    }
    [[nodiscard]] const std::optional<GpsTimeReply>& Time() const { return m_time; }

protected:
    int stRequestGpsTime(GpsTimeReply& reply) override
    {
        if (!m_isTimeAsked) {
            m_isTimeAsked = true;
            GpsTimeReply fresh;
            if (CGPSError::stRequestGpsTime(fresh) == 1) {
                m_time = fresh;
            }
        }
        reply = m_time.value_or(reply);
        return m_time ? 1 : 0;
    }
    int stRequestStatus(StatusReply& reply) override
    {
        if (!m_status) {
            return 0; // whatever it said, the flag would stay
        }
        reply = m_status->value;
        return 1;
    }

private:
    std::optional<TimedValue<StatusReply>> m_status;
    std::optional<GpsTimeReply> m_time; // of this round
    bool m_isTimeAsked = false;
};

ReceiverQuestions::ReceiverQuestions(CCommand& command, Clock* clock)
    : m_command(command), m_clock(clock)
{
    Begin();
}

ReceiverQuestions::~ReceiverQuestions() = default;

void ReceiverQuestions::Begin()
{
    m_judge = std::make_unique<Judge>(&m_command, m_clock);
}

bool ReceiverQuestions::IsAnswering() const
{
    const CommandFault fault = m_command.Fault();
    return fault == CommandFault::None || fault == CommandFault::Refused ||
           fault == CommandFault::WrongType || fault == CommandFault::WrongAnswer;
}

bool ReceiverQuestions::AskIdentity(Receiver& receiver)
{
    CRecvInfo info(receiver.identity);
    const bool isKnown = info.ReadMissing(m_command) == 1;
    receiver.identity = info.Known();
    return isKnown;
}

bool ReceiverQuestions::AskStatus(Receiver& receiver)
{
    StatusReply reply;
    if (m_command.RequestStatus(reply) == 1) {
        receiver.status = {std::move(reply), m_command.GetClock().Steady()};
    }
    return IsAnswering();
}

bool ReceiverQuestions::AskPosition(Receiver& receiver)
{
    PositionStatusReply reply;
    if (m_command.RequestPositionStatus(reply) == 1) {
        receiver.position = {reply, m_command.GetClock().Steady()};
    }
    return IsAnswering();
}

/// @param at  when the receiver told it
void ReceiverQuestions::Take(Receiver& receiver, std::chrono::local_seconds jst, int week,
                             double secondsOfWeek, Clock::Duration at) const
{
    const Clock& clock = m_command.GetClock();
    const auto controller = clock.Utc().time_since_epoch() - (clock.Steady() - at) + kJst;
    const auto ahead = std::chrono::floor<std::chrono::milliseconds>(
        controller - std::chrono::duration_cast<Clock::Duration>(jst.time_since_epoch()));
    receiver.time = {ReceiverTime{week, secondsOfWeek, jst, ahead}, at};
}

bool ReceiverQuestions::AskTime(Receiver& receiver)
{
    m_judge->BeginRound(receiver);
    const bool isSynchronised = m_judge->CheckTimeSynchro() != 0;
    const bool isKnown = isSynchronised ? receiver.position.has_value()
                                        : receiver.status && receiver.status->value.timeValid;
    if (isKnown) {
        const std::chrono::local_seconds jst = m_judge->GetJST();
        if (isSynchronised) { // it is the time of the last position, which may have come earlier
            const PositionStatusReply& position = receiver.position->value;
            Take(receiver, jst, static_cast<int>(position.week), position.secondsOfWeek,
                 receiver.position->at);
        } else if (const std::optional<GpsTimeReply>& told = m_judge->Time()) {
            Take(receiver, jst, told->week, told->secondsOfWeek, m_command.GetClock().Steady());
        }
    }
    receiver.isSynchronised = isSynchronised;
    receiver.utcOffsetS = m_judge->GetUTCOffsetTime();
    receiver.clockChange = m_judge->LastClockChange();
    return IsAnswering();
}

bool ReceiverQuestions::AskPowerSource(Receiver& receiver)
{
    int source = 1;
    if (!CanTellPowerSource(receiver.identity.TypeNumber()) ||
        m_command.RequestBatteryPort(source) == 1) {
        receiver.powerSource = {source, m_command.GetClock().Steady()};
    }
    return IsAnswering();
}

bool ReceiverQuestions::AskTracked(Receiver& receiver)
{
    SatelliteList list;
    // Older receivers know the list in one frame only.
    if (m_command.RequestSvList(list, SatelliteListForm::Tracked) == 1 ||
        (IsAnswering() && m_command.RequestSvList(list) == 1)) {
        receiver.tracked = {std::move(list), m_command.GetClock().Steady()};
    }
    return IsAnswering();
}

} // namespace fieldcore
