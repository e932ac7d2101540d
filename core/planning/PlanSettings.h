#pragma once

#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanWindows.h"
#include "core/settings/Reg.h"

#include <cstdint>
#include <string>
#include <vector>

namespace fieldcore {

/// What was last searched for, to be offered again: the search of days, and its sites for a
/// session, too.
struct SearchChoice
{
    int days = 14;                   ///< 1 to SearchHours::kMostDays
    int startHour = 8;               ///< 0 to 23, Japan Standard Time
    int hours = 10;                  ///< 1 to 24
    std::vector<std::wstring> sites; ///< of the site list; none: the plan's own

    friend bool operator==(const SearchChoice&, const SearchChoice&) = default;
};

/// What the observation plan remembers between its runs, as it is for a user who has never chosen
/// anything.
struct PlanSettings
{
    int elMaskDeg = 15;  ///< elevation mask, whole degrees, 0 to 90
    int startHour = 9;   ///< 0 to 23, Japan Standard Time
    int hours = 2;       ///< 1 to 24, and not beyond midnight
    int drawType = 0;    ///< the graph, a PlanGraph; another number stands for the sky plot
    int listCoord = 0;   ///< kept for the site page
    int positionNo = 13; ///< kept for the site page
    std::wstring position = L"東京都千代田区"; ///< name of the site
    int positionId = 0;                        ///< kept for the site page
    WindowLimits limits = {};                  ///< of a good window
    std::uint32_t switchedOff = 0; ///< satellites that do not count: bit k is PRN k + 1; never all
    SystemSet systems = SystemSetOf(GnssSystem::Gps); ///< that count together; never none
    bool clockPerSystem = false;                      ///< as of ObservationPlan::SetSystems()
    SearchChoice search = {};

    friend bool operator==(const PlanSettings&, const PlanSettings&) = default;
};

/// @p settings with mask, hours and limits brought into their ranges, with all satellites if all
/// are switched off, and with GPS if there is no system.
[[nodiscard]] PlanSettings Fitted(PlanSettings settings);

/// Gives @p plan what of @p settings it is made of: hours, mask, and the systems and satellites
/// that count. The plan's page and the terminal make the same plan of the same settings by this,
/// but that the terminal is told the systems each time.
void ApplySettings(const PlanSettings& settings, ObservationPlan& plan);

/// Those of a new user where they are missing, and Fitted().
/// @param reg  one that starts at the library's own key
[[nodiscard]] PlanSettings LoadPlanSettings(const CReg& reg);

/// Stores all of them, or none.
/// @return 1, or 0 if they could not be stored
int SavePlanSettings(const CReg& reg, const PlanSettings& settings);

} // namespace fieldcore
