#include "core/link/Connect.h"

#include "core/link/Command.h"
#include "core/link/PortOutput.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <utility>

namespace fieldcore {

namespace {

constexpr int kPolls = 4;
constexpr std::chrono::milliseconds kPollPause{300};
constexpr int kTotalSteps = 3 + 2 * kPolls;
constexpr double kFirstRelease = 1.0; // firmware before it is a beta

} // namespace

// The steps of a connection.

const wchar_t* StepText(ConnectStep step)
{
    constexpr int kTexts[] = {text::kStepOpenPort, text::kStepWakeReceiver, text::kStepStatus,
                              text::kStepOptions, text::kStepSerial};
    return Text(kTexts[static_cast<std::size_t>(step)]);
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

// Asking, connecting and checking.

CConnect::CConnect(CCommand& command, int reconnect, FoundTarget found)
    : m_command(command), m_reconnect(reconnect), m_found(std::move(found))
{}

CConnect::CConnect(CCommand& command, int reconnect, ConnectTarget target)
    : CConnect(command, reconnect, FoundTarget{std::move(target), {}, {}, {}})
{}

void CConnect::Find()
{
    if (m_isBySettings) {
        m_found = FindTarget(m_command.GetEnvironment().Roots());
    }
}

int CConnect::DoModal()
{
    Find();
    if (m_command.IsPortOpen() != 0) {
        m_reached = LinkState::Connected;
        return Connected;
    }
    if (!m_found.target) {
        m_reached = LinkState::Failed;
        m_command.GetHost().ShowMessage(m_found.fault, Text(text::kConnectFailedCaption),
                                        {BoxButtons::Ok, BoxIcon::Stop});
        return NotConnected;
    }
    if (stStartMessage() != 1) {
        return NotConnected;
    }
    ConnectSequence sequence(m_command, *m_found.target);
    if (RunSequence(sequence) == 1) {
        Take(sequence);
        m_reached = LinkState::Connected;
        return Connected;
    }
    if (sequence.FailedFault() != CommandFault::Cancelled) {
        m_reached = LinkState::Failed;
        ShowFailure(sequence);
    }
    return NotConnected;
}

void CConnect::Take(const ConnectSequence& sequence)
{
    m_identity = sequence.Identity();
    m_status = sequence.Status();
}

int CConnect::RunSequence(ConnectSequence& sequence)
{
    return sequence.Run();
}

void CConnect::ShowFailure(const ConnectSequence& sequence)
{
    m_command.GetHost().ShowMessage(sequence.FailureMessage(), sequence.FailureCaption(),
                                    {BoxButtons::Ok, BoxIcon::Stop});
}

int CConnect::stStartMessage()
{
    Find();
    Host& host = m_command.GetHost();
    const bool isBluetooth = m_found.target && m_found.target->IsBluetooth();
    if (isBluetooth && m_reconnect != 0) {
        const BoxAnswer answer = host.ShowMessage(Text(text::kReconnectBluetooth),
                                                  Text(text::kReconnectBluetoothCaption),
                                                  {BoxButtons::RetryCancel, BoxIcon::Question});
        return answer == BoxAnswer::Retry ? 1 : 0;
    }
    const BoxAnswer answer = host.ShowMessage(
        Text(isBluetooth ? text::kConnectBluetooth : text::kConnectCable),
        Text(isBluetooth ? text::kConnectBluetoothCaption : text::kConnectCableCaption),
        {BoxButtons::OkCancel, BoxIcon::Information});
    return answer == BoxAnswer::Ok ? 1 : 0;
}

int CConnect::CheckRecvType()
{
    Host& host = m_command.GetHost();
    CRecvInfo info(std::exchange(m_identity, {}));
    const bool isKnown = info.Known().serial && info.Known().options;
    if (!isKnown && info.GetOptionData(m_command) == 0) {
        host.ShowMessage(Text(text::kPortIsSending), Text(text::kPortIsSendingCaption),
                         {BoxButtons::Ok, BoxIcon::Stop});
        return 0;
    }
    m_identity = info.Known();
    constexpr BoxStyle kWarning{BoxButtons::Ok, BoxIcon::Exclamation};
    const std::uint32_t type = info.GetRecvTypeNum();
    if (stGetRecvTypeFlag(type) == 0) {
        host.ShowMessage(stCreateWarMes(type), Text(text::kUnsupportedTypeCaption), kWarning);
        return 0;
    }
    const double minimum = stGetRecvVer(type);
    const double version = info.GetNavVer();
    if (minimum <= version) {
        return 1;
    }
    if (version < kFirstRelease) {
        host.ShowMessage(Text(text::kBetaFirmware), Text(text::kFirmwareCaption), kWarning);
        return 1; // accepted on purpose, only with the warning
    }
    host.ShowMessage(FormatText(text::kOldFirmware, static_cast<long>(type), minimum, minimum),
                     Text(text::kFirmwareCaption), kWarning);
    return 0;
}

int CConnect::stGetRecvTypeFlag(std::uint32_t typeNumber) const
{
    return m_flags.Get(typeNumber);
}

double CConnect::stGetRecvVer(std::uint32_t typeNumber) const
{
    return MinimumNavVersion(typeNumber);
}

std::wstring CConnect::stCreateWarMes(std::uint32_t typeNumber) const
{
    const ReceiverType* type = FindReceiverType(typeNumber);
    if (type != nullptr && type->model != nullptr) {
        return FormatText(text::kUnsupportedModel, type->model);
    }
    return FormatText(text::kUnsupportedType, static_cast<long>(typeNumber));
}

} // namespace fieldcore
