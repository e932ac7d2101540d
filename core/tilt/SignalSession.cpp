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
    m_told = answers;
    if (!answers.isRead) { // a part of it would send a part of the choice
        m_told.info = CRecvInfo();
    }
    const SignalSet kept = LoadSignals(m_reg, TypeNumber());
    m_enabled = SignalsOf(Info());
    m_checked = IsLocked() ? kept : SignalSet();
    for (const Signal signal : kAllSignals) {
        if (answers.isRead) {
            m_checked.Set(signal, m_enabled.Has(signal) && kept.Has(signal));
        } else {
            m_enabled.Set(signal, answers.hasPort && !IsLocked());
        }
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
    if (IsLocked() || SignalsOf(Info()).IsEmpty()) {
        return {};
    }
    return SignalCommand(m_checked, Info().GetSolace() != 0);
}

SignalSession::Outcome SignalSession::Confirm()
{
    Outcome outcome;
    if (IsLocked()) {
        return outcome;
    }
    if (const std::vector<std::uint8_t> data = CommandData(); !data.empty()) {
        outcome.sent = m_command->SetSignals(data);
        outcome.fault = m_command->Fault();
    }
    if (Info().GetMeridian() != 0) {
        outcome.boardTold = m_command->SetBoardSignals(0, 0, 0);
    }
    if (TypeNumber() != 0) {
        outcome.stored = SaveSignals(m_reg, TypeNumber(), m_checked);
    }
    return outcome;
}

} // namespace fieldcore
