#pragma once

#include "core/settings/Reg.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace fieldcore {

class CRecvInfo;

/// The signals and constellations that the user can switch, GPS L1 aside.
enum class Signal : std::uint8_t
{
    L2c,
    Glonass,
    Qzss,
    Galileo,
    L5,
};

inline constexpr std::array<Signal, 5> kAllSignals{Signal::L2c, Signal::Glonass, Signal::Qzss,
                                                   Signal::Galileo, Signal::L5};

/// Some of the signals.
class SignalSet
{
public:
    [[nodiscard]] bool Has(Signal signal) const { return m_has[Index(signal)]; }
    void Set(Signal signal, bool on) { m_has[Index(signal)] = on; }
    [[nodiscard]] bool IsEmpty() const { return *this == SignalSet(); }

    friend bool operator==(const SignalSet&, const SignalSet&) = default;

private:
    static std::size_t Index(Signal signal) { return static_cast<std::size_t>(signal); }

    std::array<bool, kAllSignals.size()> m_has{};
};

/// The signals that a receiver has; none if its options were not read.
[[nodiscard]] SignalSet SignalsOf(const CRecvInfo& info);

/// The name of a signal, a number of the string table.
[[nodiscard]] int SignalTextId(Signal signal);

/// Data of the command that chooses the signals.
/// @param chosen   of those that the receiver has
/// @param isSolace  the receiver carries that board
/// @return 3, 5 or 6 bytes
[[nodiscard]] std::vector<std::uint8_t> SignalCommand(const SignalSet& chosen, bool isSolace);

// The choice as it is kept, one for each receiver type, in the key "GPS\Signal\TYPE" below the
// library's own.

/// @param reg         one that starts at the library's own key
/// @param typeNumber  of the receiver
/// @return signals whose value is 0 or missing are not chosen
[[nodiscard]] SignalSet LoadSignals(const CReg& reg, std::uint32_t typeNumber);

/// Stores all five, or none.
/// @return 1, or 0 if they could not be stored
int SaveSignals(const CReg& reg, std::uint32_t typeNumber, const SignalSet& chosen);

} // namespace fieldcore
