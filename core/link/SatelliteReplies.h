#pragma once

#include "core/link/FrameReader.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace fieldcore {

// Satellite lists and satellite data, read out of frames as in Replies.h.

/// What stands for a signal value that was not sent.
inline constexpr double kNoSignal = -9999.0;

/// One satellite of a list.
struct ListedSatellite
{
    /// The satellite's system.
    enum System : std::uint8_t
    {
        Gps = 0,
        Sbas = 1,
        Glonass = 2,
        System6 = 6, ///< raw numbers 76 to 109
        Unknown = 255,
    };
    std::uint8_t system = Unknown;
    int number = 0;    ///< in the numbering of its system
    int rawNumber = 0; ///< as received
    int channel = 0;   ///< the frequency channel of a GLONASS satellite; kept for diagnostics
    int azimuthDeg = 0;
    int elevationDeg = 0;
    std::array<double, 4> signals{kNoSignal, kNoSignal, kNoSignal, kNoSignal};

    /// Whether the angles are a direction of the sky, the horizon's other side included.
    [[nodiscard]] bool HasDirection() const
    {
        return azimuthDeg >= 0 && azimuthDeg <= 360 && elevationDeg >= -90 && elevationDeg <= 90;
    }

    friend bool operator==(const ListedSatellite&, const ListedSatellite&) = default;
};

/// The satellites that a receiver lists.
struct SatelliteList
{
    std::vector<ListedSatellite> satellites;
    int gpsCount = 0;
    int glonassCount = 0; ///< counted in binary records only
    int dropped = 0;      ///< records left out, whose direction is none

    friend bool operator==(const SatelliteList&, const SatelliteList&) = default;
};

/// The list in a single frame, reply 0x17.
[[nodiscard]] std::optional<SatelliteList> ParseSatelliteList(FrameReader frame);

/// Which list is asked for in several frames.
enum class SatelliteListForm : std::uint8_t
{
    Tracked = 1,
    InView = 2,
};

/// Adds one frame of a list in several frames, reply 0x17.
/// @param number  the frame expected, from 0
/// @return whether it was the last; nothing if the frame is not the expected one
[[nodiscard]] std::optional<bool> ParseSatelliteListFrame(FrameReader frame, SatelliteListForm form,
                                                          int number, SatelliteList& list);

/// Almanac of one GPS satellite, reply 0x55 with sub-type 2. Angles are semicircles, as sent.
struct AlmanacReply
{
    int prn = 0;
    std::uint32_t timeStamp = 0; ///< carried along; no computation uses it
    std::uint16_t week = 0;      ///< as broadcast, may be 10-bit
    std::uint32_t toaS = 0;      ///< seconds of week
    double sqrtA = 0.0;          ///< m^0.5
    double eccentricity = 0.0;
    double inclination = 0.0; ///< semicircles
    double omegaDot = 0.0;    ///< rate of right ascension, semicircles/s
    double omega0 = 0.0;      ///< right ascension of the node at the week's start, semicircles
    double omega = 0.0;       ///< argument of perigee, semicircles
    double m0 = 0.0;          ///< mean anomaly at toa, semicircles
    std::uint8_t health = 0;  ///< 0: healthy
};
/// @param prn  the satellite that was asked for
[[nodiscard]] std::optional<AlmanacReply> ParseAlmanac(FrameReader frame, int prn);

/// General satellite data, reply 0x55 with sub-type 0: words whose meaning the host knows.
struct SatelliteDataReply
{
    std::array<std::uint32_t, 8> words{};
    std::array<std::uint16_t, 2> shortWords{};
    std::array<std::uint32_t, 2> moreWords{};
    std::array<std::uint32_t, 7> triples{}; ///< 24 bits each; only if they were asked for
};
[[nodiscard]] std::optional<SatelliteDataReply> ParseSatelliteData(FrameReader frame,
                                                                   bool withTriples);

/// Further satellite data, reply 0x55 with sub-type 0x14: five words, zero when the receiver
/// answered another selection than 4, 0, 2.
using SatelliteDataExtra = std::array<std::uint16_t, 5>;
[[nodiscard]] std::optional<SatelliteDataExtra> ParseSatelliteDataExtra(FrameReader frame);

} // namespace fieldcore
