#pragma once

#include "core/planning/PlanLanes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore {

/// Where the satellites of a grid stand in the sky of one site, slot by slot. Memory is taken once.
class SkyDirections
{
public:
    /// For grids of at most as many satellites and epochs.
    SkyDirections(std::size_t satellites, std::size_t epochs);

    /// Means nothing for a satellite that is not visible.
    /// @return azimuth 0 to 2 pi
    [[nodiscard]] SkyDirection At(std::size_t slot, std::size_t epoch) const
    {
        const DirectionBlock& block = m_blocks[slot * m_stride + epoch / kBlockEpochs];
        return {block.azimuthRad[epoch % kBlockEpochs], block.elevationRad[epoch % kBlockEpochs]};
    }

private:
    friend class PlanGrid;
    std::size_t m_stride; // blocks from slot to slot
    std::vector<DirectionBlock> m_blocks;
};

/// Where the view of a site goes. All of it is written for each epoch of the grid.
struct GridView
{
    std::span<std::uint64_t> visible;    ///< Words() for each epoch; bit s of word w: slot 64 w + s
    std::span<std::uint8_t> count;       ///< for each epoch
    std::span<DopValues> dop;            ///< for each epoch; kNoDop with fewer than four satellites
    SkyDirections* directions = nullptr; ///< of the grid's size; null: not asked for
};

/// Satellite positions over the epochs of a plan. They do not depend on the site: computed once,
/// they serve every graph and any number of sites. Memory is taken when it is made, and never
/// again. Once positions are in, View() may run on several threads.
class PlanGrid
{
public:
    /// @param satellites  slots, 255 at most
    /// @param epochs      at most as many in one Begin()
    PlanGrid(std::size_t satellites, std::size_t epochs);

    /// Starts anew: no satellite has a place.
    /// @param epochs  beyond what the grid has room for, they are left out
    void Begin(std::span<const GpsEpoch> epochs);
    /// The satellite of @p slot goes on @p orbit. Where it is no orbit, it has no place.
    void Set(std::size_t slot, const AlmanacOrbit& orbit);
    /// The satellite of @p slot stands where @p positions say, epoch by epoch, as many as the grid
    /// has. What is not a number is no place.
    void Set(std::size_t slot, std::span<const Ecef> positions);

    /// @param frame  of the site
    void View(const LocalFrame& frame, const SkyLimits& limits, const GridView& view) const;
    /// The same for the epochs of one block, from kBlockEpochs * @p block on.
    /// @param view  begins with that epoch, but for its directions
    void ViewBlock(const LocalFrame& frame, const SkyLimits& limits, std::size_t block,
                   const GridView& view) const;

    [[nodiscard]] std::size_t SlotCount() const { return m_elements.size(); }
    [[nodiscard]] std::size_t EpochCount() const { return m_epochCount; }
    /// Of 64 slots each.
    [[nodiscard]] std::size_t Words() const { return m_used.size(); }

private:
    class ExactForm;

    [[nodiscard]] std::span<PositionBlock> Row(std::size_t slot);
    [[nodiscard]] std::optional<Ecef> ExactPosition(std::size_t slot, std::size_t epoch) const;
    [[nodiscard]] DopValues ExactDop(const LocalFrame& frame, std::size_t epoch,
                                     std::span<const std::uint64_t> visible) const;

    std::size_t m_stride; // blocks from slot to slot
    std::size_t m_epochCount = 0;
    std::vector<double> m_counts; // AlmanacOrbit::CountOf() them; whole blocks
    double m_firstCount = 0.0;
    double m_lastCount = 0.0;
    std::vector<PositionBlock> m_positions;
    std::vector<std::uint64_t> m_used;
    std::vector<std::optional<KeplerElements>> m_elements; // none: positions were given
};

} // namespace fieldcore
