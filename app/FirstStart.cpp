#include "app/FirstStart.h"

#include "core/equipment/AntennaCatalogue.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/PlanSite.h"

namespace fieldcore {

void PutSamples(const std::filesystem::path& folder, Clock::UtcTime now)
{
    InstallSampleSites(folder);
    InstallSampleAntennas(folder);
    AlmanacStore(folder).PutNominal(now);
}

} // namespace fieldcore
