#include "cli/AlmanacReport.h"
#include "cli/Command.h"
#include "cli/FileCatalogue.h"
#include "cli/Options.h"
#include "cli/PortSession.h"

#include "core/equipment/FilePlan.h"
#include "core/equipment/FileRunner.h"
#include "core/equipment/FileTexts.h"
#include "core/link/Command.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore::cli {

namespace {

namespace fs = std::filesystem;

std::string ProgressLine(const TransferProgress& progress)
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
        line += Worded(text::kProgressLeft,
                       {std::to_string(left / 60) + (seconds.size() < 2 ? ":0" : ":") + seconds});
    }
    return line;
}

std::string NameOf(const PlannedFile& file)
{
    return ToUtf8(file.record.Name());
}

/// In a sentence, which a name must not break.
std::string Told(const PlannedFile& file)
{
    return Printable(NameOf(file));
}

std::string MessageOf(const PlannedFile& file)
{
    const std::string cause = ToUtf8(file.CauseText()); // ends with what the system says
    return WordedOr(file.Terminal().message,
                    cause.substr(0, file.error ? cause.rfind(" (") : cause.size()));
}

/// What is said of a file that was not done.
std::string Said(const PlannedFile& file)
{
    std::string said = Told(file) + ": " + MessageOf(file);
    if (file.nameFault != NameFault::None) {
        return WordedOr("\"" + Told(file) + "\" " + MeaningOf(file.nameFault).words + ".", said);
    }
    if (file.outcome == FileOutcome::FolderRefused &&
        file.start.reason == AnewReason::NotOurs) { // somebody else's
        return Worded(text::kSayInTheWay, {file.path.string() + ".part"});
    }
    return said;
}

std::string Counted(std::size_t count)
{
    return Worded(count == 1 ? text::kSayOneFile : text::kSayManyFiles, {std::to_string(count)});
}

/// What a file is when it is done, and what would be done in a dry run.
struct ActionWords
{
    const char* code;
    int done;
    int would;
};

const ActionWords& WordsOf(FileAction action)
{
    static constexpr std::array kAll{
        ActionWords{"fetched", text::kLabelFetched, text::kSayWouldFetch},
        ActionWords{"deleted", text::kWordDeleted, text::kSayWouldDelete},
        ActionWords{"recovered", text::kWordRecovered, text::kSayWouldRecover},
    };
    return kAll[static_cast<std::size_t>(action)];
}

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
};

/// A command that lists files of the receiver, or does something to them: the words around a plan
/// and its runner. Made for one command.
class FilesWork
{
public:
    /// Both outlive the object.
    FilesWork(const Context& context, const FilesOptions& options)
        : m_context(context), m_options(options), m_session(context, options.port)
    {}

    Ending List()
    {
        std::optional<Failure> failure = Begin(m_options.deleted);
        if (!failure) {
            failure = m_catalogue->Choose(m_options.patterns, m_plan);
        }
        if (failure) {
            return m_context.output.Failed(*failure);
        }
        Report::Table table{"files", m_options.deleted ? Worded(text::kSayBinEmpty)
                                                       : Worded(text::kSayNoFiles)};
        std::int64_t total = 0;
        for (const PlannedFile& file : m_plan.files) {
            const Value state = m_options.deleted ? Term("deleted", text::kWordDeleted)
                                : file.outcome == FileOutcome::BeingLogged
                                    ? Term("logging", text::kWordBeingLogged)
                                    : Term("live", text::kWordLive);
            table.rows.push_back(
                {{"name", text::kHeadName, Value::Text(NameOf(file))},
                 {"sizeBytes", text::kHeadSize, Value::Integer(file.record.size, "B")},
                 {"time", text::kHeadTime, DateValue(file.record.time, false)},
                 {"state", text::kHeadState, state}});
            total += file.record.size;
        }
        Report report(std::move(table));
        report.Add("fileCount", text::kLabelFiles,
                   Value::Integer(static_cast<std::int64_t>(m_plan.files.size())));
        report.Add("totalBytes", text::kLabelInAll, Value::Integer(total, "B"));
        if (m_catalogue->Receiver().HasMore()) {
            report.Add("more", text::kLabelAndMore, Value::YesNo(true));
        }
        return End(report, std::nullopt);
    }

    /// Connects, chooses the files, asks, and goes to work; a dry run only tells what it would do.
    /// When something goes wrong in the work, what became of each file is told all the same.
    Ending Run(FileAction action)
    {
        m_plan.action = action;
        std::optional<Failure> failure = Begin(m_options.deleted || action == FileAction::Recover);
        if (!failure) {
            failure = Plan();
        }
        if (failure) {
            return m_context.output.Failed(*failure);
        }
        if (!m_context.dryRun) {
            failure = Agree();
            if (failure) {
                for (PlannedFile& file : m_plan.files) {
                    file.outcome = file.outcome == FileOutcome::Planned ? FileOutcome::NotReached
                                                                        : file.outcome;
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

private:
    /// Connects and lists.
    [[nodiscard]] std::optional<Failure> Begin(bool deleted)
    {
        std::optional<Failure> failure = m_session.Connect();
        if (!failure) {
            m_catalogue.emplace(m_session);
            const Folders& folders = m_context.world.GetFolders();
            std::vector<fs::path> kept = folders.StorageCards();
            kept.insert(kept.end(), {m_options.folder, folders.Documents()});
            m_catalogue->Receiver().SetFetchedFolders(std::move(kept));
            failure = m_catalogue->List(deleted);
        }
        if (!failure && m_catalogue->Receiver().HasMore()) {
            m_context.output.Warn({text::kSayMoreFiles, {std::to_string(kMostFiles)}});
        }
        if (!failure && m_catalogue->Incomplete()) {
            m_context.output.Warn(m_catalogue->Incomplete()->message);
        }
        return failure;
    }

    /// Tells the result; of what failed the first cause counts, and then that the list is not
    /// whole.
    Ending End(const Report& report, std::optional<Failure> failure)
    {
        if (!failure) {
            failure = m_catalogue->Incomplete();
        }
        return failure ? m_context.output.Failed(*failure, &report) : m_context.output.Done(report);
    }

    [[nodiscard]] std::optional<Failure> Plan()
    {
        ReceiverFiles& receiver = m_catalogue->Receiver();
        if (m_plan.action == FileAction::Fetch && !receiver.CanDownload()) {
            return Failure{ExitCode::Refused, "type-refused", text::kSayPicaFetch};
        }
        if (m_plan.action == FileAction::Delete && m_options.deleted &&
            !receiver.CanDeleteRecycled()) {
            return Failure{ExitCode::Refused, "type-refused", text::kSayPicaBin};
        }
        m_plan.folder = m_options.folder;
        m_plan.makesFolder = true;
        m_plan.dateFolders = m_options.byDate;
        if (auto failure = m_catalogue->Choose(m_options.patterns, m_plan)) {
            return failure;
        }
        for (const PlannedFile& file : m_plan.files) {
            const bool isLogging = file.outcome == FileOutcome::BeingLogged;
            const auto names = [&](const std::string& pattern) {
                return !HasWildcard(FromUtf8(pattern)) && FitsFile(pattern, file.record);
            };
            if (isLogging &&
                std::any_of(m_options.patterns.begin(), m_options.patterns.end(), names)) {
                return Failure{ExitCode::Failed, "file-logging",
                               Worded(text::kSayLogging, {Told(file)}), text::kSayEndLogging};
            }
            if (isLogging || file.outcome == FileOutcome::NameRefused) {
                m_context.output.Warn({text::kSayLeftOut, {Said(file)}});
            }
        }
        if (m_options.onlyNew) {
            m_plan.LeaveOutFetched();
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<Failure> Agree()
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
                names.push_back(fetches ? path.string() : Told(file));
                missing += file.isFetched ? 0 : 1;
            }
        }
        if (m_options.yes || names.empty() || (!fetches && !isForGood)) {
            return std::nullopt;
        }
        constexpr std::size_t kShown = 3;
        std::string list = Joined(std::span(names).first(std::min(names.size(), kShown)));
        list += names.size() > kShown
                    ? ToUtf8(FormatText(text::kDeleteMore, static_cast<int>(names.size() - kShown)))
                    : "";
        if (fetches) {
            return m_session.GetHost().Ask({text::kAskReplace, {list}},
                                           {text::kSayReplaceNobody, {list}},
                                           text::kSayReplaceHint);
        }
        const std::string size = ToUtf8(ByteCountText(m_plan.Bytes(FileOutcome::Planned)));
        std::string question = Worded(text::kAskDelete, {Counted(names.size()), list, size});
        if (m_catalogue->Receiver().CanDownload()) {
            question += " " + ToUtf8(missing == 0 ? Text(text::kDeleteAllFetched)
                                                  : FormatText(text::kDeleteNotFetched,
                                                               static_cast<int>(missing)));
        }
        return m_session.GetHost().Ask(question, {text::kSayDeletesNobody, {Counted(names.size())}},
                                       text::kSayYesWhich);
    }

    void Work()
    {
        int file = 0;
        Clock::Duration shown{};
        FileRunner::Surroundings around;
        around.watch = [&](const TransferProgress& progress) {
            constexpr Clock::Duration kBetween = std::chrono::milliseconds(100);
            const Clock::Duration now = m_context.world.GetClock().Steady();
            if (progress.file != file || now - shown >= kBetween) {
                file = progress.file;
                shown = now;
                m_context.output.Progress(ProgressLine(progress));
            }
            return !m_context.world.StopRequested();
        };
        around.ended = [&](const PlannedFile& done) {
            if (m_plan.action != FileAction::Fetch) {
                m_context.output.Progress(Told(done));
                return;
            }
            const TransferStart& start = done.start;
            const bool isAnew = start.continuedAt == 0 && start.reason != AnewReason::None;
            if ((start.continuedAt > 0 || isAnew) && done.outcome != FileOutcome::FolderRefused) {
                const AnewMeaning& meaning = MeaningOf(start.reason);
                m_context.output.Message(
                    "note", "",
                    isAnew ? Worded(text::kSayAnew,
                                    {Told(done), WordedOr(meaning.words, meaning.textId)})
                           : Worded(text::kSayContinued,
                                    {Told(done), std::to_string(start.continuedAt)}),
                    Colour::Plain);
            }
        };
        FileRunner(m_catalogue->Receiver(), m_plan, around).Run();
    }

    [[nodiscard]] Failure WhyNot(const PlannedFile& file)
    {
        if (file.fault == CommandFault::Cancelled) {
            return RequestFailure(file.fault, "");
        }
        const TerminalFault& said = file.Terminal();
        Failure failure{ExitCode{said.exitCode}, said.code, Said(file), HintOf(said)};
        if (file.outcome == FileOutcome::RequestFailed &&
            file.fault == m_session.Command().Fault()) {
            failure = m_session.RequestFailed();
            failure.message = NameOf(file) + ": " + failure.message;
        }
        if (m_plan.action != FileAction::Fetch && !file.WasAnswered()) {
            failure.hint = Worded(text::kSayFileChanged);
        }
        if (file.error) {
            failure.message +=
                " (" + Reason(file.error) + ": " + m_plan.FolderOf(file).string() + ")";
        }
        return failure;
    }

    [[nodiscard]] Value StateOf(const PlannedFile& file) const
    {
        const bool fetches = m_plan.action == FileAction::Fetch;
        const ActionWords& words = WordsOf(m_plan.action);
        switch (file.outcome) {
        case FileOutcome::Planned:
            return Term("planned", words.would);
        case FileOutcome::Done:
            return Term(words.code, words.done);
        case FileOutcome::AlreadyThere:
            return Term("already-there", text::kWordAlreadyThere);
        case FileOutcome::BeingLogged:
            return Term("logging", text::kWordBeingLoggedLeftOut);
        case FileOutcome::NameRefused:
            return fetches ? Term("unsafe-name", text::kWordNameNotKeptHereLeftOut)
                           : Term("odd-name", text::kWordOddNameLeftOut);
        case FileOutcome::NotReached:
            return fetches ? Term("not-fetched", text::kWordNotFetched)
                           : Term("not-reached", text::kWordNotReached);
        default:
            break;
        }
        if (fetches) {
            return Term("not-fetched", {text::kSayNotFetched, {MessageOf(file)}});
        }
        return file.fault == CommandFault::Refused ? Term("refused", text::kWordRefused)
               : file.WasAnswered()                ? Value::Word("failed", MessageOf(file))
                                    : Term("unanswered", text::kWordNoAnswerMayBeDone);
    }

    [[nodiscard]] Report Result() const
    {
        const bool fetches = m_plan.action == FileAction::Fetch;
        Report::Table table{"files"};
        for (const PlannedFile& file : m_plan.files) {
            table.rows.push_back(
                {{"name", text::kHeadName, Value::Text(NameOf(file))},
                 {"sizeBytes", text::kHeadSize, Value::Integer(file.record.size, "B")},
                 {"state", text::kHeadState, StateOf(file)}});
            if (fetches) {
                table.rows.back().push_back({"file", text::kHeadFile,
                                             file.outcome == FileOutcome::Done
                                                 ? Value::Text(file.path.string())
                                                 : Value::Unknown()});
            }
        }
        const ActionWords& words = WordsOf(m_plan.action);
        Report report(std::move(table));
        report.Add(std::string(words.code) + "Count", words.done,
                   Value::Integer(m_plan.Count(FileOutcome::Done)));
        if (fetches) {
            const auto bytes = static_cast<std::int64_t>(m_plan.Bytes(FileOutcome::Done));
            report.Add("fetchedBytes", text::kLabelInAll, Value::Integer(bytes, "B"));
        }
        return report;
    }

    const Context& m_context;
    const FilesOptions& m_options;
    PortSession m_session;
    std::optional<FileCatalogue> m_catalogue; // once it is connected
    FilePlan m_plan;
};

template <FileAction Action>
Ending Run(const Context& context, const FilesOptions& options)
{
    return FilesWork(context, options).Run(Action);
}

CLI::Option* AddCommon(CLI::App& parser, FilesOptions& options)
{
    options.port.AddTo(parser);
    return AddText(parser, "FILE", options.patterns, "", text::kOptFiles);
}

} // namespace

Command AddFilesCommand(CLI::App& program)
{
    return AddCommand<FilesOptions>(
        program, {"files", text::kHelpFiles},
        {{"ls", text::kHelpFilesLs,
          [](CLI::App& parser, FilesOptions& options) {
              AddCommon(parser, options);
              AddFlag(parser, "--deleted", options.deleted, text::kOptDeleted);
          },
          [](const Context& context, const FilesOptions& options) {
              return FilesWork(context, options).List();
          }},
         {"get", text::kHelpFilesGet,
          [](CLI::App& parser, FilesOptions& options) {
              AddCommon(parser, options)->required();
              AddText(parser, "--to", options.folder, "DIR", text::kOptTo);
              AddFlag(parser, "--by-date", options.byDate, text::kOptByDate);
              AddFlag(parser, "--new", options.onlyNew, text::kOptNew);
              AddFlag(parser, "--yes", options.yes, text::kOptReplaceFiles);
              AddDryRun(parser, text::kOptFetchDry);
          },
          Run<FileAction::Fetch>},
         {"rm", text::kHelpFilesRm,
          [](CLI::App& parser, FilesOptions& options) {
              AddCommon(parser, options)->required();
              AddFlag(parser, "--deleted", options.deleted, text::kOptDeletedForGood);
              AddConsent(parser, options.yes, text::kOptDeleteDry);
          },
          Run<FileAction::Delete>},
         {"recover", text::kHelpFilesRecover,
          [](CLI::App& parser, FilesOptions& options) {
              AddCommon(parser, options)->required();
              AddDryRun(parser, text::kOptRecoverDry);
          },
          Run<FileAction::Recover>}});
}

} // namespace fieldcore::cli
