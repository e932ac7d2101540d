#pragma once

#include "core/link/ConnectSequence.h"

namespace fieldcore {

class CCommand;

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
