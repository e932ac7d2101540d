#include "core/settings/NotKept.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"

#include <set>

namespace fieldcore {

void TellNotKept(int whatTextId, Host& host, const CReg& reg)
{
    const int why = text::kNotKeptUnknown + static_cast<int>(reg.Store().LastFault());
    CMesBox(host).Fail(FormatText(text::kNotKept, Text(whatTextId), Text(why)),
                       text::kNotKeptCaption);
}

int KeptOrTold(int result, int whatTextId, Host& host, const CReg& reg)
{
    static std::set<int> told;
    if (result == 1) {
        told.erase(whatTextId);
    } else if (told.insert(whatTextId).second) {
        TellNotKept(whatTextId, host, reg);
    }
    return result;
}

} // namespace fieldcore
