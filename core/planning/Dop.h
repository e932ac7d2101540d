#pragma once

#include "core/planning/LocalFrame.h"

#include <optional>
#include <span>

namespace fieldcore {

/// Dilution of precision: how much worse than a range a result from several ranges is.
struct DopValues
{
    double pdop = 0.0; ///< position
    double gdop = 0.0; ///< position and time
    double tdop = 0.0; ///< time
};

/// The dilution of a position by its parts in the observer's frame.
struct LocalDop
{
    double pdop = 0.0; ///< position
    double hdop = 0.0; ///< east and north together
    double vdop = 0.0; ///< up
};

/// What stands for the dilution with fewer satellites than a fix needs.
inline constexpr DopValues kNoDop{16.0, 16.0, 16.0};
inline constexpr int kSatellitesForDop = 4;

/// From the normal matrix in the earth-fixed frame, inverted by its adjugate, step by step: the
/// yardstick of DopSums.
/// @param satellites  at least four, in the order of their PRN; a geometry without a solution gives
/// infinite or undefined values
[[nodiscard]] DopValues ReferenceDop(const Ecef& observer,
                                     std::span<const Ecef> satellites) noexcept;

/// Gathers the normal matrix satellite by satellite, in any one frame: the dilutions are the same
/// in all. Its ten sums are inverted by blocks, the clock first.
struct DopSums
{
    double n = 0.0;
    double x = 0.0, y = 0.0, z = 0.0;
    double xx = 0.0, xy = 0.0, xz = 0.0, yy = 0.0, yz = 0.0, zz = 0.0;

    /// Adds a satellite in direction (@p dx, @p dy, @p dz), a unit vector.
    void Add(double dx, double dy, double dz) noexcept;

    /// @return nothing if the geometry is so weak that rounding shows: ask ReferenceDop()
    [[nodiscard]] std::optional<DopValues> Solve() const noexcept;
    /// The same by its parts, if the directions were east, north and up.
    /// @return nothing where Solve() has nothing
    [[nodiscard]] std::optional<LocalDop> SolveLocal() const noexcept;
};

/// Squares of dilutions. They mean nothing where the geometry is weak.
struct DopVariances
{
    double horizontal = 0.0; ///< of the first two axes together
    double vertical = 0.0;   ///< of the third
    double time = 0.0;
    bool isStrong = false; ///< rounding does not show
};

} // namespace fieldcore
