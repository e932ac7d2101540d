#pragma once

#include "core/planning/LocalFrame.h"

#include <array>
#include <cstddef>
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
    [[nodiscard]] Verdict Judge(const EastNorthUp& enu) const noexcept;

    // What a judgement goes by.

    /// Nearer to a limit than this, in radians or as a sine, rounding may decide. The forms of the
    /// orbit differ by a hundredth of it.
    static constexpr double kClose = 1.0e-9;
    /// A power of two, so that any index can be cut to fit.
    static constexpr std::size_t kTableSize = 512;
    using Table = std::array<double, kTableSize>;
    /// Sine of the limit for each whole degree of azimuth; 2 where nothing passes.
    [[nodiscard]] const Table& Sines() const { return m_sines; }
    [[nodiscard]] double Lowest() const { return m_lowest; } ///< of the sines
    [[nodiscard]] double Highest() const { return m_highest; }

private:
    double m_maskRad;
    ObstructionCurtain m_curtain;
    Table m_sines{};
    double m_lowest;
    double m_highest;
};

} // namespace fieldcore
