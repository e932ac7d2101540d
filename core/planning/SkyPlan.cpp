#include "core/planning/SkyPlan.h"

#include "core/planning/SurveyPlanCalc.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kWeekCycle = 1024;

/// Directions of the satellites that share a clock.
struct ClockSums
{
    double n = 0.0;
    Ecef sum;
};

} // namespace

std::optional<NavigationRecord> MessageOf(const AlmanacRecord& almanac, double gpsS)
{
    const std::optional<SatelliteId> satellite = SatelliteId::FromPrn(almanac.prn);
    if (!satellite || satellite->system == GnssSystem::Sbas) {
        return std::nullopt;
    }
    const KeplerElements elements(almanac);
    const double cycles =
        elements.week >= kWeekCycle
            ? 0.0
            : std::max(0.0, std::round((gpsS / kWeekS - elements.week) / kWeekCycle));
    KeplerOrbit orbit = OrbitOf(elements);
    orbit.referenceS = (elements.week + cycles * kWeekCycle) * kWeekS + elements.toaS;
    NavigationRecord record;
    record.satellite = *satellite;
    record.systemS = orbit.referenceS;
    record.health = almanac.health;
    record.orbit = orbit;
    return record;
}

bool TakesAlmanac(const Constellations& known, const CSurveyPlanCalc& calc)
{
    return calc.Source().origin != AlmanacOrigin::Nominal ||
           known.Satellites(SystemSetOf(GnssSystem::Gps)).empty();
}

Constellations WithAlmanac(Constellations known, const CSurveyPlanCalc& calc, double gpsS)
{
    if (!TakesAlmanac(known, calc)) {
        return known;
    }
    std::vector<NavigationRecord> records;
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const CAlmanacSatellite& satellite = calc.GetSatellite(index);
        if (const auto record = MessageOf(DecodeAlmanac(satellite.GetRecord()), gpsS)) {
            records.push_back(*record); // none where the almanac has none: its PRN is 0
        }
    }
    known.Add(records);
    return known;
}

std::vector<SatelliteId> PlannedSatellites(const Constellations& known, SystemSet systems,
                                           const CSurveyPlanCalc& calc)
{
    std::vector<SatelliteId> satellites = known.Satellites(systems);
    std::erase_if(satellites, [&calc](SatelliteId satellite) {
        return satellite.system == GnssSystem::Gps &&
               calc.GetSatellite(satellite.number - 1).GetUse() == 0;
    });
    return satellites;
}

DopValues DilutionOf(std::span<const Ecef> directions, std::span<const std::size_t> clocks) noexcept
{
    std::array<ClockSums, kGnssSystems> sums;
    double xx = 0.0, xy = 0.0, xz = 0.0, yy = 0.0, yz = 0.0, zz = 0.0;
    for (std::size_t i = 0; i < directions.size(); ++i) {
        const Ecef& u = directions[i];
        ClockSums& clock = sums[clocks[i]];
        clock.n += 1.0;
        clock.sum = {clock.sum.x + u.x, clock.sum.y + u.y, clock.sum.z + u.z};
        xx += u.x * u.x;
        xy += u.x * u.y;
        xz += u.x * u.z;
        yy += u.y * u.y;
        yz += u.y * u.z;
        zz += u.z * u.z;
    }
    // The clocks eliminated: what the directions of each scatter about their mean.
    std::size_t unknowns = 3;
    for (const auto& [n, s] : sums) {
        if (n > 0.0) {
            ++unknowns;
            xx -= s.x * s.x / n;
            xy -= s.x * s.y / n;
            xz -= s.x * s.z / n;
            yy -= s.y * s.y / n;
            yz -= s.y * s.z / n;
            zz -= s.z * s.z / n;
        }
    }
    if (directions.size() < kSatellitesForDop) {
        return kNoDop;
    }
    // Its adjugate.
    const double axx = yy * zz - yz * yz;
    const double axy = xz * yz - xy * zz;
    const double axz = xy * yz - xz * yy;
    const double ayy = xx * zz - xz * xz;
    const double ayz = xy * xz - xx * yz;
    const double azz = xx * yy - xy * xy;
    const double determinant = xx * axx + xy * axy + xz * axz;
    constexpr double kNoSolution = 1e-12; // of unit vectors: rounding of the sums
    if (directions.size() < unknowns || !(determinant > kNoSolution)) {
        constexpr double kEndless = std::numeric_limits<double>::infinity();
        return {kEndless, kEndless, kEndless};
    }
    const double position = (axx + ayy + azz) / determinant;
    double time = 0.0;
    for (const auto& [n, s] : sums) {
        if (n > 0.0) {
            const double spread = axx * s.x * s.x + ayy * s.y * s.y + azz * s.z * s.z +
                                  2.0 * (axy * s.x * s.y + axz * s.x * s.z + ayz * s.y * s.z);
            time += 1.0 / n + spread / (determinant * n * n);
        }
    }
    return {std::sqrt(position), std::sqrt(position + time), std::sqrt(time)};
}

void SkyPlan::Place(Constellations known, std::vector<SatelliteId> satellites,
                    std::span<const double> epochs)
{
    m_known = std::move(known);
    m_satellites = std::move(satellites);
    if (m_grid.SlotCount() != m_satellites.size() || m_positions.size() != epochs.size()) {
        m_grid = PlanGrid(m_satellites.size(), epochs.size());
        m_directions = SkyDirections(m_satellites.size(), epochs.size());
        m_positions.resize(epochs.size());
        m_visible.resize(m_grid.Words() * epochs.size());
    }
    m_grid.Begin(std::vector<GpsEpoch>(epochs.size())); // which only orbits of an almanac ask for
    m_instantS.reset();
    m_motions.clear();
    for (std::size_t slot = 0; slot < m_grid.SlotCount(); ++slot) {
        m_motions.emplace_back(m_known, m_satellites[slot]).At(epochs, m_positions);
        m_grid.Set(slot, m_positions);
    }
}

void SkyPlan::View(const LocalFrame& frame, const SkyLimits& limits, bool clockPerSystem,
                   std::span<std::uint8_t> counts, std::span<DopValues> dops)
{
    m_grid.View(frame, limits, {m_visible, counts, dops, &m_directions});
    for (std::size_t k = 0; clockPerSystem && k < m_positions.size(); ++k) {
        std::vector<Ecef> directions;
        std::vector<std::size_t> clocks;
        for (std::size_t slot = 0; slot < m_satellites.size(); ++slot) {
            if (const std::optional<SkyDirection> to = DirectionAt(slot, k)) {
                const double horizontal = std::cos(to->elevationRad);
                directions.push_back({horizontal * std::sin(to->azimuthRad),
                                      horizontal * std::cos(to->azimuthRad),
                                      std::sin(to->elevationRad)});
                clocks.push_back(static_cast<std::size_t>(m_satellites[slot].system));
            }
        }
        dops[k] = DilutionOf(directions, clocks);
    }
}

std::optional<SkyDirection> SkyPlan::DirectionAt(std::size_t satellite, std::size_t epoch) const
{
    if (satellite >= m_grid.SlotCount() || epoch >= m_positions.size() ||
        (m_visible[epoch * m_grid.Words() + satellite / 64] >> satellite % 64 & 1U) == 0) {
        return std::nullopt;
    }
    return m_directions.At(satellite, epoch);
}

std::span<const Ecef> SkyPlan::PositionsAt(double gpsS) const
{
    if (m_instantS != gpsS) {
        m_places.clear();
        for (SatelliteMotion& motion : m_motions) {
            m_places.push_back(motion.At(gpsS));
        }
        m_instantS = gpsS;
    }
    return m_places;
}

} // namespace fieldcore
