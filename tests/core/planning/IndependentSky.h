#pragma once

#include "core/planning/AlmanacRecord.h"
#include "core/planning/LocalFrame.h"

namespace fieldcore::testing {

struct IndependentPlace
{
    Ecef position;
    double azimuthRad; ///< 0 to 2 pi
    double elevationRad;
};

/// Where a satellite stands, from the same published model by other means: extended precision,
/// Kepler's equation by halving, the orbit as three rotations of a vector, and the angles from
/// products with the axes of the horizon.
/// @param tkS  seconds from toa
[[nodiscard]] IndependentPlace PlaceOf(const AlmanacRecord& record, double tkS,
                                       const Observer& observer);

} // namespace fieldcore::testing
