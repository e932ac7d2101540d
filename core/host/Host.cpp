#include "core/host/Host.h"

#include <atomic>

namespace fieldcore {

namespace {

std::atomic<Host*> g_default = nullptr;

} // namespace

BoxAnswer HarmlessAnswer(BoxButtons buttons)
{
    switch (buttons) {
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

BoxAnswer AgreeingAnswer(BoxButtons buttons)
{
    switch (buttons) {
    case BoxButtons::YesNo:
        return BoxAnswer::Yes;
    case BoxButtons::RetryCancel:
        return BoxAnswer::Retry;
    case BoxButtons::OkCancel:
    case BoxButtons::Ok:
        break;
    }
    return BoxAnswer::Ok;
}

BoxAnswer DefaultAnswer(BoxStyle style)
{
    if (style.byDefault == AgreeingAnswer(style.buttons) ||
        style.byDefault == HarmlessAnswer(style.buttons)) {
        return *style.byDefault;
    }
    const bool isRequest = style.icon == BoxIcon::None || style.icon == BoxIcon::Information;
    if (style.buttons == BoxButtons::OkCancel && isRequest) {
        return BoxAnswer::Ok;
    }
    if (style.buttons == BoxButtons::RetryCancel) {
        return BoxAnswer::Retry;
    }
    return HarmlessAnswer(style.buttons);
}

BoxAnswer SilentHost::ShowMessage(std::wstring_view, std::wstring_view, BoxStyle style)
{
    return HarmlessAnswer(style.buttons);
}

SilentHost& SilentHost::Instance()
{
    static SilentHost host;
    return host;
}

Host& DefaultHost()
{
    Host* const named = g_default;
    return named != nullptr ? *named : SilentHost::Instance();
}

void SetDefaultHost(Host* host)
{
    g_default = host;
}

} // namespace fieldcore
