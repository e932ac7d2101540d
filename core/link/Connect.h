#pragma once

#include "core/host/Host.h"
#include "core/link/ConnectChoice.h"
#include "core/link/Receiver.h"
#include "core/link/ReceiverTypes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fieldcore {

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

    /// Of a sequence that has failed, as what follows.
    [[nodiscard]] ConnectStep FailedStep() const { return m_step; }
    /// By which it failed.
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

/// Connecting: makes sure that a receiver is there, that the host supports it, and that its
/// firmware is recent enough. Asks and warns through the channel's host. Made where a receiver
/// is needed, run, and thrown away; the port that it opened stays open for the caller.
class CConnect
{
public:
    /// What DoModal() answers.
    enum Result : int
    {
        Connected = 1,
        NotConnected = 2,
    };

    /// Connects as the settings say at the time, see FindTarget().
    /// @param command    not owned; must outlive this object
    /// @param reconnect  not 0 when the host asks after a lost Bluetooth link
    CConnect(CCommand& command, int reconnect)
        : m_command(command), m_reconnect(reconnect), m_isBySettings(true)
    {}
    /// Connects to @p found. One that is no port is told to the user.
    CConnect(CCommand& command, int reconnect, FoundTarget found);
    CConnect(CCommand& command, int reconnect, ConnectTarget target);
    virtual ~CConnect() = default;
    CConnect(const CConnect&) = delete;
    CConnect& operator=(const CConnect&) = delete;

    /// Declares a receiver type acceptable or not. Numbers that no host can support are ignored.
    void SetRecvTypeFlag(std::uint32_t typeNumber, int flag) { m_flags.Set(typeNumber, flag); }
    void SupportAllTypes() { m_flags.SetAll(); }
    [[nodiscard]] const SupportedTypeFlags& SupportedTypes() const { return m_flags; }
    void SetSupportedTypes(const SupportedTypeFlags& flags) { m_flags = flags; }

    /// Asks the user to prepare the receiver and connects, unless the port is open already.
    /// @return Connected or NotConnected
    int DoModal();

    /// Takes over what a sequence that has succeeded was told: it is not asked again.
    void Take(const ConnectSequence& sequence);

    /// Whether the connected receiver is acceptable; if not, the user has been told why. Firmware
    /// before 1.0 is accepted with a warning.
    /// @return 1 or 0
    int CheckRecvType();
    /// The receiver as CheckRecvType() read it last; empty before, or if it did not tell.
    [[nodiscard]] const ReceiverIdentity& Identity() const { return m_identity; }
    /// How far DoModal() has come: Connected, Failed, or NotConnected if the user did not want it.
    [[nodiscard]] LinkState Reached() const { return m_reached; }
    /// Where DoModal() has connected to; nothing before, or if there is no port.
    [[nodiscard]] const std::optional<ConnectTarget>& Target() const { return m_found.target; }
    /// What the connect sequence was told; nothing if it was not needed.
    [[nodiscard]] const std::optional<TimedValue<StatusReply>>& Status() const { return m_status; }

    /// By type number: whether it is acceptable, its lowest firmware, the warning about it.
    [[nodiscard]] int stGetRecvTypeFlag(std::uint32_t typeNumber) const;
    [[nodiscard]] double stGetRecvVer(std::uint32_t typeNumber) const;
    [[nodiscard]] std::wstring stCreateWarMes(std::uint32_t typeNumber) const;
    /// @return 1 if the user is ready
    int stStartMessage();

protected:
    /// Runs the connect sequence. A screen overrides it to show the steps.
    /// @return 1 if connected
    virtual int RunSequence(ConnectSequence& sequence);
    /// Tells the user why the sequence failed. A screen overrides it to show the detail, too. Not
    /// called when the user has cancelled.
    virtual void ShowFailure(const ConnectSequence& sequence);

private:
    void Find();

    CCommand& m_command;
    const int m_reconnect;
    const bool m_isBySettings = false;
    FoundTarget m_found;
    SupportedTypeFlags m_flags;
    ReceiverIdentity m_identity;
    LinkState m_reached = LinkState::NotConnected;
    std::optional<TimedValue<StatusReply>> m_status;
};

} // namespace fieldcore
