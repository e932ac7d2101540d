#pragma once

#include "core/link/ConnectChoice.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace fieldcore {

class CCommand;

/// Told of each rate before it is tried, on the thread that searches.
/// @param rate  bit/s
/// @param done  how many are behind, of @p total
using RateWatch = std::function<void(std::uint32_t rate, int done, int total)>;

/// Looks for a receiver that does not answer at the rate it should: opens the port at each of the
/// seven rates, the likely ones first, and asks for the status. A silent rate takes 1.75 s; the
/// user cancels through the host's breath. The other parameters stay as they are. The port is
/// closed before and after.
/// @param target  where the receiver should be; its rate is tried first
/// @param watch   may be empty
/// @return the rate at which it answered; nothing if none did, if the port does not open, or if the
///         user has cancelled: command.Fault() tells which
[[nodiscard]] std::optional<std::uint32_t> SearchRate(CCommand& command, ConnectTarget target,
                                                      const RateWatch& watch = {});

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
