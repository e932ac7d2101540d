#pragma once

#include "core/host/Host.h"
#include "core/settings/Reg.h"

namespace fieldcore {

// What the user is told when something could not be stored: that, why, and what to do. The thread
// that uses the library.

/// @param whatTextId  what it is, a number of the string table
/// @param reg         where it was to be stored
void TellNotKept(int whatTextId, Host& host, const CReg& reg);

/// The same for what is stored by the way, again and again: told once, and anew only when it has
/// been stored in between.
/// @param result  of storing it: 1, or 0
/// @return @p result
int KeptOrTold(int result, int whatTextId, Host& host, const CReg& reg);

} // namespace fieldcore
