#pragma once

#include "core/planning/AlmanacOrbit.h"
#include "core/planning/Dop.h"
#include "core/planning/LocalFrame.h"
#include "core/planning/SkyLimits.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace fieldcore {

/// Epochs stand side by side in blocks: as many as the widest processor takes at once.
inline constexpr std::size_t kBlockEpochs = 8;

/// Earth-fixed positions of one satellite at the epochs of a block, metres. What is not a number
/// is no place.
struct alignas(64) PositionBlock
{
    double x[kBlockEpochs];
    double y[kBlockEpochs];
    double z[kBlockEpochs];
};

/// Where one satellite stands at the epochs of a block. Where it is not visible: undefined.
struct alignas(64) DirectionBlock
{
    double azimuthRad[kBlockEpochs]; ///< 0 to 2 pi
    double elevationRad[kBlockEpochs];
};

/// What a site sees at the epochs of a block.
struct alignas(64) SiteBlock
{
    double count[kBlockEpochs];
    double pdop[kBlockEpochs]; ///< undefined with fewer than four satellites, or where weak
    double gdop[kBlockEpochs];
    double tdop[kBlockEpochs];
    bool weak[kBlockEpochs]; ///< the geometry is so weak that rounding shows: ask ReferenceDop()
};

/// Decides in the place of the vectors where these come too close to a limit.
class LimitJudge
{
public:
    virtual ~LimitJudge() = default;

    /// @param direction  replaced by the exact one
    /// @return whether it passes
    [[nodiscard]] virtual bool Passes(std::size_t slot, std::size_t epochOfBlock,
                                      SkyDirection& direction) const = 0;
};

/// Satellites of one block of epochs as PlanGrid keeps them.
struct SkyBlock
{
    const PositionBlock* positions;      ///< of slot 0
    std::size_t stride;                  ///< blocks from one slot to the next
    std::size_t epochs;                  ///< of the block, that count
    std::span<const std::uint64_t> used; ///< bit s of word w: slot 64 w + s takes part
};

// The equations of the plan: written once, for any number of epochs at a time, and compiled for
// every kind of vector that processors of one family have. The widest that the processor at hand
// has is chosen at the first call. Polynomials stand for the functions of angles; they are within
// 1e-13. None of these allocates. Any thread.

/// Positions of a satellite on an orbit of the fast form at @p epochs epochs.
/// @param countS  AlmanacOrbit::CountOf() each epoch; like @p blocks for whole blocks
void ComputePositions(const OrbitConstants& orbit, std::size_t epochs, const double* countS,
                      PositionBlock* blocks) noexcept;
/// The same, one epoch.
[[nodiscard]] Ecef ComputePosition(const OrbitConstants& orbit, double countS) noexcept;

/// What a site sees of @p sky.
/// @param visible     bits as in sky.used, as many words for each epoch; epoch by epoch
/// @param directions  of slot 0, with sky.stride from slot to slot; null: not asked for
void ViewSky(const SkyBlock& sky, const LocalFrame& frame, const SkyLimits& limits,
             const LimitJudge& judge, SiteBlock& site, std::uint64_t* visible,
             DirectionBlock* directions) noexcept;

/// SkyLimits::Judge(), where this is the one that knows how.
[[nodiscard]] SkyLimits::Verdict JudgeDirection(const SkyLimits& limits,
                                                const EastNorthUp& enu) noexcept;

/// Squares of the dilutions of @p sums.
[[nodiscard]] DopVariances ComputeVariances(const DopSums& sums) noexcept;

/// The vectors that were chosen: "AVX2" and the like.
[[nodiscard]] const char* LanesInUse() noexcept;
/// For measurements and tests: takes at most vectors of @p lanes doubles; 0 takes the widest again.
/// Nothing else may run meanwhile.
void LimitLanes(std::size_t lanes) noexcept;

} // namespace fieldcore
