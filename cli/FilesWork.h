#pragma once

#include "cli/FilesCommand.h"
#include "cli/PortSession.h"

namespace fieldcore::cli {

/// A command that does something to files of the receiver, in the steps that all of them have.
class FilesWork
{
public:
    /// @param options  outlives the object, as do the other two
    FilesWork(const Context& context, const FilesOptions& options, Host& host)
        : m_context(context), m_options(options), m_host(host),
          m_session(context.world, context.output, host, options.port)
    {}
    virtual ~FilesWork() = default;
    FilesWork(const FilesWork&) = delete;
    FilesWork& operator=(const FilesWork&) = delete;

    /// Connects, chooses the files, asks, and goes to work; a dry run only tells what it would do.
    /// When something goes wrong in the work, what became of each file is told all the same.
    ExitCode Run();

protected:
    /// Lists the files and chooses among them.
    [[nodiscard]] virtual std::optional<Failure> Plan() = 0;
    /// Asks whoever is there, if that is needed.
    [[nodiscard]] virtual std::optional<Failure> Agree() = 0;
    [[nodiscard]] virtual std::optional<Failure> Work() = 0;
    /// Marks the files that the work has not come to.
    virtual void LeaveRest() = 0;
    [[nodiscard]] virtual Report Result() const = 0;

    void Warn(const std::string& text)
    {
        m_context.output.Message("warning", "", text, Colour::Yellow);
    }

    const Context& m_context;
    const FilesOptions& m_options;
    Host& m_host;
    PortSession m_session;
    std::optional<FileCatalogue> m_catalogue; // once it is connected
};

} // namespace fieldcore::cli
