#pragma once

#include "core/planning/PlanPeriod.h"
#include "core/planning/SurveyPlanCalc.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace fieldcore {

/// Epochs of a plan: its samples and the one behind them.
inline constexpr std::size_t kPlanEpochs = PlanPeriod::kMostSamples + 1;

/// What one site sees over the epochs of a plan.
struct SiteView
{
    std::array<std::uint32_t, kPlanEpochs> visible{}; ///< bit k: the satellite with PRN k + 1
    std::array<std::uint8_t, kPlanEpochs> count{};
    std::array<DopValues, kPlanEpochs> dop{};
};

/// Where the visible satellites of a view stand: by epoch, then PRN index. Azimuths are 0 to 2 pi;
/// entries of satellites that are not visible mean nothing.
using SkyDirections = std::array<std::array<SkyDirection, kMaxPrn>, kPlanEpochs>;

/// Satellite positions over the epochs of a plan. They do not depend on the site: computed once,
/// they serve every graph and any number of sites. Nothing allocates. After Compute(), View() may
/// run on several threads.
class PlanGrid
{
public:
    /// @param calc    its valid, healthy satellites are taken
    /// @param epochs  kPlanEpochs at most; more are left out
    void Compute(const CSurveyPlanCalc& calc, std::span<const GpsEpoch> epochs);

    /// @param frame       of the site
    /// @param directions  null: not asked for
    void View(const LocalFrame& frame, const SkyLimits& limits, SiteView& view,
              SkyDirections* directions) const;

    [[nodiscard]] std::size_t EpochCount() const { return m_epochCount; }

private:
    using Row = std::array<double, kMaxPrn>; // one value for each slot

    /// All satellites of one epoch as the site sees them.
    struct LocalRows
    {
        Row east, north, up, range;
    };
    void ToLocal(const LocalFrame& frame, std::size_t epoch, LocalRows& local) const;
    [[nodiscard]] bool PassesReference(const LocalFrame& frame, const SkyLimits& limits,
                                       std::size_t epoch, std::size_t slot,
                                       SkyDirection& direction) const;
    [[nodiscard]] DopValues ReferenceDopOf(const LocalFrame& frame, std::size_t epoch,
                                           std::uint32_t visible) const;

    std::size_t m_epochCount = 0;
    std::size_t m_slotCount = 0;
    std::array<GpsEpoch, kPlanEpochs> m_epochs{};
    // Satellites stand side by side, in the order of their PRN, those without a place left out.
    std::array<std::uint8_t, kMaxPrn> m_prnIndex{};
    std::array<KeplerElements, kMaxPrn> m_elements{};
    std::array<Row, kPlanEpochs> m_x{}, m_y{}, m_z{};
    std::array<std::uint32_t, kPlanEpochs> m_known{}; // bit: slot has a position
};

} // namespace fieldcore
