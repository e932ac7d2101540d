#include "cli/TerminalHost.h"

#include "core/platform/Utf8.h"

#include <array>
#include <cstddef>
#include <istream>
#include <ostream>
#include <string>

namespace fieldcore::cli {

namespace {

struct Manner
{
    const char* kind;
    Colour colour;
};

// In the order of BoxIcon.
constexpr std::array kManners{
    Manner{"information", Colour::Plain}, Manner{"information", Colour::Plain},
    Manner{"warning", Colour::Yellow},    Manner{"error", Colour::Red},
    Manner{"question", Colour::Plain},
};

} // namespace

BoxAnswer TerminalHost::ShowMessage(std::wstring_view text, std::wstring_view caption,
                                    BoxStyle style)
{
    const Manner& manner = kManners[static_cast<std::size_t>(style.icon)];
    m_output.Message(manner.kind, ToUtf8(caption), ToUtf8(text), manner.colour);
    const bool agrees = style.buttons == BoxButtons::Ok || Agrees();
    if (style.buttons == BoxButtons::YesNo) {
        return agrees ? BoxAnswer::Yes : BoxAnswer::No;
    }
    const BoxAnswer yes =
        style.buttons == BoxButtons::RetryCancel ? BoxAnswer::Retry : BoxAnswer::Ok;
    return agrees ? yes : BoxAnswer::Cancel;
}

std::optional<Failure> TerminalHost::Ask(const Wording& question, Wording nobody, Wording hint)
{
    if (!m_hasAgreed && !m_world.CanAsk()) {
        return UsageFailure(std::move(nobody), std::move(hint));
    }
    return ShowMessage(FromUtf8(question), L"", {BoxButtons::YesNo, BoxIcon::Question}) ==
                   BoxAnswer::Yes
               ? std::nullopt
               : std::optional(RequestFailure(CommandFault::Cancelled, ""));
}

bool TerminalHost::Agrees()
{
    if (m_hasAgreed || !m_world.CanAsk()) {
        return m_hasAgreed;
    }
    *m_world.err << "[y/N] " << std::flush;
    std::string answer;
    std::getline(*m_world.in, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace fieldcore::cli
