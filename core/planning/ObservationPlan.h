#pragma once

#include "core/planning/PlanGrid.h"
#include "core/planning/PlanPeriod.h"
#include "core/planning/SkyPlan.h"
#include "core/planning/SurveyPlanCalc.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace fieldcore {

/// A graph of the plan.
enum class PlanGraph : std::uint8_t
{
    Count = 0,
    SkyPlot = 1,
    Azimuth = 2,
    Elevation = 3,
    Pdop = 4,
    Gdop = 5,
    Tdop = 6,
};

/// Epochs of a plan: its samples and the one behind them.
inline constexpr std::size_t kPlanEpochs = PlanPeriod::kMostSamples + 1;

/// What one site sees over the epochs of a plan.
struct SiteView
{
    std::array<std::uint64_t, kPlanEpochs> visible{}; ///< bit k: the satellite with PRN k + 1
    std::array<std::uint8_t, kPlanEpochs> count{};
    std::array<DopValues, kPlanEpochs> dop{};
};

/// The plan of a day: what a screen draws and a terminal prints, from one almanac for one site and
/// period. Set what Calc() and Period() hold, Compute(), and read the series. They then stay as
/// they are until the next Compute(), which allocates nothing. One thread at a time.
class ObservationPlan
{
public:
    ObservationPlan();

    /// Almanac, use flags, curtain, mask and observer of the plan.
    [[nodiscard]] CSurveyPlanCalc& Calc() { return m_calc; }
    [[nodiscard]] const CSurveyPlanCalc& Calc() const { return m_calc; }
    [[nodiscard]] PlanPeriod& Period() { return m_period; }
    [[nodiscard]] const PlanPeriod& Period() const { return m_period; }
    /// @param maskDeg  elevation mask, whole degrees
    void SetElMaskDeg(int maskDeg);

    /// What is known of satellites beside the almanac of Calc().
    void SetConstellations(Constellations known) { m_known = std::move(known); }
    [[nodiscard]] const Constellations& GetConstellations() const { return m_known; }
    /// The systems that count together; at first GPS alone, which is planned from the almanac of
    /// Calc() and nothing else. With others GPS satellites have their messages, too, and the hours
    /// are turned into GPS time with its leap seconds.
    /// @param systems         none: GPS
    /// @param clockPerSystem  whether the dilutions have a clock for each system
    void SetSystems(SystemSet systems, bool clockPerSystem = false);
    [[nodiscard]] SystemSet Systems() const { return m_systems; }
    [[nodiscard]] bool HasClockPerSystem() const { return m_clockPerSystem; }
    /// Whether the plan is the one of GPS alone.
    [[nodiscard]] bool IsGpsAlone() const { return m_systems == SystemSetOf(GnssSystem::Gps); }
    /// Whether the almanac of Calc() is among what it is made from.
    [[nodiscard]] bool UsesAlmanac() const
    {
        return IsGpsAlone() || (m_systems.test(0) && TakesAlmanac(m_known, m_calc));
    }
    /// What is known of one of Systems() when Period() starts.
    [[nodiscard]] SystemState StateOf(GnssSystem system) const;

    /// Computes all graphs at once: one costs what seven cost.
    void Compute();
    /// The same where nothing but mask, curtain and observer is another since the last Compute():
    /// quick enough to follow a finger.
    void ComputeView();

    /// With more than GPS alone: where the Satellites() of the last Compute() are at a time of the
    /// period, earth-fixed, metres; not a number where that is not known. It stays until another
    /// time is asked for.
    [[nodiscard]] std::span<const Ecef> PositionsAt(std::chrono::seconds sinceStart) const;

    /// Period() as it was at the last Compute(): the one of the series.
    [[nodiscard]] const PlanPeriod& Computed() const { return m_computed; }
    /// Samples of every series; 0 before the first Compute().
    [[nodiscard]] int Division() const { return m_division; }

    /// Of the tracks; of GPS alone all 32, in the order of their PRN.
    [[nodiscard]] std::span<const SatelliteId> Satellites() const { return m_satellites; }

    // Series; @p k is 0 to Division() - 1.

    /// Usable satellites at start + k intervals.
    [[nodiscard]] double CountAt(int k) const;
    /// Dilution at start + (k + 1) intervals: this series runs one step behind that of the count,
    /// on purpose.
    /// @return 16 with fewer than four satellites; 0 if @p graph is none of the three
    [[nodiscard]] double DopAt(PlanGraph graph, int k) const;

    /// A satellite's way from start + k intervals to the next.
    struct TrackStep
    {
        SkyDirection from; ///< azimuth 0 to 2 pi
        SkyDirection to;
    };
    /// @param index  in Satellites()
    /// @return nothing unless the satellite is usable at both ends
    [[nodiscard]] std::optional<TrackStep> TrackAt(int index, int k) const;

    /// Where a satellite stands at start + k intervals.
    /// @param k  0 to Division(), the end of the period
    /// @return nothing unless it is usable then
    [[nodiscard]] std::optional<SkyDirection> DirectionAt(int index, int k) const;

    /// All that the site sees, by epoch: Division() + 1 of them, an interval apart from the start
    /// on.
    [[nodiscard]] const SiteView& View() const { return m_results->view; }

    /// GPS alone: the same period with the same almanac, mask and curtain for many sites: counts
    /// and dilutions, without directions. The series above stay as they are.
    /// @param views    one for each site; sites without one are left out
    /// @param threads  how many share the work, the calling one among them; if no more can be had,
    /// fewer do it
    void ComputeSites(std::span<const Observer> sites, std::span<SiteView> views,
                      unsigned threads = 1);

private:
    struct Results
    {
        PlanGrid grid{kMaxPrn, kPlanEpochs}; // a slot for each PRN
        SiteView view;
        SkyDirections directions{kMaxPrn, kPlanEpochs};
    };
    [[nodiscard]] bool IsSample(int k) const { return k >= 0 && k < m_division; }
    void ComputeGrid();
    void PlaceSky();

    CSurveyPlanCalc m_calc;
    Constellations m_known;
    SystemSet m_systems = SystemSetOf(GnssSystem::Gps);
    bool m_clockPerSystem = false;
    SkyPlan m_sky;                // with more than GPS
    bool m_isSkyComputed = false; // the series are m_sky's
    std::vector<SatelliteId> m_satellites;
    PlanPeriod m_period;
    PlanPeriod m_computed;
    int m_division = 0;
    std::unique_ptr<Results> m_results; // too much for a stack
};

// Inline: screens ask for thousands of steps, in less time than the plan itself takes.

inline std::optional<SkyDirection> ObservationPlan::DirectionAt(int index, int k) const
{
    if (m_division == 0 || k < 0 || k > m_division || index < 0 ||
        index >= static_cast<int>(m_satellites.size())) {
        return std::nullopt;
    }
    const auto epoch = static_cast<std::size_t>(k);
    const auto slot = static_cast<std::size_t>(index);
    if (m_isSkyComputed) {
        return m_sky.DirectionAt(slot, epoch);
    }
    if ((m_results->view.visible[epoch] >> slot & 1U) == 0) {
        return std::nullopt;
    }
    return m_results->directions.At(slot, epoch);
}

inline std::optional<ObservationPlan::TrackStep> ObservationPlan::TrackAt(int index, int k) const
{
    if (!IsSample(k)) {
        return std::nullopt;
    }
    const std::optional<SkyDirection> from = DirectionAt(index, k);
    const std::optional<SkyDirection> to = DirectionAt(index, k + 1);
    return from && to ? std::optional(TrackStep{*from, *to}) : std::nullopt;
}

/// A satellite above the horizon.
struct SkySatellite
{
    SatelliteId satellite;
    SkyDirection direction; ///< azimuth 0 to 2 pi, elevation 0 or more
    bool isVisible = false; ///< usable: not below the mask nor behind the curtain
};

/// All healthy satellites of the plan's systems above the horizon of its site at one time of its
/// period, those that mask or curtain hide among them, in order.
/// @param plan        its Calc() with the period of the last Compute()
/// @param sinceStart  of the period; may lie outside of it
[[nodiscard]] std::vector<SkySatellite> SkyAt(const ObservationPlan& plan,
                                              std::chrono::seconds sinceStart);

} // namespace fieldcore
