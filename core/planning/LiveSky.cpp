#include "core/planning/LiveSky.h"

#include "core/platform/Degrees.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace fieldcore {

namespace {

Constellation ConstellationOf(std::uint8_t system)
{
    switch (system) {
    case ListedSatellite::Gps:
        return Constellation::Gps;
    case ListedSatellite::Glonass:
        return Constellation::Glonass;
    case ListedSatellite::Sbas:
        return Constellation::Sbas;
    case ListedSatellite::System6:
        return Constellation::Other;
    default:
        return Constellation::Unknown;
    }
}

LiveSatellite FromList(const ListedSatellite& listed)
{
    LiveSatellite satellite;
    satellite.constellation = ConstellationOf(listed.system);
    satellite.number = listed.number;
    satellite.direction = {RadiansOf(listed.azimuthDeg), RadiansOf(listed.elevationDeg)};
    for (std::size_t i = 0; i < satellite.signals.size(); ++i) {
        // A receiver sends 0 for a signal that it does not have, and the list something below for
        // one that was not sent.
        if (listed.signals[i] > 0.0) {
            satellite.signals[i] = listed.signals[i];
        }
    }
    return satellite;
}

bool IsBefore(const LiveSatellite& a, const LiveSatellite& b)
{
    return std::tie(a.constellation, a.number) < std::tie(b.constellation, b.number);
}

std::optional<bool> IsUsed(const LiveSky::Reading& reading, const LiveSatellite& satellite)
{
    std::optional<std::uint32_t> mask;
    if (satellite.constellation == Constellation::Gps) {
        mask = reading.usedGps;
    } else if (satellite.constellation == Constellation::Glonass) {
        mask = reading.usedGlonass;
    }
    const int bit = satellite.number - 1;
    if (!mask || bit < 0 || bit > 31) {
        return std::nullopt;
    }
    return (*mask >> bit & 1U) != 0;
}

/// Adds one, unless it is there.
void Add(std::vector<LiveSatellite>& satellites, const LiveSatellite& satellite)
{
    if (std::none_of(satellites.begin(), satellites.end(),
                     [&](const LiveSatellite& other) { return other.IsSame(satellite); })) {
        satellites.push_back(satellite);
    }
}

} // namespace

void LiveSky::Take(const Reading& reading, Clock::Duration now)
{
    m_satellites.clear();
    // The tracked ones first: theirs are the signals.
    for (const ListedSatellite& listed : reading.tracked.satellites) {
        LiveSatellite satellite = FromList(listed);
        satellite.isTracked = true;
        satellite.isUsed = IsUsed(reading, satellite);
        Add(m_satellites, satellite);
    }
    for (const ListedSatellite& listed : reading.inView.satellites) {
        Add(m_satellites, FromList(listed));
    }
    std::sort(m_satellites.begin(), m_satellites.end(), IsBefore);
    m_predicted = reading.predicted;
    m_readAt = now;
}

std::optional<std::chrono::seconds> LiveSky::Age(Clock::Duration now) const
{
    if (!m_readAt) {
        return std::nullopt;
    }
    return std::chrono::floor<std::chrono::seconds>(now - *m_readAt);
}

bool LiveSky::IsStale(Clock::Duration now) const
{
    return m_readAt && now - *m_readAt >= kStaleAfter;
}

std::vector<LiveSatellite> LiveSky::Satellites(std::optional<Constellation> filter) const
{
    std::vector<LiveSatellite> chosen;
    std::copy_if(m_satellites.begin(), m_satellites.end(), std::back_inserter(chosen),
                 [&](const LiveSatellite& satellite) {
                     return !filter || satellite.constellation == *filter;
                 });
    return chosen;
}

std::vector<PredictedSatellite> LiveSky::Predicted(std::optional<Constellation> filter) const
{
    return !filter || *filter == Constellation::Gps ? m_predicted
                                                    : std::vector<PredictedSatellite>{};
}

LiveSky::Counts LiveSky::Count(std::optional<Constellation> filter) const
{
    Counts counts;
    for (const LiveSatellite& satellite : Satellites(filter)) {
        ++counts.inView;
        counts.tracked += satellite.isTracked ? 1 : 0;
        counts.solid += satellite.IsSolid() ? 1 : 0;
    }
    return counts;
}

} // namespace fieldcore
