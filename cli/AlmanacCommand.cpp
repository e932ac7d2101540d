#include "cli/AlmanacReport.h"
#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/ScratchFolder.h"
#include "cli/TerminalHost.h"

#include "core/orbits/NavigationFile.h"
#include "core/orbits/NavigationText.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/AlmanacText.h"
#include "core/planning/AlmanacTime.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"

#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore::cli {

namespace {

struct AlmanacOptions
{
    PortOptions port;
    std::string date; ///< empty: today
    std::string file;
    std::optional<int> week; ///< else that of the file
    bool yes = false;
};

std::filesystem::path FolderOf(const Context& context)
{
    return context.world.GetFolders().Program();
}

void ShowText(const Context& context, const AlmanacMessage& message)
{
    if (message.text != 0) {
        TerminalHost(context).ShowMessage(message.words.empty() ? Text(message.text)
                                                                : message.words,
                                          Text(message.caption), {BoxButtons::Ok, message.icon});
    }
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

/// Says what is wrong with the age of an almanac at @p date: old ones, and those of a week that has
/// not come yet.
void ShowAge(const Context& context, const CSurveyPlanCalc& almanac, const CGPSTime& date)
{
    const CGPSTime time = AlmanacTime(almanac);
    if (IsAlmanacOld(time, date)) {
        ShowText(context, {text::kAlmanacOld, text::kAlmanacOldCaption, BoxIcon::Exclamation});
    } else if (time.GetUtcTime() - GpsNow(context.world).GetUtcTime() > CTimeSpan(7, 0, 0, 0)) {
        context.output.Warn(text::kSayWeekToCome);
    }
}

/// Puts an almanac in place, in a dry run into a folder that goes away again, and tells what came
/// of it.
Ending Put(const Context& context, const std::function<AlmanacResult(AlmanacStore&)>& put)
{
    std::optional<ScratchFolder> scratch;
    const std::filesystem::path folder =
        context.dryRun ? scratch.emplace().Path() : FolderOf(context);
    if (folder.empty()) {
        return FileFailure(text::kSayNoScratch, "fieldcore-cli doctor");
    }
    AlmanacStore store(folder);
    const AlmanacResult result = put(store);
    const AlmanacTally& tally = store.Tally();
    context.output.Progress("");
    if (!context.dryRun || result != AlmanacResult::Done) { // it was replaced only then
        ShowText(context, MessageOf(result));
    }
    ShowText(context, MessageOf(result, tally));
    if (result == AlmanacResult::BrokenOff) {
        return LossOf(tally, Worded(text::kSayNothingReplaced));
    }
    if (result != AlmanacResult::Done) {
        return AlmanacFailure(result, store, AlmanacPath(FolderOf(context)));
    }
    CSurveyPlanCalc almanac;
    almanac.LoadAlmanac(AlmanacPath(folder));
    Report report;
    report.Add("file", text::kLabelFile, Value::Text(AlmanacPath(FolderOf(context)).string()));
    AddAlmanacSummary(report, almanac, GpsNow(context.world));
    if (tally.received == 0) { // it is not from a receiver
        ShowAge(context, almanac, GpsNow(context.world));
        return Kept(context, report);
    }
    report.Add("received", text::kLabelReceivedNow, Value::Integer(tally.received));
    report.Add("missing", text::kLabelUnknownToReceiver, Value::Integer(tally.missing));
    report.Add("lost", text::kLabelNotAnswered, Value::Integer(tally.lost));
    if (tally.lost > 0) {
        const Failure loss = LossOf(tally, Worded(text::kSayOnlyThese));
        if (ClassOf(tally.fault) == FaultClass::Gone) {
            return context.output.Failed(loss, &report);
        }
        context.output.Warn(loss.message);
    }
    return Kept(context, report);
}

Ending Get(const Context& context, const AlmanacOptions& options)
{
    PortSession session(context, options.port);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    return Put(context, [&](AlmanacStore& store) {
        return store.Update(session.Command(), [&](int prn) {
            if (prn <= kMaxPrn) {
                context.output.ProgressOf(prn, kMaxPrn,
                                          {text::kSayAlmanacOf, {std::to_string(prn)}});
            }
            return !context.world.StopRequested();
        });
    });
}

Ending Show(const Context& context, const AlmanacOptions& options)
{
    CGPSTime date = GpsNow(context.world);
    if (!options.date.empty()) {
        std::chrono::sys_days day;
        if (const auto failure = ReadDate(options.date, 1, context.world, day)) {
            return *failure;
        }
        date = GpsMidnight(day);
    }
    const std::filesystem::path file = AlmanacPath(FolderOf(context));
    CSurveyPlanCalc almanac;
    const KeptNavigation kept = LoadConstellations(FolderOf(context));
    const auto messages = kept.constellations.Records();
    if (kept.error) {
        context.output.Warn({text::kSayMessagesDamaged, {Translated(kept.error->message)}});
    }
    const bool isThere = almanac.LoadAlmanac(file);
    if (!isThere && messages.empty()) {
        ShowText(context, MessageOf(AlmanacResult::NotRead));
        std::error_code ignored;
        return FileFailure(std::filesystem::exists(file, ignored)
                               ? Worded(text::kSayAlmanacUnreadable, {file.string()})
                               : Worded(text::kSayNoAlmanac, {file.string()}),
                           text::kSayWaysToAlmanac);
    }
    Report report;
    if (isThere) {
        ShowAge(context, almanac, date);
        report.Add("file", text::kLabelFile, Value::Text(file.string()));
        AddAlmanacSummary(report, almanac, date);
        AddAlmanacTable(report, almanac, date);
    }
    if (!messages.empty()) {
        AddSystemTable(report, messages, static_cast<double>(GpsSeconds(date)));
    }
    return context.output.Done(report);
}

std::string LettersOf(std::span<const NavigationRecord> records)
{
    SystemSet systems;
    for (const NavigationRecord& record : records) {
        systems.set(static_cast<std::size_t>(record.satellite.system));
    }
    return TextOf(systems);
}

double NowS(const Context& context)
{
    return static_cast<double>(GpsSeconds(GpsNow(context.world)));
}

/// Adds @p records to what is kept, unless this is a dry run.
std::optional<Failure> Keep(const Context& context, std::span<const NavigationRecord> records)
{
    const std::filesystem::path folder = FolderOf(context);
    if (LoadConstellations(folder).error) {
        context.output.Warn(text::kSayMessagesLost);
    }
    if (context.dryRun) {
        return std::nullopt;
    }
    if (const std::error_code error = KeepMessages(folder, records, NowS(context))) {
        return FileFailure(
            {text::kSayMessagesNotKept, {NavigationPath(folder).string(), Reason(error)}},
            "fieldcore-cli doctor");
    }
    return std::nullopt;
}

/// Adds @p records to what is kept and tells of them.
Ending Take(const Context& context, std::span<const NavigationRecord> records)
{
    if (const auto failure = Keep(context, records)) {
        return *failure;
    }
    Report report;
    report.Add("file", text::kLabelFile, Value::Text(NavigationPath(FolderOf(context)).string()));
    AddSystemTable(report, records, NowS(context));
    context.output.Note({text::kSayForSystems, {LettersOf(records)}});
    return Kept(context, report);
}

std::vector<NavigationRecord> MessagesOf(const Context& context,
                                         std::span<const AlmanacRecord> records)
{
    std::vector<NavigationRecord> messages;
    for (const AlmanacRecord& record : records) {
        if (const auto message = MessageOf(record, NowS(context))) {
            messages.push_back(*message);
        }
    }
    return messages;
}

/// Whether @p file is a navigation file, by its content.
bool IsNavigationFile(const std::string& file)
{
    constexpr std::size_t kFirstLine = 256;
    const auto start = ReadWholeFile(file, kFirstLine);
    return start &&
           LooksLikeNavigation({reinterpret_cast<const char*>(start->data()), start->size()});
}

/// Adds the messages of a navigation file to those that are kept.
Ending ImportNavigation(const Context& context, const std::string& file)
{
    const NavigationText text = LoadNavigation(file);
    if (text.error) {
        return TextFailure(file, *text.error, text::kSayWholeNavigation);
    }
    if (const int other = text.otherSystems + text.otherMessages; other > 0) {
        context.output.Note({text::kSayMessagesOther, {std::to_string(other)}});
    }
    if (text.firstOdd) {
        context.output.Note({text::kSayMessagesOdd,
                             {std::to_string(text.odd), std::to_string(text.firstOdd->line),
                              text.firstOdd->field}});
    }
    return Take(context, text.records);
}

Ending Import(const Context& context, const AlmanacOptions& options)
{
    if (IsNavigationFile(options.file)) {
        return ImportNavigation(context, options.file);
    }
    AlmanacWeek week;
    week.today = GpsNow(context.world).GetGpsWeek();
    week.full = options.week;
    const AlmanacText text = LoadAlmanacText(options.file, week);
    if (text.error) {
        return TextFailure(options.file, *text.error, text::kSayWholeAlmanac);
    }
    if (text.skipped > 0) {
        context.output.Note({text::kSayPrnBeyond, {std::to_string(text.skipped)}});
    }
    if (!text.qzss.empty()) { // they stand beside GPS, or alone
        const std::vector<NavigationRecord> messages = MessagesOf(context, text.qzss);
        if (text.records.empty()) {
            return Take(context, messages);
        }
        context.output.Note({text::kSayQzssTaken, {std::to_string(text.qzss.size())}});
        if (const auto failure = Keep(context, messages)) {
            return *failure;
        }
    }
    const std::string name = std::filesystem::path(options.file).filename().string();
    return Put(context, [&](AlmanacStore& store) {
        return store.Import(text.records, {AlmanacOrigin::File, FromUtf8(name)});
    });
}

Ending Sample(const Context& context, const AlmanacOptions& options)
{
    const std::filesystem::path file = AlmanacPath(FolderOf(context));
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored) && !options.yes && !context.dryRun) {
        if (const auto failure = TerminalHost(context).Ask(text::kAskSample, text::kSaySampleThere,
                                                           text::kSayYesReplace)) {
            return *failure;
        }
    }
    return Put(context, [&](AlmanacStore& store) {
        return store.Import(NominalAlmanac(context.world.GetClock().Utc()),
                            {AlmanacOrigin::Nominal, {}});
    });
}

} // namespace

Command AddAlmanacCommand(CLI::App& program)
{
    return AddCommand<AlmanacOptions>(
        program, {"almanac", text::kHelpAlmanac},
        {{"get", text::kHelpAlmanacGet,
          [](CLI::App& parser, AlmanacOptions& options) {
              AddDryRun(parser, text::kOptGetDry);
              options.port.AddTo(parser);
          },
          Get},
         {"show", text::kHelpAlmanacShow,
          [](CLI::App& parser, AlmanacOptions& options) {
              AddText(parser, "--date", options.date, "DATE", text::kOptAgeDate);
          },
          Show},
         {"import", text::kHelpAlmanacImport,
          [](CLI::App& parser, AlmanacOptions& options) {
              AddText(parser, "FILE", options.file, "", text::kOptAlmanacFile)->required();
              AddText(parser, "--week", options.week, "N", text::kOptWeek)
                  ->check(CLI::Range(0, 32767).description(""));
              AddDryRun(parser, text::kOptImportDry);
          },
          Import},
         {"sample", text::kHelpAlmanacSample,
          [](CLI::App& parser, AlmanacOptions& options) {
              CLI::Option* const yes = AddFlag(parser, "--yes", options.yes, text::kOptSampleYes);
              AddDryRun(parser, text::kOptSampleDry, yes);
          },
          Sample}});
}

} // namespace fieldcore::cli
