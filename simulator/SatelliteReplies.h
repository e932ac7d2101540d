#pragma once

#include "simulator/Frame.h"
#include "simulator/Scenario.h"

#include <vector>

namespace fieldcore::simulator {

/// Replies about satellites; layouts in docs/protocol.md.

/// The satellites of a list. One without any signal is in view and not tracked.
[[nodiscard]] std::vector<Satellite> Listed(const Scenario& scenario, bool inView);

/// 0x17 in the scenario's form. A text list has GPS and SBAS satellites only; what does not fit
/// into one frame is left out.
[[nodiscard]] Bytes SatelliteList(const Scenario& scenario);

/// 0x17, several frames of kRecordsPerFrame binary records. @param form  1 tracked, 2 in view
[[nodiscard]] std::vector<Bytes> SatelliteFrames(const Scenario& scenario, std::uint8_t form);
inline constexpr std::size_t kRecordsPerFrame = 8;

[[nodiscard]] Bytes AlmanacReply(const Almanac& almanac); ///< 0x55, sub-type 2

/// 0x55, sub-type 0: who of the GPS satellites has what. @param withGlonass  and who of GLONASS
[[nodiscard]] Bytes SatelliteStateReply(const Scenario& scenario,
                                        const std::vector<Almanac>& almanacs, bool withGlonass);

/// 0x55, sub-type 0x14: the same of the other satellites, counted from @p first.
[[nodiscard]] Bytes OtherSatelliteReply(const Scenario& scenario, std::uint8_t first);

/// 24 satellites, PRN 1 to 24, evenly in six planes of 55 degrees, circular: good to look at and
/// easy to compute by hand. @param week  full GPS week of their reference time
[[nodiscard]] std::vector<Almanac> NominalAlmanacs(int week);

} // namespace fieldcore::simulator
