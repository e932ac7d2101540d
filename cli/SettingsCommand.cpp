#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/SettingsAccess.h"
#include "cli/TerminalHost.h"

#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"
#include "core/settings/StoredPorts.h"

#include <algorithm>

namespace fieldcore::cli {

namespace {

/// A value may have no name, as a key's main value.
std::string ShownName(const NamedSetting& setting)
{
    return setting.name.empty() ? Worded(text::kWordNoName) : Printable(ToUtf8(setting.name));
}

/// The keys as a tree, each two columns further in than the one it stands in.
std::string TreeWords(const std::vector<SettingsKey>& keys, const std::wstring& root)
{
    std::string words;
    for (const SettingsKey& key : keys) {
        const bool isRoot = key.path.size() <= root.size();
        const std::size_t start = isRoot ? 0 : root.size() + (root.empty() ? 0 : 1);
        const std::wstring below = isRoot ? L"" : key.path.substr(start);
        const auto depth = static_cast<std::size_t>(
            isRoot ? 0 : 1 + std::count(below.begin(), below.end(), L'\\'));
        const std::size_t name = isRoot ? 0 : start + below.rfind(L'\\') + 1;
        const std::string indent(2 * depth, ' ');
        words += indent + Printable(ToUtf8(key.path.substr(name))) + "\\\n";
        std::size_t width = 0;
        for (const NamedSetting& setting : key.values) {
            width = std::max(width, DisplayWidth(ShownName(setting)));
        }
        for (const NamedSetting& setting : key.values) {
            words += indent + "  " + Padded(ShownName(setting), width + 2) +
                     Padded(TypeName(setting.value), 8) + ShownSetting(setting.value).Words() +
                     "\n";
        }
    }
    return words;
}

/// What is not in the settings.
Failure Missing(const SettingsAccess& access, const std::string& name = {})
{
    return {ExitCode::Failed, "setting-missing",
            Worded(name.empty() ? text::kSayKeyMissing : text::kSayValueMissing,
                   {ToUtf8(access.Key()), name}),
            "fieldcore-cli settings list"};
}

Ending List(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const std::optional<std::vector<SettingsKey>> keys = access.Tree();
    if (!keys) {
        return access.NotRead();
    }
    if (keys->empty() && !options.key.empty()) {
        return Missing(access);
    }
    Report report;
    access.AddPlace(report);
    AddKeys(report, *keys);
    return context.output.Done(report, keys->empty() ? Worded(text::kSayNoSettings)
                                                     : TreeWords(*keys, access.Key()));
}

Report ReportOf(const SettingsAccess& access, const std::string& name, const SettingsValue& value)
{
    Report report;
    access.AddPlace(report);
    report.Add("name", text::kLabelName,
               Value::Word(name, name.empty() ? Worded(text::kWordNoName) : name));
    report.Add("type", text::kLabelType, Value::Text(TypeName(value)));
    report.Add("value", text::kLabelValue, ShownSetting(value));
    return report;
}

Ending Get(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const SettingsRead read = access.Read(*options.name);
    if (read.state == SettingsReadState::Missing) {
        return Missing(access, *options.name);
    }
    if (read.state == SettingsReadState::Failed) {
        return access.NotRead();
    }
    const Value shown = ShownSetting(read.value);
    const auto* text = std::get_if<std::string>(&shown.GetData());
    return context.output.Done(ReportOf(access, *options.name, read.value),
                               (text != nullptr ? Printable(*text) : shown.Words()) + "\n");
}

/// The value that the user typed, as @p type says.
std::optional<SettingsValue> Typed(const std::string& type, const std::string& typed,
                                   std::string& fault)
{
    if (type == "number") {
        const auto number = ParseSettingNumber(typed);
        fault = Worded(text::kSayNumberForm);
        return number ? std::optional<SettingsValue>(*number) : std::nullopt;
    }
    if (type == "binary") {
        const auto bytes = ParseSettingBytes(typed);
        fault = Worded(text::kSayBytesForm);
        return bytes ? std::optional<SettingsValue>(*bytes) : std::nullopt;
    }
    return FromUtf8(typed);
}

Ending Set(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    if (!access.Store().IsKept() && !context.dryRun) {
        return access.NotWritten();
    }
    std::string type = options.type;
    const SettingsRead old = access.Read(*options.name);
    if (type.empty() && old.state == SettingsReadState::Failed) {
        return FileFailure(text::kSayTypeUnread, text::kSayTypeUnreadHint);
    }
    const bool keeps = type.empty() && old.state == SettingsReadState::Found;
    if (type.empty()) {
        type = keeps ? TypeName(old.value) : "text";
    }
    std::string fault;
    const std::optional<SettingsValue> value = Typed(type, options.value, fault);
    if (!value) {
        return UsageFailure({text::kSayNoValue, {options.value, type, fault}},
                            keeps ? Worded(text::kSayTypeSoFar, {type}) : "");
    }
    const Report report = ReportOf(access, *options.name, *value);
    if (context.dryRun) {
        return context.output.Done(report);
    }
    const SettingsKey key{access.Key(), {{FromUtf8(*options.name), *value}}};
    std::wstring refused;
    if (!StoreSettings(access.Store(), std::span(&key, 1), refused)) {
        return refused.empty()
                   ? access.NotWritten()
                   : UsageFailure({text::kSaySettingsRefuse, {ToUtf8(refused)}}, text::kSayTooLong);
    }
    if (FoldCase(access.Key()) == FoldCase(HostBasePath() + L'\\' + kPortsKey)) {
        static_cast<void>(KnownPortNames(context.world, context.output)); // warns of a bad one
    }
    return Kept(context, report);
}

/// What a delete would take away; empty if there is nothing.
/// @return nothing if it cannot be read
std::optional<std::vector<SettingsKey>> Doomed(SettingsAccess& access,
                                               const std::optional<std::string>& name)
{
    if (!name) {
        return access.Tree();
    }
    const SettingsRead read = access.Read(*name);
    if (read.state == SettingsReadState::Missing) {
        return std::vector<SettingsKey>();
    }
    return std::vector{SettingsKey{access.Key(), {{FromUtf8(*name), read.value}}}};
}

Ending Delete(const Context& context, const SettingsOptions& options)
{
    if (options.key.find_first_not_of('\\') == std::string::npos && !options.name) {
        return UsageFailure(text::kSayNoKey, "fieldcore-cli settings list");
    }
    if (!options.yes && !context.dryRun && !context.world.CanAsk()) {
        return UsageFailure(text::kSayDeleteNobody, text::kSayYesDelete);
    }
    SettingsAccess access(context, options);
    const std::optional<std::vector<SettingsKey>> doomed = Doomed(access, options.name);
    if (!access.CanRead() || !doomed) {
        return access.NotRead();
    }
    if (doomed->empty()) {
        return Missing(access, options.name.value_or(""));
    }
    Report report;
    report.Add("deleted", text::kLabelDeleted, Value::YesNo(!context.dryRun));
    access.AddPlace(report);
    AddKeys(report, *doomed);
    const std::string words = TreeWords(*doomed, access.Key());
    if (context.dryRun) {
        return context.output.Done(report, words);
    }
    if (!access.Store().IsKept()) {
        return access.NotWritten();
    }
    if (!options.yes) {
        if (const auto failure =
                TerminalHost(context).Ask(words + Worded(text::kAskDeleteThis), "", "")) {
            return *failure;
        }
    }
    const bool isDone = options.name
                            ? access.Store().DeleteValue(access.Key(), FromUtf8(*options.name))
                            : access.Store().DeleteKey(access.Key());
    if (!isDone) {
        return access.NotWritten();
    }
    return context.output.Done(report, Worded(text::kSayDeleted) + words);
}

CLI::Option* AddKey(CLI::App& parser, SettingsOptions& options)
{
    AddFlag(parser, "--machine", options.machine, text::kOptMachine);
    CLI::Option* const key = AddText(parser, "KEY", options.key, "", text::kOptKey);
    AddFlag(parser, "--all", options.whole, text::kOptWholeKey);
    return key;
}

CLI::Option* AddKeyAndName(CLI::App& parser, SettingsOptions& options)
{
    AddKey(parser, options)->required();
    return AddText(parser, "NAME", options.name, "", text::kOptName);
}

} // namespace

Command AddSettingsCommand(CLI::App& program)
{
    return AddCommand<SettingsOptions>(
        program, {"settings", text::kHelpSettings},
        {{"list", text::kHelpSettingsList,
          [](CLI::App& parser, SettingsOptions& options) { AddKey(parser, options); }, List},
         {"get", text::kHelpSettingsGet,
          [](CLI::App& parser, SettingsOptions& options) {
              AddKeyAndName(parser, options)->required();
          },
          Get},
         {"set", text::kHelpSettingsSet,
          [](CLI::App& parser, SettingsOptions& options) {
              AddKeyAndName(parser, options)->required();
              AddText(parser, "VALUE", options.value, "", text::kOptValue)->required();
              AddWord(parser, "--type", options.type, {"text", "number", "binary"}, "TYPE",
                      text::kOptType);
              AddDryRun(parser, text::kOptStoreDry);
          },
          Set},
         {"delete", text::kHelpSettingsDelete,
          [](CLI::App& parser, SettingsOptions& options) {
              AddKeyAndName(parser, options);
              AddConsent(parser, options.yes, text::kOptDeleteDry);
          },
          Delete},
         {"export", text::kHelpSettingsExport,
          [](CLI::App& parser, SettingsOptions& options) {
              AddFlag(parser, "--machine", options.machine, text::kOptMachine);
              AddText(parser, "FILE", options.file, "", text::kOptExportTo);
              AddText(parser, "--key", options.key, "KEY", text::kOptOnlyKey);
              AddFlag(parser, "--all", options.whole, text::kOptFromRoot);
              CLI::Option* const replace =
                  AddFlag(parser, "--yes", options.yes, text::kOptReplaceFile);
              AddDryRun(parser, text::kOptExportDry, replace);
          },
          ExportSettings},
         {"import", text::kHelpSettingsImport,
          [](CLI::App& parser, SettingsOptions& options) {
              AddFlag(parser, "--machine", options.machine, text::kOptMachine);
              AddText(parser, "FILE", options.file, "", text::kOptImportFrom)->required();
              AddDryRun(parser, text::kOptSettingsDry);
          },
          ImportSettings}});
}

} // namespace fieldcore::cli
