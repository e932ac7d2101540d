#pragma once

#include "core/platform/TextLines.h"

#include <limits>

namespace fieldcore::ranges {

// What almanac texts of both kinds may have in the fields that they have in the same unit.

inline constexpr FieldRange kPrn{1, 1e9, true, "1 or more"};
inline constexpr FieldRange kHealth{0, 255, true, "0 to 255"};
inline constexpr FieldRange kEccentricity{0, 1.0 - std::numeric_limits<double>::epsilon() / 2,
                                          false, "0 or more and below 1"};
inline constexpr FieldRange kToa{0, 604800, true, "0 to 604800 s"};
inline constexpr FieldRange kSqrtA{2000, 8000, false, "2000 to 8000 m^0.5"};
inline constexpr FieldRange kRate{-1e-6, 1e-6, false, "-1e-6 to 1e-6"};
inline constexpr FieldRange kWeek{0, 32767, true, "0 to 32767"};
/// Of the clock, which no record has.
inline constexpr FieldRange kAny{std::numeric_limits<double>::lowest(),
                                 std::numeric_limits<double>::max(), false, "finite"};

} // namespace fieldcore::ranges
