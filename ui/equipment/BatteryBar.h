#pragma once

#include "core/equipment/ReceiverFields.h"

namespace fieldcore {

class CTextProgressCtrl;

/// Shows the charge in a bar by the rule of the battery level, with the percentage that was told
/// and the power source in it. User-interface thread only.
void ShowBattery(CTextProgressCtrl& bar, const Receiver& receiver, const StatusView& view);

} // namespace fieldcore
