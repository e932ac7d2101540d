#include "core/tilt/SignalSession.h"

namespace fieldcore {

SignalAnswers SignalSession::Ask(CCommand& command)
{
    SignalAnswers answers;
    answers.hasPort = command.IsPortOpen() != 0;
    if (!answers.hasPort) {
        return answers;
    }
    answers.typeNumber = GetRecvTypeNum(command);
    constexpr std::size_t kLock = 2;
    SettingsFlags flags{};
    answers.isLocked = command.RequestSettingsFlags(flags) == 1 && flags[kLock] != 0;
    if (!answers.isLocked) {
        answers.isRead = answers.info.GetOptionData(command) == 1;
        answers.isSilent = ClassOf(command.Fault()) != FaultClass::Answered;
    }
    return answers;
}

void SignalSession::Open(const SignalAnswers& answers)
{
    m_isLocked = answers.isLocked;
    m_isKnown = false;
    m_typeNumber = answers.typeNumber;
    m_info = CRecvInfo();
    m_enabled = SignalSet();
    m_checked = SignalSet();
    const SignalSet kept = LoadSignals(m_reg, m_typeNumber);
    if (m_isLocked) {
        m_checked = kept;
        return;
    }
    if (!answers.hasPort) {
        return;
    }
    if (!answers.isRead) { // a part of it would send a part of the choice
        for (const Signal signal : kAllSignals) {
            m_enabled.Set(signal, true);
        }
        return;
    }
    m_info = answers.info;
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
