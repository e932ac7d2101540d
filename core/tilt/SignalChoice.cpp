#include "core/tilt/SignalChoice.h"

#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"

#include <string>

namespace fieldcore {

namespace {

KnownSetting SettingOf(Signal signal)
{
    constexpr KnownSetting kInTheirOrder[] = {L"GPS\\Signal\\*\\L2C", L"GPS\\Signal\\*\\Glonass",
                                              L"GPS\\Signal\\*\\Qzss", L"GPS\\Signal\\*\\Galileo",
                                              L"GPS\\Signal\\*\\L5"};
    return kInTheirOrder[static_cast<std::size_t>(signal)];
}

} // namespace

SignalSet SignalsOf(const CRecvInfo& info)
{
    SignalSet has;
    has.Set(Signal::L2c, info.GetL2C() != 0);
    has.Set(Signal::Glonass, info.GetGLONASS() != 0);
    has.Set(Signal::Qzss, info.GetQZSS() != 0);
    has.Set(Signal::Galileo, info.GetGalileo() != 0);
    has.Set(Signal::L5, info.GetL5() != 0);
    return has;
}

int SignalTextId(Signal signal)
{
    return text::kSignalL2c + static_cast<int>(signal);
}

std::vector<std::uint8_t> SignalCommand(const SignalSet& chosen, bool isSolace)
{
    // The receiver's own codes; there is no rule behind them.
    constexpr unsigned kL2cOnSolace = 0x1E;
    constexpr unsigned kL2cElsewhere = 0x04;
    constexpr unsigned kNoL2c = 0x0E;
    const bool isL5 = chosen.Has(Signal::L5);

    unsigned first = kNoL2c;
    if (chosen.Has(Signal::L2c)) {
        first = isSolace ? kL2cOnSolace : kL2cElsewhere;
    }
    first += chosen.Has(Signal::Glonass) ? 0x80U : 0U;
    first += isL5 ? 0x40U : 0U;
    const unsigned glonass = chosen.Has(Signal::Glonass) ? 3 : 0;
    const unsigned galileo = !chosen.Has(Signal::Galileo) ? 0 : isL5 ? 11 : 9;

    std::vector<std::uint8_t> data{static_cast<std::uint8_t>(first),
                                   static_cast<std::uint8_t>(glonass),
                                   static_cast<std::uint8_t>(galileo)};
    if (chosen.Has(Signal::Qzss)) {
        data.push_back(0x00);
        data.push_back(0x84);
        if (isL5) {
            data.push_back(0x04);
        }
    }
    return data;
}

SignalSet LoadSignals(const CReg& reg, std::uint32_t typeNumber)
{
    SignalSet chosen;
    for (const Signal signal : kAllSignals) {
        chosen.Set(signal, StoredNumber(reg, SettingOf(signal), std::to_wstring(typeNumber)) != 0);
    }
    return chosen;
}

int SaveSignals(const CReg& reg, std::uint32_t typeNumber, const SignalSet& chosen)
{
    std::vector<SettingWrite> writes;
    writes.reserve(kAllSignals.size());
    for (const Signal signal : kAllSignals) {
        writes.push_back(
            {SettingOf(signal), chosen.Has(signal) ? 1U : 0U, std::to_wstring(typeNumber)});
    }
    return StoreAll(reg, writes);
}

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
