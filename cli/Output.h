#pragma once

#include "cli/Failure.h"
#include "cli/Report.h"
#include "cli/World.h"

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::cli {

/// The version of the JSON documents: it rises when a key goes away or changes its meaning.
inline constexpr int kJsonSchema = 1;

enum class Colour
{
    Plain,
    Green,
    Yellow,
    Red,
};

/// Where a command says what it has to say: results on stdout, as text or as one JSON document,
/// and everything else on stderr. One thread; Post() any.
class Output
{
public:
    /// @param isDryRun  nothing is changed: told with the result
    Output(const World& world, std::string command, bool json, bool isDryRun = false);

    [[nodiscard]] bool IsJson() const { return m_json; }

    /// The command is done. @return ExitCode::Done
    ExitCode Done(const Report& report);
    /// The same, with a text of the command's own for a person.
    ExitCode Done(const Report& report, std::string_view words);

    /// The command failed.
    /// @param partial  what it found out nevertheless; may be null
    /// @return the failure's exit code
    ExitCode Failed(const Failure& failure, const Report* partial = nullptr);

    /// A line on stderr for whoever looks on; not part of any result.
    void Note(const Wording& text);
    /// A message of the library or a warning: shown on stderr, and part of the JSON document.
    void Message(std::string_view kind, std::string_view caption, std::string_view text,
                 Colour colour);
    void Warn(const Wording& text) { Message("warning", "", text, Colour::Yellow); }
    /// A warning that is told with the next result, failure or message.
    void Post(std::string warning);
    /// A line on stderr that the next one replaces; only on a terminal. Empty: takes it away.
    void Progress(const Wording& text);
    /// "[3/32] ..."
    void ProgressOf(int number, int count, const Wording& text)
    {
        Progress("[" + std::to_string(number) + "/" + std::to_string(count) + "] " + text);
    }

    /// @p text in a colour if stdout is a terminal that wants colours.
    [[nodiscard]] std::string Painted(std::string_view text, Colour colour) const;

private:
    struct Told
    {
        std::string kind;
        std::string caption;
        std::string text;
    };

    void TellPosted();
    void WriteJson(const Report* report, const Failure* failure);
    [[nodiscard]] std::string Paint(std::string_view text, Colour colour, bool terminal) const;

    const World& m_world;
    const std::string m_command;
    const bool m_json;
    const bool m_isDryRun;
    bool m_progressShown = false;
    std::vector<Told> m_told; // since the last document
    std::mutex m_posting;
    std::vector<std::string> m_posted; // guarded by m_posting
};

} // namespace fieldcore::cli
