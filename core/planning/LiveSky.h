#pragma once

#include "core/link/SatelliteReplies.h"
#include "core/planning/LocalFrame.h"
#include "core/platform/Clock.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace fieldcore {

/// The systems that a receiver's satellite list tells apart.
enum class Constellation : std::uint8_t
{
    Gps,
    Glonass,
    Sbas,
    Other,   ///< further systems, in one row of numbers that does not say which
    Unknown, ///< a number that belongs to no system
};
inline constexpr int kConstellations = 5;

/// One satellite as the receiver sees it.
struct LiveSatellite
{
    Constellation constellation = Constellation::Unknown;
    int number = 0;         ///< in the numbering of its system
    SkyDirection direction; ///< azimuth 0 to 2 pi
    /// dB-Hz; nothing where none was received.
    std::array<std::optional<double>, 4> signals;
    bool isTracked = false;
    std::optional<bool> isUsed; ///< in the position; nothing if the receiver did not tell

    /// Whether it serves the position, as far as is known: a tracked one is taken for used until
    /// the receiver says that it is not.
    [[nodiscard]] bool IsSolid() const { return isTracked && isUsed.value_or(true); }
    /// Whether both are the same satellite, wherever it stands.
    [[nodiscard]] bool IsSame(const LiveSatellite& other) const
    {
        return constellation == other.constellation && number == other.number;
    }
};

/// A GPS satellite where the almanac has it.
struct PredictedSatellite
{
    int prn = 1;            ///< 1 to 32
    SkyDirection direction; ///< azimuth 0 to 2 pi, elevation 0 or more
};

/// The sky over the receiver as it was last told, and how old that is. Times are those of a
/// Clock's Steady(). One thread.
class LiveSky
{
public:
    /// From this age on a reading is stale.
    static constexpr std::chrono::seconds kStaleAfter{10};

    /// What a round of questions has brought.
    struct Reading
    {
        SatelliteList inView;
        SatelliteList tracked;                ///< one that is not in view besides is taken in, too
        std::optional<std::uint32_t> usedGps; ///< satellite 1 is bit 0
        std::optional<std::uint32_t> usedGlonass; ///< the same
        std::vector<PredictedSatellite> predicted;
    };
    /// Replaces all that was there. A satellite that is listed twice counts once.
    void Take(const Reading& reading, Clock::Duration now);
    /// Forgets everything, as for another receiver.
    void Clear() { *this = LiveSky(); }

    [[nodiscard]] bool HasReading() const { return m_readAt.has_value(); }
    /// Nothing without a reading.
    [[nodiscard]] std::optional<std::chrono::seconds> Age(Clock::Duration now) const;
    /// Without a reading nothing is stale.
    [[nodiscard]] bool IsStale(Clock::Duration now) const;

    /// By constellation, then number.
    /// @param filter  nothing: all
    [[nodiscard]] std::vector<LiveSatellite> Satellites(std::optional<Constellation> filter) const;
    /// Where the almanac has the GPS satellites at the time and place of the reading.
    /// @param filter  nothing but GPS has any
    [[nodiscard]] std::vector<PredictedSatellite>
    Predicted(std::optional<Constellation> filter) const;

    struct Counts
    {
        int inView = 0;
        int tracked = 0;
        int solid = 0; ///< LiveSatellite::IsSolid()
    };
    [[nodiscard]] Counts Count(std::optional<Constellation> filter) const;

private:
    std::vector<LiveSatellite> m_satellites;
    std::vector<PredictedSatellite> m_predicted;
    std::optional<Clock::Duration> m_readAt;
};

} // namespace fieldcore
