#pragma once

#include "simulator/Frame.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"

#include <vector>

namespace fieldcore::simulator {

/// Replies about satellites; layouts in docs/protocol.md.

/// 0x17 in the scenario's form. A text list has GPS and SBAS satellites only; what does not fit
/// into one frame is left out.
[[nodiscard]] Bytes SatelliteList(const Scenario& scenario, const Sky& sky);

/// 0x17, several frames of kRecordsPerFrame binary records. @param form  1 tracked, 2 in view
[[nodiscard]] std::vector<Bytes> SatelliteFrames(const Scenario& scenario, const Sky& sky,
                                                 std::uint8_t form);
inline constexpr std::size_t kRecordsPerFrame = 8;

[[nodiscard]] Bytes AlmanacReply(const Almanac& almanac); ///< 0x55, sub-type 2

/// 0x55, sub-type 0: who of the GPS satellites has what. @param withGlonass  and who of GLONASS
[[nodiscard]] Bytes SatelliteStateReply(const Scenario& scenario, const Sky& sky,
                                        const std::vector<Almanac>& almanacs, bool withGlonass);

/// 0x55, sub-type 0x14: the same of the other satellites, counted from @p first.
[[nodiscard]] Bytes OtherSatelliteReply(const Sky& sky, std::uint8_t first);

} // namespace fieldcore::simulator
