#pragma once

#include "core/planning/Dop.h"
#include "core/planning/PlanPeriod.h"
#include "core/planning/SkyLimits.h"
#include "core/planning/SurveyPlanCalc.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace fieldcore::bench {

/// Earth-fixed position, step by step as published: IS-GPS-200, 20.3.3.5.2.1, the equations of
/// Table 20-IV without the terms that an almanac does not carry. The yardstick of AlmanacOrbit.
/// @return metres; nothing if the elements are no orbit
[[nodiscard]] std::optional<Ecef> LiteralPosition(const KeplerElements& elements,
                                                  GpsEpoch epoch) noexcept;

/// The plan in the plainest way: nothing is kept from one sample, satellite or graph to the next.
/// A count tests 32 satellites, a dilution counts them and then tests them again, and each test
/// works out orbit, observer and rotation anew. The yardstick of ObservationPlan, and what the
/// tests compare its decisions with.
class LiteralPlan
{
public:
    /// Takes almanac, use flags, mask, curtain and observer of @p calc.
    LiteralPlan(const CSurveyPlanCalc& calc, const PlanPeriod& period);

    void SetObserver(const Observer& observer) { m_observer = observer; }

    /// @return where the satellite stands; nothing if it is not usable
    [[nodiscard]] std::optional<SkyDirection> Test(int prnIndex, GpsEpoch epoch) const;

    // The series, one sample after the other.

    [[nodiscard]] std::vector<double> Count() const;
    [[nodiscard]] std::vector<DopValues> Dops() const;

    using Sky = std::array<std::optional<SkyDirection>, kMaxPrn>;
    /// Where every satellite stands, at the start and after each interval: one more than samples.
    [[nodiscard]] std::vector<Sky> Tracks() const;

private:
    [[nodiscard]] int CountAt(GpsEpoch epoch) const;
    [[nodiscard]] DopValues DopAt(GpsEpoch epoch) const;

    struct Satellite
    {
        bool usable; // loaded, in use and healthy
        AlmanacRecord record;
    };
    std::array<Satellite, kMaxPrn> m_satellites;
    PlanPeriod m_period;
    Observer m_observer;
    double m_maskRad;
    ObstructionCurtain m_curtain;
};

} // namespace fieldcore::bench
