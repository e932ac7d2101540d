// An almanac file of any bytes: loading never fails badly, and a plan made with it ends, with
// satellites that stand in the sky.

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacTime.h"
#include "core/planning/ObservationPlan.h"
#include "fuzz/Target.h"

#include <bit>
#include <chrono>
#include <span>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static ObservationPlan plan;
    const std::span<const std::uint8_t> content(data, size);
    Check(plan.Calc().LoadAlmanac(content) == (CountAlmanacs(content) > 0));
    static_cast<void>(AlmanacTime(plan.Calc()));
    using namespace std::chrono;
    plan.Period() = {year(2022) / March / 10, 9, 1};
    plan.Compute();
    for (int k = 0; k < plan.Division(); ++k) {
        const auto at = static_cast<std::size_t>(k);
        Check(std::popcount(plan.View().visible[at]) == plan.View().count[at]);
        for (int prn = 0; prn < kMaxPrn; ++prn) {
            if (const auto step = plan.TrackAt(prn, k)) { // what is not a number fails, too
                Check(step->from.elevationRad >= 0.0 && step->from.elevationRad < 1.6);
                Check(step->from.azimuthRad >= 0.0 && step->from.azimuthRad < 6.3);
            }
        }
    }
    return 0;
}
