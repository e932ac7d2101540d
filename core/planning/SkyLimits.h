#pragma once

#include "core/planning/LocalFrame.h"

#include <array>
#include <cstdint>

namespace fieldcore {

/// Elevation of the obstructions around a site, whole degrees: entry k covers azimuths from k up
/// to, but not including, k + 1 degrees.
using ObstructionCurtain = std::array<std::uint8_t, 360>;

/// @return whether @p curtain hides anything at all
[[nodiscard]] bool HasObstruction(const ObstructionCurtain& curtain) noexcept;

/// @return @p azimuthRad within 0 to 2 pi; exactly 2 pi stays, and so does what is not finite
[[nodiscard]] double NormalisedAzimuth(double azimuthRad) noexcept;

/// Which part of the sky is usable: above the horizon, the elevation mask and the obstruction
/// curtain. Standing exactly on a limit passes.
class SkyLimits
{
public:
    SkyLimits() : SkyLimits(0.0, ObstructionCurtain{}) {}
    SkyLimits(double maskRad, const ObstructionCurtain& curtain) noexcept;

    /// The rule itself.
    [[nodiscard]] bool Pass(const SkyDirection& direction) const noexcept;

    enum class Verdict : std::uint8_t
    {
        Hidden,
        Visible,
        TooClose, ///< within rounding of a limit: ask Pass() with the reference direction
    };
    /// The same without angles where it can do without: several times as fast.
    /// @param range  enu.Range()
    [[nodiscard]] Verdict Judge(const EastNorthUp& enu, double range) const noexcept;

private:
    double m_maskRad;
    ObstructionCurtain m_curtain;
    std::array<double, 360> m_sines{}; // of the limit for each entry; 2 where nothing passes
    double m_lowest;                   // of m_sines
    double m_highest;
};

} // namespace fieldcore
