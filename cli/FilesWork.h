#pragma once

#include "cli/Command.h"
#include "cli/FileCatalogue.h"
#include "cli/PortOptions.h"
#include "cli/TerminalHost.h"

#include "core/equipment/FilePlan.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// What the files commands were given.
struct FilesOptions
{
    PortOptions port;
    std::vector<std::string> patterns;
    bool deleted = false;
    std::filesystem::path folder = "."; ///< where to
    bool byDate = false;
    bool onlyNew = false;
    bool yes = false;
    bool dryRun = false;
};

/// A command that lists files of the receiver, or does something to them: the words around a plan
/// and its runner. Made for one command.
class FilesWork
{
public:
    /// Both outlive the object.
    FilesWork(const Context& context, const FilesOptions& options);

    ExitCode List();
    /// Connects, chooses the files, asks, and goes to work; a dry run only tells what it would do.
    /// When something goes wrong in the work, what became of each file is told all the same.
    ExitCode Run(FileAction action);

private:
    [[nodiscard]] std::optional<Failure> Begin(bool deleted);
    [[nodiscard]] std::optional<Failure> Plan();
    [[nodiscard]] std::optional<Failure> Agree();
    void Work();
    [[nodiscard]] Failure WhyNot(const PlannedFile& file);
    [[nodiscard]] std::string DoneWord() const;
    [[nodiscard]] std::string DoneLabel() const;
    [[nodiscard]] Value StateOf(const PlannedFile& file) const;
    [[nodiscard]] Report Result() const;
    ExitCode End(const Report& report, std::optional<Failure> failure);
    void Warn(const std::string& text)
    {
        m_context.output.Message("warning", "", text, Colour::Yellow);
    }

    const Context& m_context;
    const FilesOptions& m_options;
    TerminalHost m_host;
    PortSession m_session;
    std::optional<FileCatalogue> m_catalogue; // once it is connected
    FilePlan m_plan;
};

} // namespace fieldcore::cli
