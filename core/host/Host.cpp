#include "core/host/Host.h"

#include <atomic>
#include <cstddef>

namespace fieldcore {

namespace {

std::atomic<Host*> g_default = nullptr;

struct Answers
{
    BoxAnswer agreeing;
    BoxAnswer harmless;
};

const Answers& AnswersOf(BoxButtons buttons)
{
    using enum BoxAnswer;
    static constexpr Answers kAnswers[] = {{Ok, Ok}, {Ok, Cancel}, {Yes, No}, {Retry, Cancel}};
    return kAnswers[static_cast<std::size_t>(buttons)]; // in the order of the buttons
}

} // namespace

BoxAnswer HarmlessAnswer(BoxButtons buttons)
{
    return AnswersOf(buttons).harmless;
}

BoxAnswer AgreeingAnswer(BoxButtons buttons)
{
    return AnswersOf(buttons).agreeing;
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
