#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/SettingsAccess.h"
#include "cli/TerminalHost.h"
#include "cli/Utf8.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"
#include "core/settings/StoredPorts.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

/// A value may have no name, as a key's main value.
std::string ShownName(const NamedSetting& setting)
{
    return setting.name.empty() ? Worded(text::kWordNoName) : Printable(ToUtf8(setting.name));
}

std::string Tail(const std::wstring& path, std::size_t from)
{
    return ToUtf8(std::wstring_view(path).substr(from));
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
        words += indent + Printable(Tail(key.path, name)) + "\\\n";
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
Failure Missing(const SettingsAccess& access, const std::string& name)
{
    return {ExitCode::Failed, "setting-missing",
            Worded(name.empty() ? text::kSayKeyMissing : text::kSayValueMissing,
                   {ToUtf8(access.Key()), name}),
            "fieldcore-cli settings list"};
}

ExitCode List(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const std::optional<std::vector<SettingsKey>> keys = access.Tree();
    if (!keys) {
        return context.output.Failed(access.NotRead());
    }
    if (keys->empty() && !options.key.empty()) {
        return context.output.Failed(Missing(access, ""));
    }
    Report report;
    access.AddPlace(report);
    AddKeys(report, *keys);
    return context.output.Done(report, keys->empty() ? Worded(text::kSayNoSettings)
                                                     : TreeWords(*keys, access.Key()));
}

ExitCode ShowOne(const Context& context, const SettingsAccess& access, const std::string& name,
                 const SettingsValue& value, bool onlyTheValue)
{
    Report report;
    access.AddPlace(report);
    report.Add("name", text::kLabelName,
               Value::Word(name, name.empty() ? Worded(text::kWordNoName) : name));
    report.Add("type", text::kLabelType, Value::Text(TypeName(value)));
    report.Add("value", text::kLabelValue, ShownSetting(value));
    if (onlyTheValue) {
        const Value shown = ShownSetting(value);
        const auto* text = std::get_if<std::string>(&shown.GetData());
        return context.output.Done(report,
                                   (text != nullptr ? Printable(*text) : shown.Words()) + "\n");
    }
    return Kept(context, report);
}

ExitCode Get(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const SettingsRead read = access.Read(options.name);
    if (read.state == SettingsReadState::Missing) {
        return context.output.Failed(Missing(access, options.name));
    }
    if (read.state == SettingsReadState::Failed) {
        return context.output.Failed(access.NotRead());
    }
    return ShowOne(context, access, options.name, read.value, true);
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

ExitCode Set(const Context& context, const SettingsOptions& options)
{
    SettingsAccess access(context, options);
    const std::wstring name = FromUtf8(options.name);
    std::string type = options.type;
    const std::optional<Failure> closed = access.CannotWrite();
    if (closed && !context.dryRun) {
        return context.output.Failed(*closed);
    }
    const SettingsRead old = access.Read(options.name);
    if (type.empty() && old.state == SettingsReadState::Failed) {
        return context.output.Failed(
            FileFailure(Worded(text::kSayTypeUnread), Worded(text::kSayTypeUnreadHint)));
    }
    const bool keeps = type.empty() && old.state == SettingsReadState::Found;
    if (type.empty()) {
        type = keeps ? TypeName(old.value) : "text";
    }
    std::string fault;
    const std::optional<SettingsValue> value = Typed(type, options.value, fault);
    if (!value) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayNoValue, {options.value, type, fault}),
                         keeps ? Worded(text::kSayTypeSoFar, {type}) : ""));
    }
    if (context.dryRun) {
        return ShowOne(context, access, options.name, *value, false);
    }
    const SettingsKey key{access.Key(), {{name, *value}}};
    std::wstring refused;
    if (!StoreSettings(access.Store(), std::span(&key, 1), refused)) {
        return context.output.Failed(
            refused.empty() ? access.NotWritten()
                            : UsageFailure(Worded(text::kSaySettingsRefuse, {ToUtf8(refused)}),
                                           Worded(text::kSayTooLong)));
    }
    if (FoldCase(access.Key()) == FoldCase(HostBasePath() + L'\\' + kPortsKey)) {
        static_cast<void>(KnownPortNames(context.world, context.output)); // warns of a bad one
    }
    return ShowOne(context, access, options.name, *value, false);
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

ExitCode Delete(const Context& context, const SettingsOptions& options, bool isValue)
{
    if (options.key.find_first_not_of('\\') == std::string::npos && !isValue) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayNoKey), "fieldcore-cli settings list"));
    }
    const bool canAsk = context.world.inIsTerminal && context.world.errIsTerminal;
    if (!options.yes && !context.dryRun && !canAsk) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayDeleteNobody), Worded(text::kSayYesDelete)));
    }
    SettingsAccess access(context, options);
    const auto name = isValue ? std::optional(options.name) : std::nullopt;
    const std::optional<std::vector<SettingsKey>> doomed = Doomed(access, name);
    if (access.CannotRead() || !doomed) {
        return context.output.Failed(access.NotRead());
    }
    if (doomed->empty()) {
        return context.output.Failed(Missing(access, options.name));
    }
    Report report;
    report.Add("deleted", text::kLabelDeleted, Value::YesNo(!context.dryRun));
    access.AddPlace(report);
    AddKeys(report, *doomed);
    const std::string words = TreeWords(*doomed, access.Key());
    if (context.dryRun) {
        return context.output.Done(report, words);
    }
    if (const std::optional<Failure> failure = access.CannotWrite()) {
        return context.output.Failed(*failure);
    }
    TerminalHost host(context.world, context.output,
                      options.yes ? TerminalHost::Answers::AllYes : TerminalHost::Answers::Ask);
    if (!options.yes) {
        if (const auto failure = host.Ask(words + Worded(text::kAskDeleteThis), "", "")) {
            return context.output.Failed(*failure);
        }
    }
    const bool isDone = name ? access.Store().DeleteValue(access.Key(), FromUtf8(*name))
                             : access.Store().DeleteKey(access.Key());
    return isDone ? context.output.Done(report, Worded(text::kSayDeleted) + words)
                  : context.output.Failed(access.NotWritten());
}

using Options = std::shared_ptr<SettingsOptions>;

CLI::App& AddSub(CLI::App& parent, const Options& options, const std::string& name, int help)
{
    CLI::App& parser = AddParser(parent, name, help);
    AddFlag(parser, "--machine", options->machine, text::kOptMachine);
    return parser;
}

void AddKeyOptions(CLI::App& parser, const Options& options, bool isNeeded)
{
    CLI::Option* const key = AddText(parser, "KEY", options->key, "", text::kOptKey);
    if (isNeeded) {
        key->required();
    }
    AddFlag(parser, "--all", options->whole, text::kOptWholeKey);
}

CLI::Option* AddName(CLI::App& parser, const Options& options)
{
    return AddText(parser, "NAME", options->name, "", text::kOptName);
}

} // namespace

Command AddSettingsCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "settings", text::kHelpSettings);
    parser.require_subcommand(1);
    const auto options = std::make_shared<SettingsOptions>();

    CLI::App& list = AddSub(parser, options, "list", text::kHelpSettingsList);
    AddKeyOptions(list, options, false);

    CLI::App& get = AddSub(parser, options, "get", text::kHelpSettingsGet);
    AddKeyOptions(get, options, true);
    AddName(get, options)->required();

    CLI::App& set = AddSub(parser, options, "set", text::kHelpSettingsSet);
    AddKeyOptions(set, options, true);
    AddName(set, options)->required();
    AddText(set, "VALUE", options->value, "", text::kOptValue)->required();
    set.add_option("--type", options->type, Worded(text::kOptType))
        ->transform(
            CLI::IsMember(std::set<std::string>{"text", "number", "binary"}).description(""))
        ->type_name("TYPE");
    AddDryRun(set, text::kOptStoreDry);

    CLI::App& remove = AddSub(parser, options, "delete", text::kHelpSettingsDelete);
    AddKeyOptions(remove, options, true);
    const CLI::Option* const doomedName = AddName(remove, options);
    CLI::Option* const yes = AddFlag(remove, "--yes", options->yes, text::kOptYes);
    AddDryRun(remove, text::kOptDeleteDry, yes);

    CLI::App& save = AddSub(parser, options, "export", text::kHelpSettingsExport);
    AddText(save, "FILE", options->file, "", text::kOptExportTo);
    AddText(save, "--key", options->key, "KEY", text::kOptOnlyKey);
    AddFlag(save, "--all", options->whole, text::kOptFromRoot);
    CLI::Option* const replace = AddFlag(save, "--yes", options->yes, text::kOptReplaceFile);
    AddDryRun(save, text::kOptExportDry, replace);

    CLI::App& load = AddSub(parser, options, "import", text::kHelpSettingsImport);
    AddText(load, "FILE", options->file, "", text::kOptImportFrom)->required();
    AddDryRun(load, text::kOptSettingsDry);

    return {&parser, [=, &list, &get, &set, &remove, &save](const Context& context) {
                return list.parsed()     ? List(context, *options)
                       : get.parsed()    ? Get(context, *options)
                       : set.parsed()    ? Set(context, *options)
                       : remove.parsed() ? Delete(context, *options, doomedName->count() > 0)
                       : save.parsed()   ? ExportSettings(context, *options)
                                         : ImportSettings(context, *options);
            }};
}

} // namespace fieldcore::cli
