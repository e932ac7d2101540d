#include "core/tilt/SignalChoice.h"

#include "core/link/RecvInfo.h"
#include "core/platform/SettingsStore.h"
#include "core/resources/StringTable.h"

#include <string>

namespace fieldcore {

namespace {

struct StoredSignal
{
    const wchar_t* name;
    Signal signal;
};

constexpr StoredSignal kStored[] = {{L"Glonass", Signal::Glonass},
                                    {L"Qzss", Signal::Qzss},
                                    {L"Galileo", Signal::Galileo},
                                    {L"L2C", Signal::L2c},
                                    {L"L5", Signal::L5}};

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
    for (const StoredSignal& stored : kStored) {
        std::uint32_t value = 0;
        reg.ReadNumber(key, stored.name, value, 0);
        chosen.Set(stored.signal, value != 0);
    }
    return chosen;
}

int SaveSignals(const CReg& reg, std::uint32_t typeNumber, const SignalSet& chosen)
{
    const std::wstring key = KeyOf(typeNumber);
    SettingsBatch batch(reg.Store());
    bool stored = batch.IsOpen();
    for (const StoredSignal& each : kStored) {
        stored = stored && reg.WriteNumber(key, each.name, chosen.Has(each.signal) ? 1 : 0) == 1;
    }
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore
