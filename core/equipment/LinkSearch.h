#pragma once

#include "core/link/ConnectChoice.h"

#include <cstdint>
#include <optional>

namespace fieldcore {

class CCommand;

/// Watches a search. Called on the thread that runs it.
class RateObserver
{
public:
    virtual ~RateObserver() = default;

    /// @param rate  that is tried now, bit/s
    /// @param done  how many are behind, of @p total
    virtual void OnRate(std::uint32_t rate, int done, int total) = 0;
};

/// Looks for a receiver that does not answer at the rate it should: opens the port at each of the
/// seven rates, the likely ones first, and asks for the status. A silent rate takes 1.75 s; the
/// user cancels through the host's breath. The other parameters stay as they are. The port is
/// closed before and after.
/// @param target    where the receiver should be; its rate is tried first
/// @param observer  may be null
/// @return the rate at which it answered; nothing if none did, if the port does not open, or if the
///         user has cancelled: command.Fault() tells which
[[nodiscard]] std::optional<std::uint32_t> SearchRate(CCommand& command, ConnectTarget target,
                                                      RateObserver* observer = nullptr);

/// Why no rate was found, for the user.
/// @param fault  of the channel after the search
[[nodiscard]] int RateSearchText(CommandFault fault);

/// Where a receiver is found that was told to run the port differently which the controller uses.
enum class LinkFollowed
{
    Moved,     ///< it answers with the new parameters; the port is open with them
    Stayed,    ///< it still answers with the old ones; the port is open with them
    Lost,      ///< it answers neither way; the port is closed
    Cancelled, ///< by the user; the port is closed
};

/// Waits until the receiver has changed its port, opens the controller's anew and asks for the
/// status: with the new parameters, and if nothing answers with the old ones. Blocks for some 0.3
/// s, and two reply time-outs and a half second for each way that is silent.
/// @param moved   where the receiver is, with the new parameters
/// @param before  the old ones
[[nodiscard]] LinkFollowed FollowLink(CCommand& command, const ConnectTarget& moved,
                                      const PortSettings& before);

} // namespace fieldcore
