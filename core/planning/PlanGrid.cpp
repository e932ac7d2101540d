#include "core/planning/PlanGrid.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>

namespace fieldcore {

namespace {

constexpr std::size_t kWordBits = 64;
constexpr std::size_t kMostSlots = 255;

std::size_t BlocksFor(std::size_t epochs)
{
    return (epochs + kBlockEpochs - 1) / kBlockEpochs;
}

void SetPlace(PositionBlock& block, std::size_t at, const Ecef& place)
{
    block.x[at] = place.x;
    block.y[at] = place.y;
    block.z[at] = place.z;
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr Ecef kNowhere{kNaN, kNaN, kNaN};

} // namespace

SkyDirections::SkyDirections(std::size_t satellites, std::size_t epochs)
    : m_stride(BlocksFor(epochs)), m_blocks(satellites * m_stride)
{}

/// Positions and directions by the scalar way decide where rounding could.
class PlanGrid::ExactForm final : public LimitJudge
{
public:
    ExactForm(const PlanGrid& grid, const LocalFrame& frame, const SkyLimits& limits,
              std::size_t firstEpoch)
        : m_grid(grid), m_frame(frame), m_limits(limits), m_firstEpoch(firstEpoch)
    {}

    bool Passes(std::size_t slot, std::size_t epochOfBlock, SkyDirection& direction) const override
    {
        const std::size_t epoch = m_firstEpoch + epochOfBlock;
        const std::optional<Ecef> position =
            epoch < m_grid.m_epochCount ? m_grid.ExactPosition(slot, epoch) : std::nullopt;
        if (!position) {
            return false;
        }
        direction = ReferenceDirection(m_frame.GetObserver(), *position).value_or(SkyDirection{});
        direction.azimuthRad = NormalisedAzimuth(direction.azimuthRad);
        return m_limits.Pass(direction);
    }

private:
    const PlanGrid& m_grid;
    const LocalFrame& m_frame;
    const SkyLimits& m_limits;
    const std::size_t m_firstEpoch;
};

PlanGrid::PlanGrid(std::size_t satellites, std::size_t epochs)
    : m_stride(BlocksFor(epochs)), m_counts(m_stride * kBlockEpochs),
      m_positions(std::min(satellites, kMostSlots) * m_stride),
      m_used((std::min(satellites, kMostSlots) + kWordBits - 1) / kWordBits),
      m_elements(std::min(satellites, kMostSlots))
{}

void PlanGrid::Begin(std::span<const GpsEpoch> epochs)
{
    m_epochCount = std::min(epochs.size(), m_counts.size());
    std::fill(m_used.begin(), m_used.end(), 0);
    if (m_epochCount == 0) {
        return;
    }
    for (std::size_t k = 0; k < m_counts.size(); ++k) {
        m_counts[k] = AlmanacOrbit::CountOf(epochs[std::min(k, m_epochCount - 1)]);
    }
    const auto [first, last] = std::minmax_element(m_counts.begin(), m_counts.end());
    m_firstCount = *first;
    m_lastCount = *last;
}

std::span<PositionBlock> PlanGrid::Row(std::size_t slot)
{
    assert(slot < SlotCount());
    m_used[slot / kWordBits] |= std::uint64_t{1} << slot % kWordBits;
    return std::span(m_positions).subspan(slot * m_stride, BlocksFor(m_epochCount));
}

void PlanGrid::Set(std::size_t slot, const AlmanacOrbit& orbit)
{
    const std::span<PositionBlock> row = Row(slot);
    m_elements[slot] = orbit.Elements();
    if (orbit.IsFast(m_firstCount) && orbit.IsFast(m_lastCount)) {
        ComputePositions(orbit.Constants(), m_epochCount, m_counts.data(), row.data());
        return;
    }
    for (std::size_t k = 0; k < row.size() * kBlockEpochs; ++k) {
        const std::optional<Ecef> place = k < m_epochCount ? ExactPosition(slot, k) : std::nullopt;
        SetPlace(row[k / kBlockEpochs], k % kBlockEpochs, place.value_or(kNowhere));
    }
}

void PlanGrid::Set(std::size_t slot, std::span<const Ecef> positions)
{
    assert(positions.size() >= m_epochCount);
    const std::span<PositionBlock> row = Row(slot);
    m_elements[slot].reset();
    for (std::size_t k = 0; k < row.size() * kBlockEpochs; ++k) {
        SetPlace(row[k / kBlockEpochs], k % kBlockEpochs,
                 k < m_epochCount ? positions[k] : kNowhere);
    }
}

std::optional<Ecef> PlanGrid::ExactPosition(std::size_t slot, std::size_t epoch) const
{
    if (m_elements[slot]) {
        return PositionOf(OrbitOf(*m_elements[slot]), m_counts[epoch]);
    }
    const PositionBlock& block = m_positions[slot * m_stride + epoch / kBlockEpochs];
    const std::size_t at = epoch % kBlockEpochs;
    return Ecef{block.x[at], block.y[at], block.z[at]};
}

DopValues PlanGrid::ExactDop(const LocalFrame& frame, std::size_t epoch,
                             std::span<const std::uint64_t> visible) const
{
    std::array<Ecef, kMostSlots> satellites;
    std::size_t count = 0;
    for (std::size_t slot = 0; slot < SlotCount(); ++slot) {
        if ((visible[slot / kWordBits] >> slot % kWordBits & 1U) != 0) {
            satellites[count++] = ExactPosition(slot, epoch).value_or(Ecef{});
        }
    }
    return ReferenceDop(frame.Origin(), std::span(satellites).first(count));
}

void PlanGrid::View(const LocalFrame& frame, const SkyLimits& limits, const GridView& view) const
{
    for (std::size_t first = 0; first < m_epochCount; first += kBlockEpochs) {
        ViewBlock(frame, limits, first / kBlockEpochs,
                  {view.visible.subspan(first * Words()), view.count.subspan(first),
                   view.dop.subspan(first), view.directions});
    }
}

void PlanGrid::ViewBlock(const LocalFrame& frame, const SkyLimits& limits, std::size_t block,
                         const GridView& view) const
{
    const std::size_t words = Words();
    const std::size_t first = block * kBlockEpochs;
    const std::size_t epochs = std::min(kBlockEpochs, m_epochCount - first);
    assert(first < m_epochCount && view.visible.size() >= epochs * words &&
           view.count.size() >= epochs && view.dop.size() >= epochs);
    const ExactForm exact(*this, frame, limits, first);
    SiteBlock site;
    std::array<std::uint64_t, kBlockEpochs*(kMostSlots / kWordBits + 1)> visible;
    ViewSky({m_positions.empty() ? nullptr : &m_positions[block], m_stride, epochs, m_used}, frame,
            limits, exact, site, visible.data(),
            view.directions != nullptr ? &view.directions->m_blocks[block] : nullptr);
    std::copy_n(visible.begin(), epochs * words, view.visible.begin());
    for (std::size_t at = 0; at < epochs; ++at) {
        const auto count = static_cast<std::uint8_t>(site.count[at]);
        view.count[at] = count;
        if (count < kSatellitesForDop) {
            view.dop[at] = kNoDop;
        } else if (site.weak[at]) {
            view.dop[at] =
                ExactDop(frame, first + at, std::span(visible).subspan(at * words, words));
        } else {
            view.dop[at] = {site.pdop[at], site.gdop[at], site.tdop[at]};
        }
    }
}

} // namespace fieldcore
