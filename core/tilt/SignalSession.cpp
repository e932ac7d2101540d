#include "core/tilt/SignalSession.h"

namespace fieldcore {

void SignalSession::Open()
{
    m_isLocked = false;
    m_isKnown = false;
    m_typeNumber = 0;
    m_info = CRecvInfo();
    m_enabled = SignalSet();
    m_checked = SignalSet();
    if (m_command == nullptr) {
        return;
    }
    m_typeNumber = GetRecvTypeNum(*m_command);
    const SignalSet kept = LoadSignals(m_reg, m_typeNumber);
    constexpr std::size_t kLock = 2;
    SettingsFlags flags{};
    if (m_command->RequestSettingsFlags(flags) == 1 && flags[kLock] != 0) {
        m_isLocked = true;
        m_checked = kept;
        return;
    }
    if (m_info.GetOptionData(*m_command) == 0) {
        m_info = CRecvInfo(); // a part of it would send a part of the choice
        for (const Signal signal : kAllSignals) {
            m_enabled.Set(signal, true);
        }
        return;
    }
    m_isKnown = m_info.GetRecvTypeNum() != 0; // without a port there is nothing to read
    m_enabled = SignalsOf(m_info);
    for (const Signal signal : kAllSignals) {
        m_checked.Set(signal, m_enabled.Has(signal) && kept.Has(signal));
    }
}

void SignalSession::Check(Signal signal, bool on)
{
    if (IsEnabled(signal)) {
        m_checked.Set(signal, on);
    }
}

std::vector<std::uint8_t> SignalSession::CommandData() const
{
    if (m_isLocked || SignalsOf(m_info).IsEmpty()) {
        return {};
    }
    return SignalCommand(m_checked, m_info.GetSolace() != 0);
}

SignalSession::Outcome SignalSession::Confirm()
{
    Outcome outcome;
    if (m_isLocked) {
        return outcome;
    }
    if (const std::vector<std::uint8_t> data = CommandData(); !data.empty()) {
        outcome.sent = m_command->SetSignals(data);
        outcome.fault = m_command->Fault();
    }
    if (m_info.GetMeridian() != 0) {
        outcome.boardTold = m_command->SetBoardSignals(0, 0, 0);
    }
    if (m_typeNumber != 0) {
        outcome.stored = SaveSignals(m_reg, m_typeNumber, m_checked);
    }
    return outcome;
}

} // namespace fieldcore
