// When in the next seven days is the sky good enough to observe?   ./example-PlanWeek LAT LON

#include <fieldcore/core/planning/AlmanacFile.h>
#include <fieldcore/core/planning/AlmanacStore.h>
#include <fieldcore/core/planning/ObservationPlan.h>
#include <fieldcore/core/planning/PlanWindows.h>
#include <fieldcore/core/platform/Clock.h>
#include <fieldcore/core/platform/Folders.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numbers>

int main(int argc, char** argv)
{
    constexpr double kRad = std::numbers::pi / 180.0;
    const auto now = fieldcore::SystemClock::Instance().Utc();
    const auto folder = fieldcore::Folders().Program();
    // A nominal almanac, unless one was received: AlmanacStore::Update() gets it from a receiver.
    fieldcore::AlmanacStore(folder).PutNominal(now);
    fieldcore::ObservationPlan plan;
    if (!plan.Calc().LoadAlmanac(fieldcore::AlmanacPath(folder))) {
        std::fprintf(stderr, "there is no almanac in %s\n", folder.c_str());
        return 1;
    }
    plan.Calc().SetObserver({(argc > 2 ? std::atof(argv[1]) : 35.0) * kRad,
                             (argc > 2 ? std::atof(argv[2]) : 139.0) * kRad, 70.0});
    plan.SetElMaskDeg(15);

    const auto today = fieldcore::JapanDay(now);
    fieldcore::WindowLimits limits;
    limits.minSatellites = 6;
    limits.maxPdop = 3.0;
    int days = 0;
    for (; days < 7; ++days) {
        plan.Period() = {std::chrono::year_month_day(today + std::chrono::days(days)), 8, 10};
        plan.Compute();
        for (const auto& window : fieldcore::FindWindows(plan, limits)) {
            std::printf("%s to %s: %d satellites or more, PDOP %.1f at most\n",
                        plan.Period().JstText(window.first).c_str(),
                        plan.Period().ClockText(window.last).c_str(), window.fewestSatellites,
                        window.highestPdop);
        }
    }
    std::printf("%d days looked at, 08:00 to 18:00 in Japan\n", days);
}
