#include "cli/FilesWork.h"
#include "cli/TerminalHost.h"
#include "cli/Utf8.h"

#include "core/equipment/AmountTexts.h"
#include "core/equipment/FileDownload.h"
#include "core/equipment/FileTexts.h"
#include "core/equipment/TransferProgress.h"
#include "core/link/ReceivedFile.h"
#include "core/link/ReceivedName.h"

#include <algorithm>
#include <chrono>

namespace fieldcore::cli {

namespace fs = std::filesystem;

namespace {

/// One of the files that were asked for, and what became of it.
struct Fetching
{
    enum class State
    {
        Planned,
        Fetched,
        AlreadyThere,
        Logging,    ///< left out: the receiver still writes it
        Unsafe,     ///< left out: it may not be kept under its name
        NotFetched, ///< something went wrong with it or before it
    };

    const ListedFile* file;
    fs::path folder;
    State state = State::Planned;

    [[nodiscard]] fs::path Path() const { return folder / file->Name(); }
};

Value StateValue(Fetching::State state)
{
    switch (state) {
    case Fetching::State::Planned:
        return Value::Word("planned", "would be fetched");
    case Fetching::State::Fetched:
        return Value::Word("fetched", "fetched");
    case Fetching::State::AlreadyThere:
        return Value::Word("already-there", "already there");
    case Fetching::State::Logging:
        return Value::Word("logging", "being logged, left out");
    case Fetching::State::Unsafe:
        return Value::Word("unsafe-name", "name not kept here, left out");
    case Fetching::State::NotFetched:
        break;
    }
    return Value::Word("not-fetched", "not fetched");
}

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
        std::string line = "[" + std::to_string(progress.file) + "/" +
                           std::to_string(progress.files) + "] " + ToUtf8(progress.name) + "  " +
                           ToUtf8(ByteCountText(progress.fileBytes)) + " of " +
                           ToUtf8(ByteCountText(progress.fileSize));
        if (progress.totalSize > 0) {
            line +=
                "  " + std::to_string(100 * progress.totalBytes / progress.totalSize) + " % of all";
        }
        line += "  " + ToUtf8(ByteRateText(progress.bytesPerSecond));
        if (progress.timeLeft) {
            const auto left = progress.timeLeft->count();
            const std::string seconds = std::to_string(left % 60);
            line += "  " + std::to_string(left / 60) + (seconds.size() < 2 ? ":0" : ":") + seconds +
                    " left";
        }
        return line;
    }

    const Context& m_context;
    int m_file = 0;
    Clock::Duration m_shown{};
};

/// The steps of one get.
class Fetcher final : public FilesWork
{
public:
    using FilesWork::FilesWork;

private:
    [[nodiscard]] std::optional<Failure> Plan() override;
    [[nodiscard]] std::optional<Failure> Agree() override;
    [[nodiscard]] std::optional<Failure> Work() override;
    [[nodiscard]] std::optional<Failure> Fetch(Fetching& fetching, TransferMeter& meter,
                                               ProgressLine& progress);
    [[nodiscard]] Failure WhyNot(const Fetching& fetching);
    void LeaveRest() override;
    [[nodiscard]] Report Result() const override;

    std::vector<Fetching> m_files;
    ReceivedNames m_names;
};

/// Which files, and which of them not.
std::optional<Failure> Fetcher::Plan()
{
    if (std::optional<Failure> failure = m_catalogue->List(false)) {
        return failure;
    }
    if (!m_catalogue->Receiver().CanDownload()) {
        return Failure{ExitCode::Refused, "type-refused",
                       "The files of a receiver of the Pica family cannot be fetched over its "
                       "port."};
    }
    std::vector<std::size_t> chosen;
    if (std::optional<Failure> failure = m_catalogue->Choose(m_options.patterns, chosen)) {
        return failure;
    }
    for (const std::size_t at : chosen) {
        const ListedFile& file = m_catalogue->Files()[at];
        const std::wstring date = m_catalogue->Rows().Date(static_cast<int>(at));
        Fetching fetching{&file, m_options.folder};
        if (m_options.byDate) {
            fetching.folder /= ToUtf8(DateFolderName(date));
        }
        if (file.isLogging && !file.byPattern) {
            return Failure{ExitCode::Failed, "file-logging",
                           file.Name() + " is being logged and cannot be fetched yet.",
                           "End the logging, or fetch it by a pattern, which leaves it out."};
        }
        if (file.isLogging) {
            fetching.state = Fetching::State::Logging;
            Warn(file.Name() + " is being logged and left out.");
        } else if (const NameFault fault = m_names.Add(file.record.Name(), fetching.folder);
                   fault != NameFault::None) {
            fetching.state = Fetching::State::Unsafe;
            Warn("\"" + file.Name() + "\" " + MeaningOf(fault).words + ", and is left out.");
        } else if (m_options.onlyNew &&
                   IsFetchedFile(m_options.folder, date, file.record.Name(), file.record.size)) {
            fetching.state = Fetching::State::AlreadyThere;
        }
        m_files.push_back(std::move(fetching));
    }
    return std::nullopt;
}

std::optional<Failure> Fetcher::Agree()
{
    std::vector<std::string> there;
    for (const Fetching& fetching : m_files) {
        std::error_code ignored; // what cannot be looked at cannot be written either
        if (fetching.state == Fetching::State::Planned && fs::exists(fetching.Path(), ignored)) {
            there.push_back(fetching.Path().string());
        }
    }
    if (there.empty() || m_options.yes) {
        return std::nullopt;
    }
    const std::string what =
        there.front() +
        (there.size() > 1 ? " and " + std::to_string(there.size() - 1) + " more" : std::string());
    if (!m_options.CanAgree(m_context.world)) {
        return UsageFailure("There is " + what + " already, and nobody can be asked here.",
                            "--yes to replace, --new to fetch only what is not there");
    }
    const std::wstring question = FromUtf8("Replace " + what + "?");
    if (m_host.ShowMessage(question, L"", {BoxButtons::YesNo, BoxIcon::Question}) !=
        BoxAnswer::Yes) {
        return RequestFailure(CommandFault::Cancelled, "");
    }
    return std::nullopt;
}

Failure Fetcher::WhyNot(const Fetching& fetching)
{
    const CCommand& command = m_session.Command();
    const std::string name = fetching.file->Name();
    switch (command.GetDownloadFault()) {
    case DownloadFault::Name:
        return FileFailure("\"" + name + "\" " + MeaningOf(command.GetNameFault()).words + ".");
    case DownloadFault::Folder:
        if (command.GetTransferStart().reason == AnewReason::NotOurs) {
            return FileFailure(fetching.Path().string() +
                                   ".part is in the way and cannot be removed: " +
                                   command.GetFileError().message() + ".",
                               "Choose another folder with --to.");
        }
        [[fallthrough]];
    case DownloadFault::Write:
        return FileFailure(fetching.Path().string() +
                           " cannot be written: " + command.GetFileError().message() + ".");
    case DownloadFault::NoSuchFile:
        return {ExitCode::Nak, "no-such-file", "The receiver says that it has no " + name + ".",
                "fieldcore-cli files ls"};
    case DownloadFault::BeingLogged:
        return {ExitCode::Nak, "file-logging",
                "The receiver is writing " + name + " and does not give it away."};
    case DownloadFault::WrongSize:
    case DownloadFault::None:
        return {ExitCode::Failed, "wrong-size",
                name + " has not the size that the receiver has listed.",
                "What came is in " + fetching.Path().string() + ".part."};
    case DownloadFault::Cancelled:
        return RequestFailure(CommandFault::Cancelled, "");
    case DownloadFault::Link:
        break;
    }
    return m_session.RequestFailed();
}

std::optional<Failure> Fetcher::Fetch(Fetching& fetching, TransferMeter& meter,
                                      ProgressLine& progress)
{
    const DirectoryListingData& record = fetching.file->record;
    const auto free = FileDestination::FreeBytesOf(m_options.folder);
    if (!free || !FileDownload::IsEnough(record.size, *free)) {
        return FileFailure("There is not enough space in " + m_options.folder.string() + " for " +
                               fetching.file->Name() + ".",
                           "Make space, or choose another folder with --to.");
    }
    meter.StartFile(std::wstring(record.Name()), record.size);
    progress.Show(meter.Get());
    CCommand& command = m_session.Command();
    const std::int64_t bytes = command.DownloadFile(
        fetching.folder, record.Name(), record.size,
        [&](std::uint32_t arrived) {
            meter.Advance(arrived, command.GetTransferStart());
            progress.Show(meter.Get());
            return !m_context.world.StopRequested();
        },
        record.time);
    const std::string start = TransferStartWords(command.GetTransferStart());
    if (!start.empty() && command.GetDownloadFault() != DownloadFault::Folder) {
        m_context.output.Message("note", "", fetching.file->Name() + " " + start + ".",
                                 Colour::Plain);
    }
    if (bytes != record.size || m_session.Command().GetDownloadFault() != DownloadFault::None) {
        return WhyNot(fetching);
    }
    fetching.state = Fetching::State::Fetched;
    return std::nullopt;
}

std::optional<Failure> Fetcher::Work()
{
    if (const std::error_code error = Folders::Create(m_options.folder)) {
        return FileFailure(m_options.folder.string() + " cannot be written to: " + error.message() +
                               ".",
                           "Choose another folder with --to.");
    }
    std::uint64_t total = 0;
    int count = 0;
    for (const Fetching& fetching : m_files) {
        if (fetching.state == Fetching::State::Planned) {
            total += fetching.file->record.size;
            ++count;
        }
    }
    TransferMeter meter(m_session.GetClock(), count, total);
    ProgressLine progress(m_context);
    for (Fetching& fetching : m_files) {
        if (fetching.state != Fetching::State::Planned) {
            continue;
        }
        if (std::optional<Failure> failure = Fetch(fetching, meter, progress)) {
            return failure;
        }
    }
    const bool anyUnsafe = std::any_of(m_files.begin(), m_files.end(), [](const Fetching& one) {
        return one.state == Fetching::State::Unsafe;
    });
    if (anyUnsafe) {
        return FileFailure("Not all files could be fetched: some have names that no file here may "
                           "have.");
    }
    return std::nullopt;
}

Report Fetcher::Result() const
{
    Report::Table table{
        "files",
        "",
        {{"name", "NAME"}, {"sizeBytes", "SIZE"}, {"state", "STATE"}, {"file", "FILE"}},
        {}};
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    for (const Fetching& fetching : m_files) {
        const bool isFetched = fetching.state == Fetching::State::Fetched;
        table.rows.push_back(
            {Value::Text(fetching.file->Name()), Value::Integer(fetching.file->record.size, "B"),
             StateValue(fetching.state),
             isFetched ? Value::Text(fetching.Path().string()) : Value::Unknown()});
        count += isFetched ? 1 : 0;
        bytes += isFetched ? fetching.file->record.size : 0;
    }
    Report report;
    report.AddTable(std::move(table));
    report.Add("fetchedCount", "fetched", Value::Integer(count));
    report.Add("fetchedBytes", "in all", Value::Integer(bytes, "B"));
    return report;
}

void Fetcher::LeaveRest()
{
    for (Fetching& fetching : m_files) {
        if (fetching.state == Fetching::State::Planned) {
            fetching.state = Fetching::State::NotFetched;
        }
    }
}

} // namespace

ExitCode FetchFiles(const Context& context, const FilesOptions& options)
{
    TerminalHost host(context.world, context.output);
    return Fetcher(context, options, host).Run();
}

} // namespace fieldcore::cli
