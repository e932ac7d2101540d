#pragma once

namespace fieldcore {

/// A point or a difference of points in the earth-fixed frame, metres.
struct Ecef
{
    double x = 0.0; ///< towards latitude 0, longitude 0
    double y = 0.0; ///< towards latitude 0, longitude 90 degrees east
    double z = 0.0; ///< towards the north pole
};

} // namespace fieldcore
