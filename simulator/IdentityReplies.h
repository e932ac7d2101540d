#pragma once

#include "simulator/Frame.h"
#include "simulator/Scenario.h"

namespace fieldcore::simulator {

/// Replies that tell who the receiver is and what it can do; layouts in docs/protocol.md.

[[nodiscard]] Bytes SerialReply(const Scenario& scenario);          ///< 0x07
[[nodiscard]] Bytes OptionsReply(const Scenario& scenario);         ///< 0x4B
[[nodiscard]] Bytes ExtendedOptionsReply(const Scenario& scenario); ///< 0x4B
/// 0x6E, after a BREAK. @param baudRate  the rate that the port has now
[[nodiscard]] Bytes IdentityReply(const Scenario& scenario, std::uint32_t baudRate);

} // namespace fieldcore::simulator
