#pragma once

#include "core/planning/SkyLimits.h"
#include "core/planning/SkyRecord.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>

namespace fieldcore {

/// How well the skyline is known at an azimuth.
enum class SkylineCertainty : std::uint8_t
{
    Unknown, ///< too little has passed there: the curtain stays
    Fair,    ///< to some four degrees, or between neighbours up to twenty degrees away
    Sure     ///< to some two degrees
};

/// A curtain made of what a receiver has tracked and missed.
struct CurtainProposal
{
    ObstructionCurtain curtain{}; ///< what to take over
    std::array<SkylineCertainty, 360> certainty{};
    std::chrono::seconds observed{}; ///< that it rests upon

    /// @return how much of the circle is known so well, 0 to 100
    [[nodiscard]] int Percent(SkylineCertainty certainty) const;
};

/// With less than this a record says too little.
inline constexpr std::chrono::hours kLeastObserved{2};

/// The skyline that leaves the fewest cells on its wrong side, open ones below it and hidden ones
/// above, and bends no more than that takes; and how far it could lie elsewhere. What lies below
/// the lowest direction that was tracked at all does not count: a receiver does not track below its
/// own mask. Takes some milliseconds.
///
/// @param current  stays where nothing is known, and where it fits what is known
/// @return nothing while less than kLeastObserved was observed, or nothing is known anywhere
[[nodiscard]] std::optional<CurtainProposal> ProposeCurtain(const SkyRecord& record,
                                                            const ObstructionCurtain& current);

} // namespace fieldcore
