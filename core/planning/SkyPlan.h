#pragma once

#include "core/orbits/Constellations.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/Dop.h"
#include "core/planning/LocalFrame.h"
#include "core/planning/PlanGrid.h"
#include "core/planning/SkyLimits.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore {

class CSurveyPlanCalc;

/// An almanac's record as one among messages, for GPS and QZSS.
/// @param gpsS  a week of 10 bits is the one that is nearest to this, seconds of GPS time
/// @return nothing if its PRN is none of them
[[nodiscard]] std::optional<NavigationRecord> MessageOf(const AlmanacRecord& record, double gpsS);

/// Whether WithAlmanac() adds anything.
[[nodiscard]] bool TakesAlmanac(const Constellations& known, const CSurveyPlanCalc& calc);

/// @p known and the GPS satellites of the almanac of @p calc, each as one more record. A made-up
/// almanac stands in only where nothing better is known of GPS.
/// @param gpsS  when they are wanted, as for MessageOf()
[[nodiscard]] Constellations WithAlmanac(Constellations known, const CSurveyPlanCalc& calc,
                                         double gpsS);

/// Those of @p systems that a plan counts: GPS satellites that @p calc has switched off are not
/// among them.
[[nodiscard]] std::vector<SatelliteId>
PlannedSatellites(const Constellations& known, SystemSet systems, const CSurveyPlanCalc& calc);

/// The dilutions of satellites in some directions, when their receiver has one clock or one for
/// each system.
/// @param directions  unit vectors in any one frame
/// @param clocks      of each, 0 to kGnssSystems - 1
/// @return kNoDop with fewer than four; infinite where there are fewer than unknowns, and for a
/// geometry without a solution. The dilution of time is that of all clocks together.
[[nodiscard]] DopValues DilutionOf(std::span<const Ecef> directions,
                                   std::span<const std::size_t> clocks) noexcept;

/// What one site sees of satellites of any systems over the epochs of a plan.
class SkyPlan
{
public:
    SkyPlan() = default;
    SkyPlan(SkyPlan&&) = default; // no copies: the motions refer to what is known
    SkyPlan& operator=(SkyPlan&&) = default;

    /// Where the satellites are; View() is then due.
    /// @param epochs  seconds of GPS time
    void Place(Constellations known, std::vector<SatelliteId> satellites,
               std::span<const double> epochs);
    /// @param counts  of each epoch; so are @p dops
    void View(const LocalFrame& frame, const SkyLimits& limits, bool clockPerSystem,
              std::span<std::uint8_t> counts, std::span<DopValues> dops);

    /// Those that were placed, in their order.
    [[nodiscard]] std::span<const SatelliteId> Satellites() const { return m_satellites; }
    /// @param satellite  index in Satellites()
    /// @return nothing unless it is visible; azimuth 0 to 2 pi
    [[nodiscard]] std::optional<SkyDirection> DirectionAt(std::size_t satellite,
                                                          std::size_t epoch) const;
    /// Where the satellites are at a time near the epochs, earth-fixed, metres; not a number where
    /// that is not known. It stays until another time is asked for.
    /// @param gpsS  seconds of GPS time
    [[nodiscard]] std::span<const Ecef> PositionsAt(double gpsS) const;

private:
    Constellations m_known;
    std::vector<SatelliteId> m_satellites;
    mutable std::vector<SatelliteMotion> m_motions;
    mutable std::optional<double> m_instantS; // of the places
    mutable std::vector<Ecef> m_places;
    std::vector<Ecef> m_positions;
    PlanGrid m_grid{0, 0};
    SkyDirections m_directions{0, 0};
    std::vector<std::uint64_t> m_visible; // as in GridView
};

} // namespace fieldcore
