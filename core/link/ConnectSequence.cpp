#include "core/link/ConnectSequence.h"

#include "core/link/Command.h"
#include "core/link/PortOutput.h"
#include "core/resources/StringTable.h"

#include <utility>

namespace fieldcore {

namespace {

constexpr int kPolls = 4;
constexpr std::chrono::milliseconds kPollPause{300};
constexpr int kTotalSteps = 3 + 2 * kPolls;

} // namespace

const wchar_t* StepText(ConnectStep step)
{
    constexpr int kTexts[] = {text::kStepOpenPort, text::kStepWakeReceiver, text::kStepStatus,
                              text::kStepOptions, text::kStepSerial};
    return Text(kTexts[static_cast<std::size_t>(step)]);
}

int OpenTarget(CCommand& command, const ConnectTarget& target)
{
    return target.devicePath.empty()
               ? command.OpenPort(target.port, target.settings)
               : command.OpenPort(target.devicePath, target.settings, target.port);
}

ConnectSequence::ConnectSequence(CCommand& command, ConnectTarget target)
    : m_command(command), m_target(std::move(target))
{}

int ConnectSequence::Run(ConnectObserver* observer)
{
    m_observer = observer;
    m_done = 0;
    m_fault = CommandFault::None;
    m_isSending = false;
    m_detail.clear();
    m_identity = {};
    StatusReply status;
    const bool connected =
        Do(ConnectStep::OpenPort, [this] { return OpenTarget(m_command, m_target) == 1; }) &&
        Do(ConnectStep::WakeReceiver, [this] { return m_command.WakeReceiver() == 1; }) &&
        Do(ConnectStep::AskStatus, [&] { return m_command.RequestStatus(status) == 1; });
    if (connected) {
        m_status = {status, m_command.GetClock().Steady()};
    }
    if (!connected || !Poll()) {
        m_command.ClosePort();
        return 0;
    }
    return 1;
}

bool ConnectSequence::Poll()
{
    for (int poll = 0; poll < kPolls; ++poll) {
        OptionsReply options;
        SerialReply serial;
        const bool answered =
            Do(ConnectStep::ReadOptions, [&] { return m_command.RequestOptions(options) == 1; }) &&
            Do(ConnectStep::ReadSerial, [&] {
                return m_command.RequestSerial(serial) == 1 && m_command.Rest(kPollPause) == 1;
            });
        if (!answered) {
            return false;
        }
        m_identity = {serial, options, std::nullopt};
    }
    return true;
}

/// Runs one step, and keeps why it failed if it does.
template <typename Request>
bool ConnectSequence::Do(ConnectStep step, Request request)
{
    m_step = step;
    if (m_observer != nullptr) {
        m_observer->OnStep(step, m_done, kTotalSteps);
    }
    if (!request()) {
        m_fault = m_command.Fault();
        m_detail = m_command.FaultDetail();
        m_isSending =
            m_fault != CommandFault::Cancelled && LooksLikeOutput(m_command.RecentNoise());
        return false;
    }
    ++m_done;
    return true;
}

std::wstring ConnectSequence::FailureMessage() const
{
    return m_isSending ? Text(text::kPortIsSending)
                       : FormatText(text::kConnectFailed, StepText(m_step), CauseText(m_fault));
}

const wchar_t* ConnectSequence::FailureCaption() const
{
    return Text(m_isSending ? text::kPortIsSendingCaption : text::kConnectFailedCaption);
}

} // namespace fieldcore
