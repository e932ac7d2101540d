#include "core/tilt/SignalChoice.h"

#include "core/link/RecvInfo.h"
#include "core/platform/SettingsStore.h"
#include "core/resources/StringTable.h"

#include <string>

namespace fieldcore {

namespace {

/// By which they are stored, in their order.
constexpr std::array<const wchar_t*, kAllSignals.size()> kNames{L"L2C", L"Glonass", L"Qzss",
                                                                L"Galileo", L"L5"};

const wchar_t* NameOf(Signal signal)
{
    return kNames[static_cast<std::size_t>(signal)];
}

std::wstring KeyOf(std::uint32_t typeNumber)
{
    return L"GPS\\Signal\\" + std::to_wstring(typeNumber);
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
    const std::wstring key = KeyOf(typeNumber);
    for (const Signal signal : kAllSignals) {
        std::uint32_t value = 0;
        reg.ReadNumber(key, NameOf(signal), value, 0);
        chosen.Set(signal, value != 0);
    }
    return chosen;
}

int SaveSignals(const CReg& reg, std::uint32_t typeNumber, const SignalSet& chosen)
{
    const std::wstring key = KeyOf(typeNumber);
    SettingsBatch batch(reg.Store());
    bool stored = batch.IsOpen();
    for (const Signal signal : kAllSignals) {
        stored = stored && reg.WriteNumber(key, NameOf(signal), chosen.Has(signal) ? 1 : 0) == 1;
    }
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore
