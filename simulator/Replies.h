#pragma once

#include "simulator/FileStore.h"
#include "simulator/Frame.h"
#include "simulator/GpsTime.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace fieldcore::simulator {

// The replies of the receiver, by what they are about; layouts in docs/protocol.md.

// Who the receiver is and what it can do.

[[nodiscard]] Bytes SerialReply(const Scenario& scenario);          ///< 0x07
[[nodiscard]] Bytes OptionsReply(const Scenario& scenario);         ///< 0x4B
[[nodiscard]] Bytes ExtendedOptionsReply(const Scenario& scenario); ///< 0x4B
/// 0x6E, after a BREAK. @param baudRate  the rate that the port has now
[[nodiscard]] Bytes IdentityReply(const Scenario& scenario, std::uint32_t baudRate);

/// What the receiver knows about its position at a moment.
struct Solution
{
    int fixKind = 0;
    bool knowsTime = true;
    LocalDop dop; ///< all of them 99.9 without a position
};

// How the receiver is.

[[nodiscard]] Bytes StatusReply(const Scenario& scenario, const Sky& sky, const Solution& solution,
                                int batteryPercent,
                                int freeMemoryTenths);              ///< 0x09
[[nodiscard]] Bytes TimeReply(const GpsTime& time, int utcOffsetS); ///< 0x15
[[nodiscard]] Bytes SiteReply(const Scenario& scenario);            ///< 0x31
[[nodiscard]] Bytes PositionReply(const Scenario& scenario, const Sky& sky,
                                  const Solution& solution, const GpsTime& time); ///< 0x35

/// @param elapsedS  the receiver's seconds since it started
[[nodiscard]] Solution SolutionAt(const Scenario& scenario, const Sky& sky, double elapsedS);

/// How many satellites the receiver says that it tracks.
[[nodiscard]] int TrackedSatellites(const Scenario& scenario, const Sky& sky);

// Satellites.

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

// Files.

/// The frames of a long answer, made one by one as they are asked for; nothing at its end.
using FrameSource = std::function<std::optional<Bytes>()>;

/// A page of a Pica's list, 0x79.
/// @param page  0 to 255
/// @param live  false: the files of the recycle bin
[[nodiscard]] Bytes PicaPage(const FileStore& store, ListingManner manner, std::uint8_t page,
                             bool live);

/// The pages of a Lark's list, 0x9D each.
[[nodiscard]] FrameSource LarkPages(std::vector<ReceiverFile> files, ListingManner manner);

/// The blocks of a download, 0x95 each.
/// @param file    null: there is no such file
/// @param offset  where to begin
/// @param blocks  how many at most; 0: to the file's end
[[nodiscard]] FrameSource FileBlocks(const ReceiverFile* file, std::uint32_t offset,
                                     std::uint16_t blocks);

} // namespace fieldcore::simulator
