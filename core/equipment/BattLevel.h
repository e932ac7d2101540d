#pragma once

#include <cstdint>
#include <string>

namespace fieldcore {

class CCommand;
class ProgressBar;

/// What a receiver of a type calls its power sources.
/// @param typeNumber  of the receiver; 0: not known
/// @param source      as it answers; its first one where it is no source of that type
[[nodiscard]] std::wstring PowerSourceName(std::uint32_t typeNumber, int source);

/// Whether receivers of a type know the question for the power source. The others have the first.
[[nodiscard]] bool CanTellPowerSource(std::uint32_t typeNumber);

/// The charge as the progress bar shows it: the upper edge of its band, 0 to 100 in steps of 10.
/// @param percent  as the receiver tells it; 110 or more, and less than 0, are shown as 0
[[nodiscard]] int BatteryBand(int percent);

/// Shows the receiver's battery as a progress bar and names its power source. The host calls
/// SetBatteryStatus() from a periodic timer; the receiver is asked at every fifteenth call. The
/// type of the receiver is read once: another receiver needs another object. The thread of the
/// command channel.
class CBattLevel
{
public:
    /// @param command  not owned; must outlive the object
    explicit CBattLevel(CCommand* command) : m_command(command) {}

    /// The type number where it is known already, which saves asking for it. 0 is not taken.
    void SetRecvTypeNum(std::uint32_t typeNumber) { m_typeNumber = typeNumber; }

    /// Range 0 to 100, position 0; the next call asks the receiver.
    void SetInit(ProgressBar* bar);

    /// The periodic call. One that finds the channel busy does nothing and does not count.
    /// @param textControlId  in the active window, for the name of the power source
    void SetBatteryStatus(int textControlId, ProgressBar* bar);

    /// Asks for the charge.
    /// @return 0 to 100 in steps of 10, the upper edge of the charge's band; 0 if it fails
    int GetBattLevel();

    /// Asks for the power source.
    /// @return its name; that of the first source if it fails
    std::wstring GetBattPort();

private:
    static constexpr int kCallsPerQuery = 15;

    CCommand* const m_command;
    std::uint32_t m_typeNumber = 0; ///< 0: not known
    int m_calls = kCallsPerQuery;   ///< since the last query
};

} // namespace fieldcore
