#pragma once

#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "core/settings/HostReg.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace fieldcore {

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

// The choice as it is kept, one for each receiver type.

/// @param reg         one that starts at the library's own key
/// @param typeNumber  of the receiver
/// @return signals whose value is 0 or missing are not chosen
[[nodiscard]] SignalSet LoadSignals(const CReg& reg, std::uint32_t typeNumber);

/// Stores all five, or none.
/// @return 1, or 0 if they could not be stored
int SaveSignals(const CReg& reg, std::uint32_t typeNumber, const SignalSet& chosen);

/// What a receiver says of its signals.
struct SignalAnswers
{
    /// An open port without an answer.
    [[nodiscard]] bool IsSilent() const { return hasPort && !isRead && isSilent; }

    bool hasPort = false;
    bool isLocked = false;        ///< an application file in the receiver fixes the signals
    bool isRead = false;          ///< the options
    bool isSilent = false;        ///< what was asked last brought nothing
    std::uint32_t typeNumber = 0; ///< 0 if the receiver did not tell
    CRecvInfo info;
};

/// The choice of signals from opening to agreeing: what the receiver has, whether the choice is
/// free, what was kept for this receiver type, and what goes to the receiver. The thread of the
/// command channel.
class SignalSession
{
public:
    /// @param command  may be null; must outlive the object
    explicit SignalSession(CCommand* command)
        : m_command(command), m_reg(EnvironmentOf(command).Roots())
    {}

    /// Asks the receiver. The thread of its face.
    [[nodiscard]] static SignalAnswers Ask(CCommand& command);
    /// Takes what it said, and reads what is kept. Where its options cannot be read, all signals
    /// are free to choose and none is chosen; without an open port there are none.
    void Open(const SignalAnswers& answers);
    /// Both.
    void Open() { Open(m_command != nullptr ? Ask(*m_command) : SignalAnswers()); }

    /// An application file in the receiver fixes the signals: nothing can be chosen.
    [[nodiscard]] bool IsLocked() const { return m_told.isLocked; }
    /// The receiver's options are known. Where they are not, agreeing sends nothing.
    [[nodiscard]] bool IsKnown() const { return Info().GetRecvTypeNum() != 0; }
    /// @return 0 if the receiver did not tell
    [[nodiscard]] std::uint32_t TypeNumber() const { return m_told.typeNumber; }
    /// As the receiver said when it was opened; it says nothing while the choice is locked.
    [[nodiscard]] const CRecvInfo& Info() const { return m_told.info; }

    [[nodiscard]] bool IsEnabled(Signal signal) const { return m_enabled.Has(signal); }
    [[nodiscard]] bool IsChecked(Signal signal) const { return m_checked.Has(signal); }
    /// A signal that is not enabled stays as it is.
    void Check(Signal signal, bool on);

    /// What became of an agreement. Nothing where it was not due.
    struct Outcome
    {
        std::optional<int> sent;                 ///< the signals: 1 if the receiver acknowledged
        CommandFault fault = CommandFault::None; ///< why it did not
        std::optional<int> boardTold;            ///< the board that takes them over only when told
        std::optional<int> stored;
    };
    /// Sends the choice and keeps it, whatever the receiver answers. Nothing while it is locked.
    Outcome Confirm();

    /// The data that Confirm() would send; empty: nothing.
    [[nodiscard]] std::vector<std::uint8_t> CommandData() const;

private:
    CCommand* const m_command;
    const HostReg m_reg;
    SignalAnswers m_told; // its info as far as it can be used
    SignalSet m_enabled;
    SignalSet m_checked;
};

} // namespace fieldcore
