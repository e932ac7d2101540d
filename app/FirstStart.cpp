#include "app/FirstStart.h"

#include "core/equipment/AntennaCatalogue.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

namespace {

/// A nominal almanac of today, for a program that has never seen a receiver.
std::vector<AlmanacRecord> SampleAlmanac(Clock::UtcTime now)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kGpsEpoch = 1980y / std::chrono::January / 6;
    constexpr std::int64_t kWeekS = 604800;
    constexpr std::int64_t kStepS = 4096; // of reference times
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - kGpsEpoch).count();
    const std::int64_t inWeek = seconds % kWeekS / kStepS * kStepS;
    return NominalConstellation(kNominalSatellites, static_cast<int>(seconds / kWeekS),
                                static_cast<std::uint32_t>(inWeek));
}

} // namespace

void PutSamples(const std::filesystem::path& folder, Clock::UtcTime now)
{
    InstallSampleSites(folder);
    InstallSampleAntennas(folder);
    std::error_code unknown;
    if (!std::filesystem::exists(AlmanacPath(folder), unknown)) {
        AlmanacStore(folder).Import(SampleAlmanac(now));
    }
}

} // namespace fieldcore
