#pragma once

#include "core/link/Command.h"
#include "core/link/Receiver.h"

#include <optional>
#include <string>

namespace fieldcore {

class CCommand;

/// Where the receiver is reached, and how.
struct ConnectTarget
{
    int port = 1;           ///< COM number; 1 is the cable, any other a Bluetooth serial port
    std::string devicePath; ///< a device of this machine in place of the COM number
    PortSettings settings;

    [[nodiscard]] bool IsBluetooth() const { return port != 1; }
};

/// Opens the port of the target. @return 1 if it is open
int OpenTarget(CCommand& command, const ConnectTarget& target);

enum class ConnectStep
{
    OpenPort,
    WakeReceiver,
    AskStatus,
    ReadOptions,
    ReadSerial,
};

/// What a step is called, for the user.
[[nodiscard]] const wchar_t* StepText(ConnectStep step);

/// Watches a connection being made. Called on the thread that runs it.
class ConnectObserver
{
public:
    virtual ~ConnectObserver() = default;

    /// @param done   how many steps are behind, of @p total
    virtual void OnStep(ConnectStep step, int done, int total) = 0;
};

/// Makes the connection: opens the port, wakes the receiver, asks its status, and polls options
/// and serial record until the line has shown that it holds. A screen and a terminal drive the
/// same object. The user cancels through the host's breath.
class ConnectSequence
{
public:
    /// @param command  its port is not open; must outlive this object
    ConnectSequence(CCommand& command, ConnectTarget target);

    /// @return 1 with the port open; 0 with the port closed again, the reason in FailedStep()
    ///         and FailedFault()
    int Run(ConnectObserver* observer = nullptr);

    // What the receiver said, of a sequence that has succeeded.
    [[nodiscard]] const ReceiverIdentity& Identity() const { return m_identity; }
    [[nodiscard]] const std::optional<TimedValue<StatusReply>>& Status() const { return m_status; }

    [[nodiscard]] ConnectStep FailedStep() const { return m_step; }
    [[nodiscard]] CommandFault FailedFault() const { return m_fault; }
    /// Whether the port puts something out by itself, which its settings must stop: what came in
    /// place of an answer looks like NMEA or corrections.
    [[nodiscard]] bool IsPortSending() const { return m_isSending; }
    /// What failed and why, for the user, and the caption over it.
    [[nodiscard]] std::wstring FailureMessage() const;
    [[nodiscard]] const wchar_t* FailureCaption() const;
    /// The same for developers.
    [[nodiscard]] const std::string& FailureDetail() const { return m_detail; }

private:
    bool Poll();
    template <typename Request>
    bool Do(ConnectStep step, Request request);

    CCommand& m_command;
    const ConnectTarget m_target;
    ConnectObserver* m_observer = nullptr;
    int m_done = 0;
    ConnectStep m_step = ConnectStep::OpenPort;
    CommandFault m_fault = CommandFault::None;
    bool m_isSending = false;
    std::string m_detail;
    ReceiverIdentity m_identity;
    std::optional<TimedValue<StatusReply>> m_status;
};

} // namespace fieldcore
