#pragma once

#include "core/orbits/SatelliteId.h"
#include "core/planning/AlmanacText.h"
#include "core/platform/TextLines.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

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

/// PRNs below this are GPS, SBAS or QZSS, or nobody's.
inline constexpr std::size_t kPrns = 203;

/// Where @p text has the satellites that @p prn belongs to.
/// @return null: nowhere, and it has been counted
[[nodiscard]] inline std::vector<AlmanacRecord>* PlaceOf(double prn, AlmanacText& text)
{
    const std::optional<SatelliteId> satellite =
        prn < kPrns ? SatelliteId::FromPrn(static_cast<int>(prn)) : std::nullopt;
    if (satellite && satellite->system == GnssSystem::Gps) {
        return &text.records;
    }
    if (satellite && satellite->system == GnssSystem::Qzss) {
        return &text.qzss;
    }
    ++text.skipped;
    return nullptr;
}

} // namespace fieldcore::ranges
