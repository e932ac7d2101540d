#include "cli/FilesWork.h"
#include "cli/TerminalHost.h"
#include "cli/Utf8.h"

#include "core/link/Command.h"

#include <algorithm>
#include <utility>

namespace fieldcore::cli {

namespace {

/// One of the files that were named, and what became of it.
struct Change
{
    enum class State
    {
        Planned,
        Done,
        Logging, ///< left out
        Odd,     ///< left out: its name cannot be said to the receiver
        Refused,
        NotReached, ///< something went wrong before it
    };

    std::size_t row; ///< in the catalogue
    std::string name;
    std::uint32_t size = 0;
    State state = State::Planned;
};

Value StateValue(Change::State state, bool deleting)
{
    switch (state) {
    case Change::State::Planned:
        return Value::Word("planned", deleting ? "would be deleted" : "would be recovered");
    case Change::State::Done:
        return deleting ? Value::Word("deleted", "deleted") : Value::Word("recovered", "recovered");
    case Change::State::Logging:
        return Value::Word("logging", "being logged, left out");
    case Change::State::Odd:
        return Value::Word("odd-name", "odd name, left out");
    case Change::State::Refused:
        return Value::Word("refused", "refused");
    case Change::State::NotReached:
        break;
    }
    return Value::Word("not-reached", "not reached");
}

/// Deletes files or brings them back, one by one.
class Changer final : public FilesWork
{
public:
    Changer(const Context& context, const FilesOptions& options, Host& host, bool deleting)
        : FilesWork(context, options, host), m_deleting(deleting)
    {}

private:
    [[nodiscard]] std::optional<Failure> Plan() override;
    [[nodiscard]] std::optional<Failure> Agree() override;
    [[nodiscard]] std::optional<Failure> Work() override;
    [[nodiscard]] bool ChangeOne(const Change& change);
    void LeaveRest() override;
    [[nodiscard]] Report Result() const override;

    /// Whether what is deleted cannot be brought back.
    [[nodiscard]] bool IsForGood()
    {
        return m_deleting && (m_options.deleted || !m_catalogue->Receiver().HasRecyclePage());
    }
    [[nodiscard]] bool IsPica() { return m_catalogue->Receiver().Family() == ReceiverFamily::Pica; }

    const bool m_deleting;
    std::vector<Change> m_changes;
};

std::optional<Failure> Changer::Plan()
{
    if (std::optional<Failure> failure = m_catalogue->List(m_options.deleted || !m_deleting)) {
        return failure;
    }
    if (m_deleting && m_options.deleted && !m_catalogue->Receiver().CanDeleteRecycled()) {
        return Failure{ExitCode::Refused, "type-refused",
                       "A receiver of the Pica family does not let its recycle bin be emptied."};
    }
    std::vector<std::size_t> chosen;
    if (std::optional<Failure> failure = m_catalogue->Choose(m_options.patterns, chosen)) {
        return failure;
    }
    for (const std::size_t at : chosen) {
        const ListedFile& file = m_catalogue->Files()[at];
        Change change{at, file.Name(), file.record.size};
        if (file.isLogging && !file.byPattern) {
            return Failure{ExitCode::Failed, "file-logging",
                           file.Name() + " is being logged and cannot be deleted."};
        }
        if (file.isLogging) {
            change.state = Change::State::Logging;
            Warn(file.Name() + " is being logged and left out.");
        }
        if (!IsPica() && !IsReceiverFileName(file.record.Name())) { // a Pica goes by numbers
            change.state = Change::State::Odd;
            Warn("\"" + change.name + "\" is an odd name and left out.");
        }
        m_changes.push_back(std::move(change));
    }
    return std::nullopt;
}

std::optional<Failure> Changer::Agree()
{
    const auto count = std::count_if(m_changes.begin(), m_changes.end(), [](const Change& one) {
        return one.state == Change::State::Planned;
    });
    if (!IsForGood() || m_options.yes || count == 0) {
        return std::nullopt;
    }
    const std::string what = std::to_string(count) + (count == 1 ? " file" : " files");
    if (!m_options.CanAgree(m_context.world)) {
        return UsageFailure("This deletes " + what + " for good, and nobody can be asked here.",
                            "--yes to do it all the same, --dry-run to see which");
    }
    const std::wstring question = FromUtf8("Delete " + what + " for good?");
    if (m_host.ShowMessage(question, L"", {BoxButtons::YesNo, BoxIcon::Question}) !=
        BoxAnswer::Yes) {
        return RequestFailure(CommandFault::Cancelled, "");
    }
    return std::nullopt;
}

/// Exactly this file, by its whole name or number: the steps of the screen would delete others of
/// the same name before it or with it.
/// @return whether the receiver has acknowledged
bool Changer::ChangeOne(const Change& change)
{
    CCommand& command = m_session.Command();
    const DirectoryListingData& record = m_catalogue->Files()[change.row].record;
    if (IsPica()) {
        return (m_deleting ? command.DeleteFile_Pica(record.fileIndex)
                           : command.RecoverFile_Pica(record.fileIndex)) == 1;
    }
    return (m_deleting ? command.DeleteFile_Lark(record.Name())
                       : command.RecoverFile_Lark(record.Name())) == 1;
}

std::optional<Failure> Changer::Work()
{
    std::optional<Failure> refused;
    for (Change& change : m_changes) {
        if (change.state != Change::State::Planned) {
            continue;
        }
        m_context.output.Progress(change.name);
        if (ChangeOne(change)) {
            change.state = Change::State::Done;
            continue;
        }
        Failure failure = m_session.RequestFailed();
        if (failure.exit != ExitCode::Nak) {
            return failure;
        }
        change.state = Change::State::Refused;
        failure.message = "The receiver refused " + change.name + ".";
        failure.hint.clear();
        refused = failure;
    }
    return refused;
}

Report Changer::Result() const
{
    Report::Table table{
        "files", "", {{"name", "NAME"}, {"sizeBytes", "SIZE"}, {"state", "STATE"}}, {}};
    std::int64_t done = 0;
    for (const Change& change : m_changes) {
        table.rows.push_back({Value::Text(change.name), Value::Integer(change.size, "B"),
                              StateValue(change.state, m_deleting)});
        done += change.state == Change::State::Done ? 1 : 0;
    }
    Report report;
    report.AddTable(std::move(table));
    report.Add(m_deleting ? "deletedCount" : "recoveredCount", m_deleting ? "deleted" : "recovered",
               Value::Integer(done));
    return report;
}

void Changer::LeaveRest()
{
    for (Change& change : m_changes) {
        if (change.state == Change::State::Planned) {
            change.state = Change::State::NotReached;
        }
    }
}

} // namespace

ExitCode DeleteFiles(const Context& context, const FilesOptions& options)
{
    TerminalHost host(context.world, context.output);
    return Changer(context, options, host, true).Run();
}

ExitCode RecoverFiles(const Context& context, const FilesOptions& options)
{
    TerminalHost host(context.world, context.output);
    return Changer(context, options, host, false).Run();
}

} // namespace fieldcore::cli
