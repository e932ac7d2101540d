#pragma once

#include "cli/Command.h"

#include "core/host/Host.h"

#include <optional>
#include <string_view>

namespace fieldcore::cli {

/// The library's host in a terminal: messages go to stderr, questions are asked if somebody can
/// answer them, and Ctrl-C ends what is running. Without a terminal a question is answered as if
/// the user had declined.
class TerminalHost final : public Host
{
public:
    /// @param context   outlives the host
    /// @param hasAgreed  --yes: the user has agreed beforehand to all there is to ask
    explicit TerminalHost(const Context& context, bool hasAgreed = false)
        : m_world(context.world), m_output(context.output), m_hasAgreed(hasAgreed)
    {}

    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override;
    bool Breathe() override { return !m_world.StopRequested(); }

    /// Asks a question of a command's own.
    /// @param nobody  what is told where nobody can be asked, with @p hint
    /// @return why it must not be done
    [[nodiscard]] std::optional<Failure> Ask(const Wording& question, Wording nobody, Wording hint);

private:
    [[nodiscard]] bool Agrees();

    const World& m_world;
    Output& m_output;
    const bool m_hasAgreed;
};

} // namespace fieldcore::cli
