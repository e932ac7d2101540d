#include "cli/SettingsAccess.h"
#include "cli/TerminalHost.h"

#include "core/platform/AtomicFile.h"
#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <span>
#include <utility>
#include <variant>
#include <vector>

namespace fieldcore::cli {

namespace {

namespace fs = std::filesystem;

void AddCounts(Report& report, const std::vector<SettingsKey>& keys)
{
    std::size_t values = 0;
    for (const SettingsKey& key : keys) {
        values += key.values.size();
    }
    report.Add("keyCount", text::kLabelKeys,
               Value::Integer(static_cast<std::int64_t>(keys.size())));
    report.Add("valueCount", text::kLabelValues, Value::Integer(static_cast<std::int64_t>(values)));
}

/// Puts @p text into @p file, whole. An existing file is replaced only if the user agrees.
std::optional<Failure> WriteText(const Context& context, const SettingsOptions& options,
                                 const std::string& text)
{
    const fs::path file(options.file);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return FileFailure({text::kSayNoFile, {options.file}}, text::kSayNoFileHint);
    }
    if (fs::exists(status) && !options.yes) {
        if (auto failure = TerminalHost(context).Ask({text::kAskReplace, {options.file}},
                                                     {text::kSayReplaceNobody, {options.file}},
                                                     text::kSayYesReplace)) {
            return failure;
        }
    }
    error = ReplaceFile(file, file.filename().string() + ".new", std::as_bytes(std::span(text)));
    if (error) {
        return FileFailure({text::kSayNotWritten, {options.file, Reason(error)}},
                           text::kSayLogHint);
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
                {fs::exists(file, error) ? text::kSayNoFile : text::kSayNotThere, {file}},
                text::kSayExportHint);
        }
        stream.open(file, std::ios::binary);
        in = &stream;
    }
    text.resize(kMaxSettingsText + 1);
    in->read(text.data(), static_cast<std::streamsize>(text.size()));
    const bool failed = World::HasFailed(*in) || (file != "-" && !stream.is_open());
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in->gcount(), 0)));
    return failed ? std::optional(FileFailure({text::kSayNotRead, {file}})) : std::nullopt;
}

/// What bringing back @p keys changes: a row a value that is new or gets another value.
Report::Table Changes(SettingsStore& store, const std::vector<SettingsKey>& keys)
{
    Report::Table table{"changes", text::kSayAllThere};
    for (const SettingsKey& key : keys) {
        for (const NamedSetting& setting : key.values) {
            const SettingsRead old = store.Get(key.path, setting.name);
            const bool isThere = old.state == SettingsReadState::Found;
            if (!isThere || old.value != setting.value) {
                table.rows.push_back(
                    {{"change", text::kHeadChange,
                      isThere ? Term("changed", text::kWordChanged) : Term("new", text::kWordNew)},
                     {"key", text::kHeadKey, Plain(key.path)},
                     {"name", text::kHeadName, Plain(setting.name)},
                     {"type", text::kHeadType, Value::Text(TypeName(setting.value))},
                     {"value", text::kHeadValue, ShownSetting(setting.value)}});
            }
        }
    }
    return table;
}

} // namespace

SettingsAccess::SettingsAccess(const Context& context, const SettingsOptions& options)
    : m_roots(context.world.Roots()),
      m_root(options.machine ? RootKey::LocalMachine : RootKey::CurrentUser)
{
    if (!options.whole) {
        m_key = HostBasePath();
    }
    if (!options.key.empty()) {
        m_key += m_key.empty() ? L"" : L"\\";
        m_key += FromUtf8(options.key);
    }
    const SettingsNotice notice = Store().TakeNotice();
    m_canRead = notice.kind != SettingsNotice::Kind::NotRead;
    if (!notice.IsEmpty()) {
        context.output.Warn(Translated(notice.Words()));
    }
}

void SettingsAccess::AddPlace(Report& report) const
{
    report.Add("root", text::kLabelRoot,
               m_root == RootKey::LocalMachine ? Term("machine", text::kWordMachine)
                                               : Term("user", text::kWordUser));
    report.Add("key", text::kLabelKey,
               Value::Word(ToUtf8(m_key), m_key.empty() ? Worded(text::kWordRoot) : ToUtf8(m_key)));
}

SettingsRead SettingsAccess::Read(const std::string& name)
{
    return m_canRead ? Store().Get(m_key, FromUtf8(name))
                     : SettingsRead{SettingsReadState::Failed, {}};
}

std::optional<std::vector<SettingsKey>> SettingsAccess::Tree()
{
    return m_canRead ? ReadSettingsTree(Store(), m_key) : std::nullopt;
}

Failure SettingsAccess::NotRead() const
{
    return FileFailure({text::kSayNotRead, {m_roots.File(m_root).string()}},
                       "fieldcore-cli doctor");
}

Failure SettingsAccess::NotWritten() const
{
    return FileFailure({text::kSayNothingStored, {m_roots.File(m_root).string()}},
                       "fieldcore-cli doctor");
}

std::string TypeName(const SettingsValue& value)
{
    return std::holds_alternative<std::wstring>(value)    ? "text"
           : std::holds_alternative<std::uint32_t>(value) ? "number"
                                                          : "binary";
}

Value Plain(const std::wstring& text)
{
    return Value::Word(ToUtf8(text), ToUtf8(text));
}

Value ShownSetting(const SettingsValue& value)
{
    if (const auto* number = std::get_if<std::uint32_t>(&value)) {
        return Value::Integer(*number);
    }
    const auto* words = std::get_if<std::wstring>(&value);
    std::string text = words != nullptr
                           ? ToUtf8(*words)
                           : FormatSettingBytes(std::get<std::vector<std::uint8_t>>(value));
    std::string shown = text.empty() ? Worded(text::kWordEmpty) : text;
    return Value::Word(std::move(text), std::move(shown));
}

void AddKeys(Report& report, const std::vector<SettingsKey>& keys)
{
    for (const SettingsKey& key : keys) {
        Report entry;
        entry.Add("key", "", Plain(key.path));
        Report::Table table{"values"};
        for (const NamedSetting& setting : key.values) {
            table.rows.push_back({{"name", "", Plain(setting.name)},
                                  {"type", "", Value::Text(TypeName(setting.value))},
                                  {"value", "", ShownSetting(setting.value)}});
        }
        entry.AddTable(std::move(table));
        report.AddEntry("keys", std::move(entry));
    }
}

Ending ExportSettings(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const std::optional<std::vector<SettingsKey>> keys = access.Tree();
    if (!keys) {
        return access.NotRead();
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
    const auto failure = WriteText(context, options, text);
    return failure ? context.output.Failed(*failure) : context.output.Done(report);
}

Ending ImportSettings(const Context& context, const SettingsOptions& options)
{
    std::string text;
    if (const auto failure = ReadText(context, options.file, text)) {
        return *failure;
    }
    const SettingsTextResult read = ParseSettingsText(text);
    if (read.fault) {
        return TextFailure(options.file == "-" ? "stdin" : options.file,
                           {static_cast<int>(read.fault->line), "", read.fault->message},
                           text::kSaySettingsHint);
    }
    SettingsAccess access(context, options);
    if (!access.CanRead()) {
        return access.NotRead();
    }
    Report report;
    report.Add("stored", text::kLabelStored, Value::YesNo(!context.dryRun));
    AddCounts(report, read.keys);
    report.AddTable(Changes(access.Store(), read.keys));
    if (context.dryRun) {
        return context.output.Done(report);
    }
    if (!access.Store().IsKept()) {
        return access.NotWritten();
    }
    std::wstring refused;
    if (!StoreSettings(access.Store(), read.keys, refused)) {
        return refused.empty()
                   ? access.NotWritten()
                   : FileFailure({text::kSaySettingsRefuse, {ToUtf8(refused)}}, text::kSayTooLong);
    }
    return Kept(context, report);
}

} // namespace fieldcore::cli
