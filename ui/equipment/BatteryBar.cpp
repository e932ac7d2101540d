#include "ui/equipment/BatteryBar.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/BatteryWatch.h"
#include "core/equipment/StatusRows.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

namespace fieldcore {

void ShowBattery(CTextProgressCtrl& bar, const Receiver& receiver, const StatusView& view)
{
    const Theme& theme = Theme::Current();
    const std::optional<int> percent = BatteryPercent(receiver);
    bar.SetPos(percent ? BatteryBand(*percent) : 0);
    bar.SetText(ToQt(BatteryText(receiver, view)));
    const bool isLow = percent && *percent <= BatteryWatch::kLowPercent;
    bar.SetColour(IsStale(FieldOf("batteryPercent"), receiver, view) ? theme.stale
                  : isLow                                            ? theme.bad
                                                                     : theme.good);
}

} // namespace fieldcore
