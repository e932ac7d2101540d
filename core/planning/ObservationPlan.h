#pragma once

#include "core/planning/PlanGrid.h"
#include "core/planning/PlanPeriod.h"
#include "core/planning/SurveyPlanCalc.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

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

    /// Computes all graphs at once: one costs what seven cost.
    void Compute();

    /// Samples of every series: Period().Division() at the last Compute().
    [[nodiscard]] int Division() const { return m_division; }

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
    /// @param prnIndex  0 to 31
    /// @return nothing unless the satellite is usable at both ends
    [[nodiscard]] std::optional<TrackStep> TrackAt(int prnIndex, int k) const;

    /// All that the site sees, by epoch: Division() + 1 of them, an interval apart from the start
    /// on.
    [[nodiscard]] const SiteView& View() const { return m_results->view; }

    /// The same period with the same almanac, mask and curtain for many sites: counts and
    /// dilutions, without directions. The series above stay as they are.
    /// @param views    one for each site; sites without one are left out
    /// @param threads  how many share the work, the calling one among them; if no more can be had,
    /// fewer do it
    void ComputeSites(std::span<const Observer> sites, std::span<SiteView> views,
                      unsigned threads = 1);

private:
    struct Results
    {
        PlanGrid grid;
        SiteView view;
        SkyDirections directions{};
    };
    [[nodiscard]] bool IsSample(int k) const { return k >= 0 && k < m_division; }
    void ComputeGrid();

    CSurveyPlanCalc m_calc;
    PlanPeriod m_period;
    int m_division = 0;
    std::unique_ptr<Results> m_results; // 90 kB: too much for a stack
};

} // namespace fieldcore
