#pragma once

#include "cli/Output.h"
#include "cli/World.h"

#include "core/host/Host.h"

#include <string_view>

#include <optional>
#include <string>

namespace fieldcore::cli {

/// The library's host in a terminal: messages go to stderr, questions are asked if somebody can
/// answer them, and Ctrl-C ends what is running. Without a terminal a question is answered as if
/// the user had declined.
class TerminalHost final : public Host
{
public:
    enum class Answers
    {
        Ask,
        AllYes, ///< --yes: the user has agreed beforehand
    };

    /// Both outlive the host.
    TerminalHost(const World& world, Output& output, Answers answers = Answers::Ask)
        : m_world(world), m_output(output), m_answers(answers)
    {}

    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override;
    bool Breathe() override { return !m_world.StopRequested(); }

    /// Asks a question of a command's own.
    /// @param nobody  what is told where nobody can be asked, with @p hint
    /// @return why it must not be done
    [[nodiscard]] std::optional<Failure> Ask(const std::string& question, std::string nobody,
                                             std::string hint);

private:
    [[nodiscard]] bool Agrees();

    const World& m_world;
    Output& m_output;
    const Answers m_answers;
};

} // namespace fieldcore::cli
