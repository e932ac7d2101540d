#include "cli/SettingsAccess.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/platform/AtomicFile.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <istream>
#include <utility>

namespace fieldcore::cli {

namespace {

namespace fs = std::filesystem;

std::size_t CountValues(const std::vector<SettingsKey>& keys)
{
    std::size_t count = 0;
    for (const SettingsKey& key : keys) {
        count += key.values.size();
    }
    return count;
}

void AddCounts(Report& report, const std::vector<SettingsKey>& keys)
{
    report.Add("keyCount", text::kLabelKeys,
               Value::Integer(static_cast<std::int64_t>(keys.size())));
    report.Add("valueCount", text::kLabelValues,
               Value::Integer(static_cast<std::int64_t>(CountValues(keys))));
}

/// Puts @p text into @p file, whole. An existing file is replaced only if the user agrees.
std::optional<Failure> WriteText(const Context& context, const SettingsOptions& options,
                                 const std::string& text)
{
    const fs::path file(options.file);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return FileFailure(Worded(text::kSayNoFile, {options.file}), Worded(text::kSayNoFileHint));
    }
    if (fs::exists(status) && !options.yes) {
        TerminalHost host(context.world, context.output);
        if (std::optional<Failure> failure = host.Ask(
                Worded(text::kAskReplace, {options.file}),
                Worded(text::kSayReplaceNobody, {options.file}), Worded(text::kSayYesReplace))) {
            return failure;
        }
    }
    AtomicFile target(file, file.filename().string() + ".new");
    error = target.Open();
    if (!error) {
        error = target.Write(text);
    }
    if (!error) {
        error = target.Commit();
    }
    if (error) {
        return FileFailure(Worded(text::kSayNotWritten, {options.file, Reason(error)}),
                           Worded(text::kSayLogHint));
    }
    return std::nullopt;
}

/// @param text  what stands in @p file, or on stdin if that is "-"
std::optional<Failure> ReadText(const Context& context, const std::string& file, std::string& text)
{
    std::ifstream stream;
    std::istream* in = context.world.in;
    if (file != "-") {
        std::error_code error;
        if (!fs::is_regular_file(file, error)) {
            return FileFailure(
                Worded(fs::exists(file, error) ? text::kSayNoFile : text::kSayNotThere, {file}),
                Worded(text::kSayExportHint));
        }
        stream.open(file, std::ios::binary);
        in = &stream;
    }
    text.resize(kMaxSettingsText + 1);
    in->read(text.data(), static_cast<std::streamsize>(text.size()));
    const bool failed = World::HasFailed(*in) || (file != "-" && !stream.is_open());
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in->gcount(), 0)));
    return failed ? std::optional(FileFailure(Worded(text::kSayNotRead, {file}))) : std::nullopt;
}

/// What bringing back @p keys changes: a row a value that is new or gets another value.
Report::Table Changes(SettingsStore& store, const std::vector<SettingsKey>& keys)
{
    Report::Table table{"changes",
                        Worded(text::kSayAllThere),
                        {{"change", text::kHeadChange},
                         {"key", text::kHeadKey},
                         {"name", text::kHeadName},
                         {"type", text::kHeadType},
                         {"value", text::kHeadValue}},
                        {}};
    for (const SettingsKey& key : keys) {
        for (const NamedSetting& setting : key.values) {
            const SettingsRead old = store.Get(key.path, setting.name);
            const bool isThere = old.state == SettingsReadState::Found;
            if (!isThere || old.value != setting.value) {
                table.rows.push_back({isThere ? Value::Word("changed", Worded(text::kWordChanged))
                                              : Value::Word("new", Worded(text::kWordNew)),
                                      Value::Word(ToUtf8(key.path), ToUtf8(key.path)),
                                      Value::Word(ToUtf8(setting.name), ToUtf8(setting.name)),
                                      Value::Text(TypeName(setting.value)),
                                      ShownSetting(setting.value)});
            }
        }
    }
    return table;
}

} // namespace

ExitCode ExportSettings(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const std::optional<std::vector<SettingsKey>> keys = access.Tree();
    if (!keys) {
        return context.output.Failed(access.NotRead());
    }
    const std::string text = FormatSettingsText(*keys);
    Report report;
    access.AddPlace(report);
    AddCounts(report, *keys);
    if (options.file.empty()) {
        report.Add("text", text::kLabelText, Value::Text(text));
        return context.output.Done(report, text);
    }
    report.Add("file", text::kLabelFile, Value::Text(options.file));
    if (context.dryRun) {
        return context.output.Done(report);
    }
    const std::optional<Failure> failure = WriteText(context, options, text);
    return failure ? context.output.Failed(*failure) : context.output.Done(report);
}

ExitCode ImportSettings(const Context& context, const SettingsOptions& options)
{
    std::string text;
    if (const std::optional<Failure> failure = ReadText(context, options.file, text)) {
        return context.output.Failed(*failure);
    }
    const SettingsTextResult read = ParseSettingsText(text);
    if (read.fault) {
        return context.output.Failed(
            TextFailure(options.file == "-" ? "stdin" : options.file,
                        {static_cast<int>(read.fault->line), "", read.fault->message},
                        Worded(text::kSaySettingsHint)));
    }
    SettingsAccess access(context, options);
    if (const std::optional<Failure> failure = access.CannotRead()) {
        return context.output.Failed(*failure);
    }
    Report report;
    report.Add("stored", text::kLabelStored, Value::YesNo(!context.dryRun));
    AddCounts(report, read.keys);
    report.AddTable(Changes(access.Store(), read.keys));
    if (context.dryRun) {
        return context.output.Done(report);
    }
    if (const std::optional<Failure> failure = access.CannotWrite()) {
        return context.output.Failed(*failure);
    }
    std::wstring refused;
    if (!StoreSettings(access.Store(), read.keys, refused)) {
        return context.output.Failed(
            refused.empty() ? access.NotWritten()
                            : FileFailure(Worded(text::kSaySettingsRefuse, {ToUtf8(refused)}),
                                          Worded(text::kSayTooLong)));
    }
    return Kept(context, report);
}

} // namespace fieldcore::cli
