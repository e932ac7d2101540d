#include "cli/FilesWork.h"

#include "cli/Utf8.h"
#include "cli/Wildcard.h"
#include "cli/Wording.h"

#include "core/equipment/FileRunner.h"
#include "core/equipment/FileTexts.h"
#include "core/link/Command.h"
#include "core/platform/Folders.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace fieldcore::cli {

namespace fs = std::filesystem;

namespace {

/// Shows how far it is, on a terminal, at most ten times a second.
class ProgressLine
{
public:
    explicit ProgressLine(const Context& context) : m_context(context) {}

    void Show(const TransferProgress& progress)
    {
        constexpr Clock::Duration kBetween = std::chrono::milliseconds(100);
        const Clock::Duration now = m_context.world.clock->Steady();
        if (progress.file == m_file && now - m_shown < kBetween) {
            return;
        }
        m_file = progress.file;
        m_shown = now;
        m_context.output.Progress(Line(progress));
    }

private:
    static std::string Line(const TransferProgress& progress)
    {
        std::string line = Worded(text::kProgressFile,
                                  {std::to_string(progress.file), std::to_string(progress.files),
                                   ToUtf8(progress.name), ToUtf8(ByteCountText(progress.fileBytes)),
                                   ToUtf8(ByteCountText(progress.fileSize))});
        if (progress.totalSize > 0) {
            line += Worded(text::kProgressAll,
                           {std::to_string(100 * progress.totalBytes / progress.totalSize)});
        }
        line += "  " + ToUtf8(ByteRateText(progress.bytesPerSecond));
        if (progress.timeLeft) {
            const auto left = progress.timeLeft->count();
            const std::string seconds = std::to_string(left % 60);
            line += Worded(text::kProgressLeft, {std::to_string(left / 60) +
                                                 (seconds.size() < 2 ? ":0" : ":") + seconds});
        }
        return line;
    }

    const Context& m_context;
    int m_file = 0;
    Clock::Duration m_shown{};
};

std::string NameOf(const PlannedFile& file)
{
    return ToUtf8(file.record.Name());
}

std::string MessageOf(const PlannedFile& file)
{
    if (IsEnglish()) {
        return file.Terminal().message;
    }
    const std::string words = ToUtf8(file.CauseText()); // ends with what the system says
    return words.substr(0, file.error ? words.rfind(" (") : words.size());
}

/// What is said of a file that was not done.
std::string Said(const PlannedFile& file)
{
    if (file.nameFault != NameFault::None) {
        return IsEnglish() ? "\"" + NameOf(file) + "\" " + MeaningOf(file.nameFault).words + "."
                           : NameOf(file) + ": " + MessageOf(file);
    }
    if (file.outcome == FileOutcome::FolderRefused &&
        file.start.reason == AnewReason::NotOurs) { // somebody else's
        return Worded(text::kSayInTheWay, {file.path.string() + ".part"});
    }
    return NameOf(file) + ": " + MessageOf(file);
}

std::string Counted(std::size_t count)
{
    return Worded(count == 1 ? text::kSayOneFile : text::kSayManyFiles, {std::to_string(count)});
}

} // namespace

FilesWork::FilesWork(const Context& context, const FilesOptions& options)
    : m_context(context), m_options(options), m_host(context.world, context.output),
      m_session(context.world, context.output, m_host, options.port)
{}

/// Connects and lists.
std::optional<Failure> FilesWork::Begin(bool deleted)
{
    std::optional<Failure> failure = m_session.Connect();
    if (!failure) {
        m_catalogue.emplace(m_session);
        const Folders folders(m_context.world.folders);
        std::vector<fs::path> kept = folders.StorageCards();
        kept.insert(kept.end(), {m_options.folder, folders.Documents()});
        m_catalogue->Receiver().SetFetchedFolders(std::move(kept));
        failure = m_catalogue->List(deleted);
    }
    if (!failure && m_catalogue->Receiver().HasMore()) {
        Warn(Worded(text::kSayMoreFiles, {std::to_string(kMostFiles)}));
    }
    if (!failure && m_catalogue->Incomplete()) {
        Warn(m_catalogue->Incomplete()->message);
    }
    return failure;
}

/// Tells the result; of what failed the first cause counts, and then that the list is not whole.
ExitCode FilesWork::End(const Report& report, std::optional<Failure> failure)
{
    if (!failure) {
        failure = m_catalogue->Incomplete();
    }
    return failure ? m_context.output.Failed(*failure, &report) : m_context.output.Done(report);
}

ExitCode FilesWork::List()
{
    std::optional<Failure> failure = Begin(m_options.deleted);
    if (!failure) {
        failure = m_catalogue->Choose(m_options.patterns, m_plan);
    }
    if (failure) {
        return m_context.output.Failed(*failure);
    }
    Report::Table table{"files",
                        m_options.deleted ? Worded(text::kSayBinEmpty) : Worded(text::kSayNoFiles),
                        {{"name", text::kHeadName},
                         {"sizeBytes", text::kHeadSize},
                         {"time", text::kHeadTime},
                         {"state", text::kHeadState}},
                        {}};
    std::int64_t total = 0;
    for (const PlannedFile& file : m_plan.files) {
        const Value state = m_options.deleted ? Value::Word("deleted", Worded(text::kWordDeleted))
                            : file.outcome == FileOutcome::BeingLogged
                                ? Value::Word("logging", Worded(text::kWordBeingLogged))
                                : Value::Word("live", Worded(text::kWordLive));
        table.rows.push_back({Value::Text(NameOf(file)), Value::Integer(file.record.size, "B"),
                              FileCatalogue::TimeOf(file.record), state});
        total += file.record.size;
    }
    Report report;
    report.AddTable(std::move(table));
    report.Add("fileCount", text::kLabelFiles,
               Value::Integer(static_cast<std::int64_t>(m_plan.files.size())));
    report.Add("totalBytes", text::kLabelInAll, Value::Integer(total, "B"));
    if (m_catalogue->Receiver().HasMore()) {
        report.Add("more", text::kLabelAndMore, Value::YesNo(true));
    }
    return End(report, std::nullopt);
}

ExitCode FilesWork::Run(FileAction action)
{
    m_plan.action = action;
    std::optional<Failure> failure = Begin(m_options.deleted || action == FileAction::Recover);
    if (!failure) {
        failure = Plan();
    }
    if (failure) {
        return m_context.output.Failed(*failure);
    }
    if (!m_options.dryRun) {
        failure = Agree();
        if (failure) {
            for (PlannedFile& file : m_plan.files) {
                file.outcome =
                    file.outcome == FileOutcome::Planned ? FileOutcome::NotReached : file.outcome;
            }
            return End(Result(), failure);
        }
        Work();
        if (const PlannedFile* const failed = m_plan.Failed()) {
            failure = WhyNot(*failed);
        }
    }
    return End(Result(), failure);
}

std::optional<Failure> FilesWork::Plan()
{
    ReceiverFiles& receiver = m_catalogue->Receiver();
    if (m_plan.action == FileAction::Fetch && !receiver.CanDownload()) {
        return Failure{ExitCode::Refused, "type-refused", Worded(text::kSayPicaFetch)};
    }
    if (m_plan.action == FileAction::Delete && m_options.deleted && !receiver.CanDeleteRecycled()) {
        return Failure{ExitCode::Refused, "type-refused", Worded(text::kSayPicaBin)};
    }
    m_plan.folder = m_options.folder;
    m_plan.makesFolder = true;
    m_plan.dateFolders = m_options.byDate;
    if (std::optional<Failure> failure = m_catalogue->Choose(m_options.patterns, m_plan)) {
        return failure;
    }
    for (const PlannedFile& file : m_plan.files) {
        const bool isLogging = file.outcome == FileOutcome::BeingLogged;
        const auto names = [&](const std::string& pattern) {
            return !HasWildcard(FromUtf8(pattern)) && FitsFile(pattern, file.record);
        };
        if (isLogging && std::any_of(m_options.patterns.begin(), m_options.patterns.end(), names)) {
            return Failure{ExitCode::Failed, "file-logging",
                           Worded(text::kSayLogging, {NameOf(file)}), Worded(text::kSayEndLogging)};
        }
        if (isLogging || file.outcome == FileOutcome::NameRefused) {
            Warn(Worded(text::kSayLeftOut, {Said(file)}));
        }
    }
    if (m_options.onlyNew) {
        m_plan.LeaveOutFetched();
    }
    return std::nullopt;
}

std::optional<Failure> FilesWork::Agree()
{
    const bool fetches = m_plan.action == FileAction::Fetch;
    const bool isForGood = m_plan.action == FileAction::Delete &&
                           (m_options.deleted || !m_catalogue->Receiver().HasRecyclePage());
    std::vector<std::string> names;
    std::size_t missing = 0;
    for (const PlannedFile& file : m_plan.files) {
        std::error_code ignored; // what cannot be looked at cannot be written either
        const fs::path path = m_plan.FolderOf(file) / NameOf(file);
        if (file.outcome == FileOutcome::Planned && (!fetches || fs::exists(path, ignored))) {
            names.push_back(fetches ? path.string() : NameOf(file));
            missing += file.isFetched ? 0 : 1;
        }
    }
    if (m_options.yes || names.empty() || (!fetches && !isForGood)) {
        return std::nullopt;
    }
    constexpr std::size_t kShown = 3;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), kShown); ++i) {
        list += (i > 0 ? ", " : "") + names[i];
    }
    list += names.size() > kShown
                ? ToUtf8(FormatText(text::kDeleteMore, static_cast<int>(names.size() - kShown)))
                : "";
    if (fetches) {
        return m_host.Ask(Worded(text::kAskReplace, {list}),
                          Worded(text::kSayReplaceNobody, {list}), Worded(text::kSayReplaceHint));
    }
    const std::string size = ToUtf8(ByteCountText(m_plan.Bytes(FileOutcome::Planned)));
    std::string question = Worded(text::kAskDelete, {Counted(names.size()), list, size});
    if (m_catalogue->Receiver().CanDownload()) {
        question += " " + ToUtf8(missing == 0 ? Text(text::kDeleteAllFetched)
                                              : FormatText(text::kDeleteNotFetched,
                                                           static_cast<int>(missing)));
    }
    return m_host.Ask(question, Worded(text::kSayDeletesNobody, {Counted(names.size())}),
                      Worded(text::kSayYesWhich));
}

void FilesWork::Work()
{
    ProgressLine progress(m_context);
    FileRunner::Surroundings around;
    around.watch = [&](const TransferProgress& now) {
        progress.Show(now);
        return !m_context.world.StopRequested();
    };
    around.ended = [&](const PlannedFile& file) {
        if (m_plan.action != FileAction::Fetch) {
            m_context.output.Progress(NameOf(file));
            return;
        }
        const TransferStart& start = file.start;
        const bool isAnew = start.continuedAt == 0 && start.reason != AnewReason::None;
        if ((start.continuedAt > 0 || isAnew) && file.outcome != FileOutcome::FolderRefused) {
            const AnewMeaning& meaning = MeaningOf(start.reason);
            m_context.output.Message(
                "note", "",
                isAnew ? Worded(text::kSayAnew,
                                {NameOf(file), WordedOr(meaning.words, meaning.textId)})
                       : Worded(text::kSayContinued,
                                {NameOf(file), std::to_string(start.continuedAt)}),
                Colour::Plain);
        }
    };
    FileRunner(m_catalogue->Receiver(), m_plan, around).Run();
}

Failure FilesWork::WhyNot(const PlannedFile& file)
{
    if (file.fault == CommandFault::Cancelled) {
        return RequestFailure(file.fault, "");
    }
    const TerminalFault& said = file.Terminal();
    Failure failure{ExitCode{said.exitCode}, said.code, Said(file), HintOf(said)};
    if (file.outcome == FileOutcome::RequestFailed && file.fault == m_session.Command().Fault()) {
        failure = m_session.RequestFailed();
        failure.message = NameOf(file) + ": " + failure.message;
    }
    if (m_plan.action != FileAction::Fetch && !file.WasAnswered()) {
        failure.hint = Worded(text::kSayFileChanged);
    }
    if (file.error) {
        failure.message += " (" + Reason(file.error) + ": " + m_plan.FolderOf(file).string() + ")";
    }
    return failure;
}

std::string FilesWork::DoneWord() const
{
    return m_plan.action == FileAction::Fetch    ? "fetched"
           : m_plan.action == FileAction::Delete ? "deleted"
                                                 : "recovered";
}

std::string FilesWork::DoneLabel() const
{
    return Worded(m_plan.action == FileAction::Fetch    ? text::kLabelFetched
                  : m_plan.action == FileAction::Delete ? text::kWordDeleted
                                                        : text::kWordRecovered);
}

Value FilesWork::StateOf(const PlannedFile& file) const
{
    const bool fetches = m_plan.action == FileAction::Fetch;
    switch (file.outcome) {
    case FileOutcome::Planned:
        return Value::Word("planned",
                           Worded(m_plan.action == FileAction::Fetch    ? text::kSayWouldFetch
                                  : m_plan.action == FileAction::Delete ? text::kSayWouldDelete
                                                                        : text::kSayWouldRecover));
    case FileOutcome::Done:
        return Value::Word(DoneWord(), DoneLabel());
    case FileOutcome::AlreadyThere:
        return Value::Word("already-there", Worded(text::kWordAlreadyThere));
    case FileOutcome::BeingLogged:
        return Value::Word("logging", Worded(text::kWordBeingLoggedLeftOut));
    case FileOutcome::NameRefused:
        return fetches ? Value::Word("unsafe-name", Worded(text::kWordNameNotKeptHereLeftOut))
                       : Value::Word("odd-name", Worded(text::kWordOddNameLeftOut));
    case FileOutcome::NotReached:
        return fetches ? Value::Word("not-fetched", Worded(text::kWordNotFetched))
                       : Value::Word("not-reached", Worded(text::kWordNotReached));
    default:
        break;
    }
    if (fetches) {
        return Value::Word("not-fetched", Worded(text::kSayNotFetched, {MessageOf(file)}));
    }
    return file.fault == CommandFault::Refused ? Value::Word("refused", Worded(text::kWordRefused))
           : file.WasAnswered()                ? Value::Word("failed", MessageOf(file))
                                : Value::Word("unanswered", Worded(text::kWordNoAnswerMayBeDone));
}

Report FilesWork::Result() const
{
    const bool fetches = m_plan.action == FileAction::Fetch;
    Report::Table table{
        "files",
        "",
        {{"name", text::kHeadName}, {"sizeBytes", text::kHeadSize}, {"state", text::kHeadState}},
        {}};
    if (fetches) {
        table.columns.push_back({"file", text::kHeadFile});
    }
    for (const PlannedFile& file : m_plan.files) {
        table.rows.push_back(
            {Value::Text(NameOf(file)), Value::Integer(file.record.size, "B"), StateOf(file)});
        if (fetches) {
            table.rows.back().push_back(file.outcome == FileOutcome::Done
                                            ? Value::Text(file.path.string())
                                            : Value::Unknown());
        }
    }
    Report report;
    report.AddTable(std::move(table));
    report.Add(DoneWord() + "Count", DoneLabel(), Value::Integer(m_plan.Count(FileOutcome::Done)));
    if (fetches) {
        const auto bytes = static_cast<std::int64_t>(m_plan.Bytes(FileOutcome::Done));
        report.Add("fetchedBytes", text::kLabelInAll, Value::Integer(bytes, "B"));
    }
    return report;
}

} // namespace fieldcore::cli
