#include "core/planning/ObservationPlan.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/CalendarTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <numbers>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace fieldcore {

namespace {

GridView Into(SiteView& view, SkyDirections* directions)
{
    return {view.visible, view.count, view.dop, directions};
}

std::vector<SatelliteId> AllOfGps()
{
    std::vector<SatelliteId> satellites;
    for (std::uint8_t prn = 1; prn <= kMaxPrn; ++prn) {
        satellites.push_back({GnssSystem::Gps, prn});
    }
    return satellites;
}

std::vector<SkySatellite> SkyOfSystems(const ObservationPlan& plan, std::chrono::seconds sinceStart)
{
    const CSurveyPlanCalc& calc = plan.Calc();
    const std::span<const Ecef> positions = plan.PositionsAt(sinceStart);
    std::vector<SkySatellite> sky;
    for (std::size_t k = 0; k < positions.size(); ++k) {
        const EastNorthUp enu = calc.GetFrame().ToLocal(positions[k]);
        SkyDirection direction = enu.ToDirection(enu.Range());
        if (direction.elevationRad >= 0.0) { // which what is not known is not
            direction.azimuthRad = NormalisedAzimuth(direction.azimuthRad);
            sky.push_back({plan.Satellites()[k], direction, calc.GetLimits().Pass(direction)});
        }
    }
    return sky;
}

} // namespace

ObservationPlan::ObservationPlan()
    : m_satellites(AllOfGps()), m_results(std::make_unique<Results>())
{}

void ObservationPlan::SetSystems(SystemSet systems, bool clockPerSystem)
{
    m_systems = systems.none() ? SystemSetOf(GnssSystem::Gps) : systems;
    m_clockPerSystem = clockPerSystem;
}

SystemState ObservationPlan::StateOf(GnssSystem system) const
{
    const double startS = GpsSecondsOfUtc(m_period.UtcAfter(0));
    if (system != GnssSystem::Gps) {
        return m_known.StateOf(system, startS);
    }
    // Of GPS alone: screens ask each time they draw.
    Constellations gps;
    gps.Add(m_known.RecordsOf(system));
    return WithAlmanac(std::move(gps), m_calc, startS).StateOf(system, startS);
}

void ObservationPlan::SetElMaskDeg(int maskDeg)
{
    m_calc.SetElMask(maskDeg / 180.0 * std::numbers::pi);
}

void ObservationPlan::ComputeGrid()
{
    const CTimeSpan interval(std::chrono::seconds(m_period.Interval()).count());
    const std::size_t count = m_period.Division() + std::size_t{1};
    std::array<GpsEpoch, kPlanEpochs> epochs;
    CGPSTime time = m_period.Start();
    for (std::size_t k = 0; k < count; ++k) {
        epochs[k] = ToEpoch(time);
        time += interval;
    }
    PlanGrid& grid = m_results->grid;
    grid.Begin(std::span(epochs).first(count));
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const CAlmanacSatellite& satellite = m_calc.GetSatellite(index);
        if (satellite.IsValid() != 0 && satellite.IsHealthy() != 0) {
            grid.Set(static_cast<std::size_t>(index), satellite.GetOrbit());
        }
    }
}

void ObservationPlan::PlaceSky()
{
    std::vector<double> epochs;
    for (int k = 0; k <= m_division; ++k) {
        epochs.push_back(GpsSecondsOfUtc(m_period.UtcAfter(k)));
    }
    Constellations known = WithAlmanac(m_known, m_calc, epochs.front());
    m_satellites = PlannedSatellites(known, m_systems, m_calc);
    m_sky.Place(std::move(known), m_satellites, epochs);
}

std::span<const Ecef> ObservationPlan::PositionsAt(std::chrono::seconds sinceStart) const
{
    return m_sky.PositionsAt(GpsSecondsOfUtc(m_computed.UtcAfter(0) + sinceStart));
}

void ObservationPlan::ComputeView()
{
    if (!m_isSkyComputed) {
        return Compute();
    }
    m_sky.View(m_calc.GetFrame(), m_calc.GetLimits(), m_clockPerSystem, m_results->view.count,
               m_results->view.dop);
}

void ObservationPlan::Compute()
{
    m_computed = m_period;
    m_division = m_period.Division();
    m_isSkyComputed = !IsGpsAlone();
    if (m_isSkyComputed) {
        PlaceSky();
        return ComputeView();
    }
    if (m_satellites.size() != kMaxPrn || m_satellites.back().system != GnssSystem::Gps) {
        m_satellites = AllOfGps();
    }
    ComputeGrid();
    m_results->grid.View(m_calc.GetFrame(), m_calc.GetLimits(),
                         Into(m_results->view, &m_results->directions));
}

double ObservationPlan::CountAt(int k) const
{
    return IsSample(k) ? m_results->view.count[static_cast<std::size_t>(k)] : 0.0;
}

double ObservationPlan::DopAt(PlanGraph graph, int k) const
{
    if (!IsSample(k)) {
        return 0.0;
    }
    const DopValues& dop = m_results->view.dop[static_cast<std::size_t>(k) + 1];
    switch (graph) {
    case PlanGraph::Pdop:
        return dop.pdop;
    case PlanGraph::Gdop:
        return dop.gdop;
    case PlanGraph::Tdop:
        return dop.tdop;
    default:
        return 0.0;
    }
}

void ObservationPlan::ComputeSites(std::span<const Observer> sites, std::span<SiteView> views,
                                   unsigned threads)
{
    const PlanGrid& grid = m_results->grid;
    ComputeGrid();
    const std::size_t count = std::min(sites.size(), views.size());
    const auto share = [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            grid.View(LocalFrame(sites[i]), m_calc.GetLimits(), Into(views[i], nullptr));
        }
    };
    const std::size_t parts = std::clamp<std::size_t>(threads, 1, std::max<std::size_t>(count, 1));
    std::vector<std::jthread> helpers;
    helpers.reserve(parts - 1);
    std::size_t first = 0;
    for (std::size_t part = 1; part < parts; ++part) {
        const std::size_t last = count * part / parts;
        try {
            helpers.emplace_back(share, first, last);
        } catch (const std::system_error&) {
            break; // no more threads: the rest is ours
        }
        first = last;
    }
    share(first, count);
}

std::vector<SkySatellite> SkyAt(const ObservationPlan& plan, std::chrono::seconds sinceStart)
{
    if (!plan.IsGpsAlone()) {
        return SkyOfSystems(plan, sinceStart);
    }
    const CSurveyPlanCalc& calc = plan.Calc();
    CGPSTime time = plan.Computed().Start();
    time += CTimeSpan(sinceStart.count());
    std::vector<SkySatellite> sky;
    for (int index = 0; index < kMaxPrn; ++index) {
        if (calc.IsValid(index) == 0) {
            continue;
        }
        CAlmanacSatellite satellite = calc.GetSatellite(index);
        satellite.SetObserver(calc.GetFrame());
        satellite.SetTime(ToEpoch(time));
        if (satellite.Compute()) {
            const SkyDirection direction{satellite.GetAzimuth(), satellite.GetElevation()};
            const bool isVisible = satellite.TestVisibility(calc.GetLimits());
            sky.push_back(
                {plan.Satellites()[static_cast<std::size_t>(index)], direction, isVisible});
        }
    }
    return sky;
}

} // namespace fieldcore
