#include "cli/AlmanacReport.h"
#include "cli/Command.h"
#include "cli/Navigation.h"
#include "cli/PortSession.h"
#include "cli/ScratchFolder.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/orbits/NavigationFile.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/AlmanacText.h"
#include "core/planning/AlmanacTime.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <memory>
#include <optional>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

constexpr std::int64_t kWeekS = 604800;
constexpr std::int64_t kToaStepS = 4096; // what satellites send

struct AlmanacOptions
{
    PortOptions port;
    std::string date; ///< empty: today
    std::string file;
    int week = 0;
    CLI::Option* weekGiven = nullptr;
    bool yes = false;
};

std::filesystem::path FolderOf(const Context& context)
{
    return Folders(context.world.folders).Program();
}

/// Where an almanac is put: in a dry run into a folder that goes away again, and is empty if it
/// could not be made.
std::filesystem::path TargetFolder(const Context& context, std::optional<ScratchFolder>& scratch)
{
    return context.dryRun ? scratch.emplace().Path() : FolderOf(context);
}

Failure NoScratchFolder()
{
    return FileFailure(Worded(text::kSayNoScratch), "fieldcore-cli doctor");
}

void ShowText(Host& host, AlmanacMessage message)
{
    if (message.text != 0) {
        host.ShowMessage(message.words.empty() ? Text(message.text) : message.words,
                         Text(message.caption), {BoxButtons::Ok, message.icon});
    }
}

/// Tells the user how it ended; that it was replaced only if it was.
void ShowResult(const Context& context, Host& host, AlmanacResult result)
{
    if (!context.dryRun || result != AlmanacResult::Done) {
        ShowText(host, MessageOf(result));
    }
}

Failure FailureOf(AlmanacResult result, const Context& context, const AlmanacStore& store)
{
    switch (result) {
    case AlmanacResult::Cancelled:
        return RequestFailure(CommandFault::Cancelled, "");
    case AlmanacResult::TooFew:
        return {ExitCode::Failed, "almanac-too-few", Worded(text::kSayAlmanacTooFew),
                Worded(text::kSayAlmanacTooFewHint)};
    case AlmanacResult::Done:
    case AlmanacResult::NotRead:
    case AlmanacResult::NotWritten:
    case AlmanacResult::NotReplaced:
    case AlmanacResult::BrokenOff:
        break;
    }
    return FileFailure(Worded(text::kSayAlmanacNotWritten, {AlmanacPath(FolderOf(context)).string(),
                                                            store.LastError().message()}),
                       "fieldcore-cli doctor");
}

/// The almanac as it now is, in short.
/// @param folder  where it was put
Report Summary(const Context& context, const std::filesystem::path& folder)
{
    CSurveyPlanCalc almanac;
    almanac.LoadAlmanac(AlmanacPath(folder));
    Report report;
    report.Add("file", Worded(text::kLabelFile),
               Value::Text(AlmanacPath(FolderOf(context)).string()));
    AddAlmanacSummary(report, almanac, GpsNow(context.world));
    return report;
}

/// A download that lost answers: how far it came, and why.
Failure LossOf(const AlmanacTally& tally, const std::string& consequence)
{
    Failure failure = RequestFailure(tally.fault, "");
    failure.message = Worded(text::kSayAlmanacBroke, {std::to_string(tally.received),
                                                      std::to_string(tally.received + tally.lost),
                                                      consequence, failure.message});
    return failure;
}

ExitCode Get(const Context& context, const AlmanacOptions& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    const auto onProgress = [&](int prn) {
        if (prn <= kMaxPrn) {
            context.output.Progress("[" + std::to_string(prn) + "/" + std::to_string(kMaxPrn) +
                                    "] " + Worded(text::kSayAlmanacOf, {std::to_string(prn)}));
        }
        return !context.world.StopRequested();
    };
    std::optional<ScratchFolder> scratch;
    const std::filesystem::path folder = TargetFolder(context, scratch);
    if (folder.empty()) {
        return context.output.Failed(NoScratchFolder());
    }
    AlmanacStore store(folder);
    const AlmanacResult result = store.Update(session.Command(), onProgress);
    const AlmanacTally& tally = store.Tally();
    context.output.Progress("");
    ShowResult(context, host, result);
    ShowText(host, MessageOf(result, tally));
    if (result == AlmanacResult::BrokenOff) {
        return context.output.Failed(LossOf(tally, Worded(text::kSayNothingReplaced)));
    }
    if (result != AlmanacResult::Done) {
        return context.output.Failed(FailureOf(result, context, store));
    }
    Report report = Summary(context, folder);
    report.Add("received", Worded(text::kLabelReceivedNow), Value::Integer(tally.received));
    report.Add("missing", Worded(text::kLabelUnknownToReceiver), Value::Integer(tally.missing));
    report.Add("lost", Worded(text::kLabelNotAnswered), Value::Integer(tally.lost));
    if (tally.lost > 0) {
        const Failure loss = LossOf(tally, Worded(text::kSayOnlyThese));
        if (ClassOf(tally.fault) == FaultClass::Gone) {
            return context.output.Failed(loss, &report);
        }
        context.output.Message("warning", "", loss.message, Colour::Yellow);
    }
    return Kept(context, report);
}

/// Says what is wrong with the age of an almanac at @p date: old ones, and those of a week that has
/// not come yet.
void ShowAge(const Context& context, Host& host, const CSurveyPlanCalc& almanac,
             const CGPSTime& date)
{
    const CGPSTime time = AlmanacTime(almanac);
    if (IsAlmanacOld(time, date)) {
        ShowText(host, {text::kAlmanacOld, text::kAlmanacOldCaption, BoxIcon::Exclamation});
    } else if (GpsSeconds(time) - GpsSeconds(GpsNow(context.world)) > kWeekS) {
        context.output.Message("warning", "",
                               "The almanac is of a week that has not come yet. If its file is an "
                               "old one, import it with --week.",
                               Colour::Yellow);
    }
}

ExitCode Show(const Context& context, const AlmanacOptions& options)
{
    const std::optional<CGPSTime> date =
        options.date.empty() ? GpsNow(context.world) : GpsMidnight(options.date);
    if (!date) {
        return context.output.Failed(UsageFailure("\"" + options.date + "\" is no date.",
                                                  "--date 2026-11-21, from 1980-01-06 to 2099"));
    }
    TerminalHost host(context.world, context.output);
    const std::filesystem::path file = AlmanacPath(FolderOf(context));
    CSurveyPlanCalc almanac;
    const KeptNavigation kept = LoadConstellations(FolderOf(context));
    const auto messages = kept.constellations.Records();
    if (kept.error) {
        context.output.Message("warning", "",
                               Worded(text::kSayMessagesDamaged, {kept.error->message}),
                               Colour::Yellow);
    }
    const bool isThere = almanac.LoadAlmanac(file);
    if (!isThere && messages.empty()) {
        ShowText(host, MessageOf(AlmanacResult::NotRead));
        std::error_code ignored;
        return context.output.Failed(
            FileFailure(std::filesystem::exists(file, ignored)
                            ? Worded(text::kSayAlmanacUnreadable, {file.string()})
                            : Worded(text::kSayNoAlmanac, {file.string()}),
                        Worded(text::kSayWaysToAlmanac)));
    }
    Report report;
    if (isThere) {
        ShowAge(context, host, almanac, *date);
        report.Add("file", Worded(text::kLabelFile), Value::Text(file.string()));
        AddAlmanacSummary(report, almanac, *date);
        AddAlmanacTable(report, almanac, *date);
    }
    if (!messages.empty()) {
        AddSystemTable(report, messages, static_cast<double>(GpsSeconds(*date)));
    }
    return context.output.Done(report);
}

/// Puts records in the almanac's place and says what came of it.
ExitCode Store(const Context& context, const std::vector<AlmanacRecord>& records,
               const AlmanacSource& source)
{
    TerminalHost host(context.world, context.output);
    std::optional<ScratchFolder> scratch;
    const std::filesystem::path folder = TargetFolder(context, scratch);
    if (folder.empty()) {
        return context.output.Failed(NoScratchFolder());
    }
    AlmanacStore store(folder);
    const AlmanacResult result = store.Import(records, source);
    ShowResult(context, host, result);
    if (result != AlmanacResult::Done) {
        return context.output.Failed(FailureOf(result, context, store));
    }
    CSurveyPlanCalc almanac;
    almanac.LoadAlmanac(AlmanacPath(folder));
    ShowAge(context, host, almanac, GpsNow(context.world));
    return Kept(context, Summary(context, folder));
}

ExitCode Import(const Context& context, const AlmanacOptions& options)
{
    if (IsNavigationFile(options.file)) {
        return ImportNavigation(context, options.file);
    }
    AlmanacWeek week;
    week.today = static_cast<int>(GpsSeconds(GpsNow(context.world)) / kWeekS);
    if (options.weekGiven->count() > 0) {
        week.full = options.week;
    }
    const AlmanacText text = LoadAlmanacText(options.file, week);
    if (text.error) {
        const TextError& error = *text.error;
        return context.output.Failed(FileFailure(
            "Nothing was replaced: " + options.file +
                (error.line > 0 ? ", line " + std::to_string(error.line) : "") +
                (error.field.empty() ? "" : ", \"" + error.field + "\"") + ": " + error.message,
            Worded(text::kSayWholeAlmanac)));
    }
    if (text.skipped > 0) {
        context.output.Note(std::to_string(text.skipped) +
                            " satellites with a PRN beyond 32 were left out.");
    }
    if (text.records.empty() && !text.qzss.empty()) {
        return ImportOthers(context, text.qzss);
    }
    if (const std::optional<Failure> failure = KeepOthers(context, text.qzss)) {
        return context.output.Failed(*failure);
    }
    return Store(
        context, text.records,
        {AlmanacOrigin::File, FromUtf8(std::filesystem::path(options.file).filename().string())});
}

ExitCode Sample(const Context& context, const AlmanacOptions& options)
{
    const std::filesystem::path file = AlmanacPath(FolderOf(context));
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored) && !options.yes && !context.dryRun) {
        if (!context.world.inIsTerminal || !context.world.errIsTerminal) {
            return context.output.Failed(
                UsageFailure(Worded(text::kSaySampleThere), Worded(text::kSayYesReplace)));
        }
        TerminalHost host(context.world, context.output);
        if (host.ShowMessage(L"Replace the almanac that is there by a made-up one?", L"",
                             {BoxButtons::YesNo, BoxIcon::Question}) != BoxAnswer::Yes) {
            return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""));
        }
    }
    const std::int64_t now = GpsSeconds(GpsNow(context.world));
    const std::int64_t toa = now % kWeekS / kToaStepS * kToaStepS;
    return Store(context,
                 NominalConstellation(kNominalSatellites, static_cast<int>(now / kWeekS),
                                      static_cast<std::uint32_t>(toa)),
                 {AlmanacOrigin::Nominal, {}});
}

} // namespace

Command AddAlmanacCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(
        program, "almanac", "The satellites' orbits, for planning: get, import, show",
        "  fieldcore-cli almanac get --port /dev/ttyUSB0   from a receiver\n"
        "  fieldcore-cli almanac import current.alm        from a YUMA, SEM or RINEX file\n"
        "  fieldcore-cli almanac sample                    a made-up one, to try things\n"
        "  fieldcore-cli almanac show                      what there is, and how old it is\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<AlmanacOptions>();

    CLI::App& get = AddParser(parser, "get", "Receive the almanac from a receiver",
                              "  fieldcore-cli almanac get --port /dev/ttyUSB0\n"
                              "  fieldcore-cli almanac get --port sim:\n");
    AddDryRun(get, "Receive it, show it, and replace nothing");
    options->port.AddTo(get);

    CLI::App& show =
        AddParser(parser, "show", "Each satellite of the almanac, and how old it is",
                  "  fieldcore-cli almanac show\n"
                  "  fieldcore-cli almanac show --date 2026-12-24   will it do then?\n");
    show.add_option("--date", options->date, "Count the age at the start of this day (now)")
        ->type_name("YYYY-MM-DD");

    CLI::App& import =
        AddParser(parser, "import", "Take orbits from a YUMA, SEM or RINEX navigation file",
                  "  fieldcore-cli almanac import current.alm\n"
                  "  fieldcore-cli almanac import today.rnx   of all systems\n"
                  "  fieldcore-cli almanac import old.alm --week 2300\n");
    import.add_option("FILE", options->file, "The file; which kind it is shows in it")
        ->type_name("")
        ->required();
    options->weekGiven =
        import
            .add_option("--week", options->week,
                        "Full GPS week, instead of the one in the file nearest to today")
            ->check(CLI::Range(0, 32767).description(""))
            ->type_name("N");

    AddDryRun(import, "Read it, show it, and replace nothing");

    CLI::App& sample =
        AddParser(parser, "sample", "Make one up: the constellation as it was laid out",
                  "  fieldcore-cli almanac sample\n"
                  "  fieldcore-cli almanac sample --yes   in place of a real one\n");
    CLI::Option* const yes =
        sample.add_flag("--yes", options->yes, "Replace an almanac without asking");
    AddDryRun(sample, "Show it, and replace nothing", yes);

    return {&parser, [=, &get, &show, &import](const Context& context) {
                return get.parsed()      ? Get(context, *options)
                       : show.parsed()   ? Show(context, *options)
                       : import.parsed() ? Import(context, *options)
                                         : Sample(context, *options);
            }};
}

} // namespace fieldcore::cli
