#include "core/orbits/Constellations.h"

#include "core/platform/Calendar.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace fieldcore {

namespace {

constexpr double kPeriodS = 7200.0; // in which one record of a satellite is enough

double PeriodOf(const NavigationRecord& record)
{
    return std::floor(record.ReferenceS() / kPeriodS);
}

/// Of the records of one satellite the one that Position() means, healthy or not.
const NavigationRecord* Nearest(std::span<const NavigationRecord> records, double gpsS)
{
    const NavigationRecord* nearest = nullptr;
    for (const NavigationRecord& record : records) {
        if (nearest == nullptr ||
            std::abs(gpsS - record.ReferenceS()) <= std::abs(gpsS - nearest->ReferenceS())) {
            nearest = &record;
        }
    }
    return nearest;
}

struct BySystem
{
    bool operator()(const NavigationRecord& record, GnssSystem system) const
    {
        return record.satellite.system < system;
    }
    bool operator()(GnssSystem system, const NavigationRecord& record) const
    {
        return system < record.satellite.system;
    }
};

} // namespace

double StaleAfterS(GnssSystem system) noexcept
{
    constexpr std::array<double, kGnssSystems> kDays{14.0, 14.0, 14.0, 7.0, 7.0, 1.0 / 48.0};
    return kDays[static_cast<std::size_t>(system)] * kDayS;
}

void Constellations::Add(std::span<const NavigationRecord> records)
{
    m_records.insert(m_records.end(), records.begin(), records.end());
    const auto isEarlier = [](const NavigationRecord& a, const NavigationRecord& b) {
        return a.satellite != b.satellite ? a.satellite < b.satellite
                                          : a.ReferenceS() < b.ReferenceS();
    };
    std::stable_sort(m_records.begin(), m_records.end(), isEarlier);
    // From the newest of each satellite back; what stays gathers at the end.
    auto kept = m_records.rbegin();
    std::size_t ofSatellite = 0;
    for (auto record = m_records.rbegin(); record != m_records.rend(); ++record) {
        const bool isFirst = record == m_records.rbegin();
        const NavigationRecord* const newer = isFirst ? nullptr : &*std::prev(kept);
        const bool isSame = newer != nullptr && newer->satellite == record->satellite;
        if (isSame && (PeriodOf(*newer) == PeriodOf(*record) || ofSatellite == kMostRecords)) {
            continue;
        }
        ofSatellite = isSame ? ofSatellite + 1 : 1;
        if (kept != record) {
            *kept = *record;
        }
        ++kept;
    }
    m_records.erase(m_records.begin(), kept.base());
}

void Constellations::DropBefore(GnssSystem system, double gpsS)
{
    std::erase_if(m_records, [&](const NavigationRecord& record) {
        return record.satellite.system == system && record.ReferenceS() < gpsS;
    });
}

std::span<const NavigationRecord> Constellations::RecordsOf(SatelliteId satellite) const
{
    const auto first = std::lower_bound(
        m_records.begin(), m_records.end(), satellite,
        [](const NavigationRecord& record, SatelliteId id) { return record.satellite < id; });
    const auto last = std::find_if(first, m_records.end(), [&](const NavigationRecord& record) {
        return record.satellite != satellite;
    });
    return {first, last};
}

std::span<const NavigationRecord> Constellations::RecordsOf(GnssSystem system) const
{
    const auto [first, last] =
        std::equal_range(m_records.begin(), m_records.end(), system, BySystem());
    return {first, last};
}

std::vector<SatelliteId> Constellations::Satellites(SystemSet systems) const
{
    std::vector<SatelliteId> satellites;
    for (const NavigationRecord& record : m_records) {
        if (systems[static_cast<std::size_t>(record.satellite.system)] &&
            (satellites.empty() || satellites.back() != record.satellite)) {
            satellites.push_back(record.satellite);
        }
    }
    return satellites;
}

std::optional<Ecef> Constellations::Position(SatelliteId satellite, double gpsS) const
{
    const NavigationRecord* const nearest = Nearest(RecordsOf(satellite), gpsS);
    return nearest != nullptr && nearest->IsHealthy() ? OrbitMotion(*nearest).At(gpsS)
                                                      : std::nullopt;
}

Ecef SatelliteMotion::At(double gpsS)
{
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const NavigationRecord* const nearest = Nearest(m_records, gpsS);
    if (nearest != m_current) {
        m_current = nearest;
        m_motion.reset();
        if (nearest->IsHealthy()) {
            m_motion.emplace(*nearest);
        }
    }
    const std::optional<Ecef> position = m_motion ? m_motion->At(gpsS) : std::nullopt;
    return position.value_or(Ecef{kNone, kNone, kNone});
}

void SatelliteMotion::At(std::span<const double> epochs, std::span<Ecef> positions)
{
    assert(positions.size() >= epochs.size());
    // Away from the message to both sides.
    const NavigationRecord* const near =
        epochs.empty() ? nullptr : Nearest(m_records, epochs[epochs.size() / 2]);
    const auto split = near == nullptr
                           ? epochs.begin()
                           : std::lower_bound(epochs.begin(), epochs.end(), near->ReferenceS());
    const auto middle = static_cast<std::size_t>(split - epochs.begin());
    for (std::size_t k = middle; k < epochs.size(); ++k) {
        positions[k] = At(epochs[k]);
    }
    for (std::size_t k = middle; k-- > 0;) {
        positions[k] = At(epochs[k]);
    }
}

SystemState Constellations::StateOf(GnssSystem system, double gpsS) const
{
    SystemState state;
    for (const SatelliteId satellite : Satellites(SystemSetOf(system))) {
        const std::span<const NavigationRecord> records = RecordsOf(satellite);
        const NavigationRecord& nearest = *Nearest(records, gpsS);
        const double firstS = records.front().ReferenceS();
        const double lastS = records.back().ReferenceS();
        const double ageS = std::abs(gpsS - nearest.ReferenceS());
        const bool isFirst = state.satellites == 0;
        state.firstS = isFirst ? firstS : std::min(state.firstS, firstS);
        state.lastS = isFirst ? lastS : std::max(state.lastS, lastS);
        state.ageS = isFirst ? ageS : std::min(state.ageS, ageS);
        state.healthy += nearest.IsHealthy() ? 1 : 0;
        state.records += static_cast<int>(records.size());
        ++state.satellites;
    }
    state.isStale = state.ageS > StaleAfterS(system);
    return state;
}

} // namespace fieldcore
