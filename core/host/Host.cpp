#include "core/host/Host.h"

namespace fieldcore {

BoxAnswer SilentHost::ShowMessage(std::wstring_view, std::wstring_view, BoxStyle style)
{
    switch (style.buttons) {
    case BoxButtons::YesNo:
        return BoxAnswer::No;
    case BoxButtons::OkCancel:
    case BoxButtons::RetryCancel:
        return BoxAnswer::Cancel;
    case BoxButtons::Ok:
        break;
    }
    return BoxAnswer::Ok;
}

SilentHost& SilentHost::Instance()
{
    static SilentHost host;
    return host;
}

} // namespace fieldcore
