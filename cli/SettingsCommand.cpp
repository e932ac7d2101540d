#include "cli/Command.h"
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
    return setting.name.empty() ? "(no name)" : Printable(ToUtf8(setting.name));
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
            name.empty()
                ? "There is no key " + ToUtf8(access.Key()) + "."
                : "There is no value " + name + " in the key " + ToUtf8(access.Key()) + ".",
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
    report.Add("name", Worded(text::kLabelName),
               Value::Word(name, name.empty() ? "(no name)" : name));
    report.Add("type", Worded(text::kLabelType), Value::Text(TypeName(value)));
    report.Add("value", Worded(text::kLabelValue), ShownSetting(value));
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
        fault = "A number is 0 to 4294967295, or 0x0 to 0xFFFFFFFF.";
        return number ? std::optional<SettingsValue>(*number) : std::nullopt;
    }
    if (type == "binary") {
        const auto bytes = ParseSettingBytes(typed);
        fault = "Bytes are two hexadecimal digits each, such as \"00 FF 1A\".";
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
            FileFailure("Nothing was stored: the value that is there cannot be read, nor its type.",
                        "--type replaces it by one of that type"));
    }
    const bool keeps = type.empty() && old.state == SettingsReadState::Found;
    if (type.empty()) {
        type = keeps ? TypeName(old.value) : "text";
    }
    std::string fault;
    const std::optional<SettingsValue> value = Typed(type, options.value, fault);
    if (!value) {
        return context.output.Failed(UsageFailure(
            "\"" + options.value + "\" is no " + type + " value. " + fault,
            keeps ? "The value has been a " + type + " so far; --type text makes it a text." : ""));
    }
    if (context.dryRun) {
        return ShowOne(context, access, options.name, *value, false);
    }
    const SettingsKey key{access.Key(), {{name, *value}}};
    std::wstring refused;
    if (!StoreSettings(access.Store(), std::span(&key, 1), refused)) {
        return context.output.Failed(
            refused.empty()
                ? access.NotWritten()
                : UsageFailure("The settings refuse " + ToUtf8(refused) + ".",
                               "A name has at most 255 characters, a value a megabyte."));
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
    report.Add("deleted", Worded(text::kLabelDeleted), Value::YesNo(!context.dryRun));
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
    if (!options.yes &&
        host.ShowMessage(FromUtf8(words + "Delete this?"), L"",
                         {BoxButtons::YesNo, BoxIcon::Question}) != BoxAnswer::Yes) {
        return context.output.Failed({ExitCode::Cancelled, "cancelled", "Cancelled."});
    }
    const bool isDone = name ? access.Store().DeleteValue(access.Key(), FromUtf8(*name))
                             : access.Store().DeleteKey(access.Key());
    return isDone ? context.output.Done(report, "Deleted:\n" + words)
                  : context.output.Failed(access.NotWritten());
}

using Options = std::shared_ptr<SettingsOptions>;

CLI::App& AddSub(CLI::App& parent, const Options& options, const std::string& name,
                 const std::string& purpose, const std::string& examples)
{
    CLI::App& parser = AddParser(parent, name, purpose, examples);
    parser.add_flag("--machine", options->machine,
                    "The settings that all users of the machine share, not your own");
    return parser;
}

void AddKeyOptions(CLI::App& parser, const Options& options, bool isNeeded)
{
    CLI::Option* const key =
        parser.add_option("KEY", options->key, "A key, with \\ between the names of its path")
            ->type_name("");
    if (isNeeded) {
        key->required();
    }
    parser.add_flag("--all", options->whole,
                    "KEY counts from the root, not from the library's own key");
}

CLI::Option* AddName(CLI::App& parser, const Options& options)
{
    return parser.add_option("NAME", options->name, "The name of a value")->type_name("");
}

} // namespace

Command AddSettingsCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(
        program, "settings", "Look at the settings, change, save and bring them back",
        "  fieldcore-cli settings list                        what is set\n"
        "  fieldcore-cli settings set Ports COM3 /dev/serial/by-id/usb-receiver\n"
        "                                                     what COM3 means from now on\n"
        "  fieldcore-cli settings get Ports COM3              one value\n"
        "  fieldcore-cli settings export saved.txt            all of them, as readable text\n"
        "  fieldcore-cli settings import saved.txt --dry-run  what would bringing them back "
        "change\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<SettingsOptions>();

    CLI::App& list = AddSub(parser, options, "list", "Show a key and what is below it",
                            "  fieldcore-cli settings list\n"
                            "  fieldcore-cli settings list Ports\n"
                            "  fieldcore-cli settings list --all --machine\n");
    AddKeyOptions(list, options, false);

    CLI::App& get = AddSub(parser, options, "get", "Show one value",
                           "  fieldcore-cli settings get Ports COM3\n");
    AddKeyOptions(get, options, true);
    AddName(get, options)->required();

    CLI::App& set = AddSub(parser, options, "set", "Store one value",
                           "  fieldcore-cli settings set Ports COM3 /dev/ttyUSB0\n"
                           "  fieldcore-cli settings set Plan Interval 0x10 --type number\n"
                           "  fieldcore-cli settings set Plan Mask \"00 FF 1A\" --type binary\n");
    AddKeyOptions(set, options, true);
    AddName(set, options)->required();
    set.add_option("VALUE", options->value, "What to store")->type_name("")->required();
    set.add_option("--type", options->type,
                   "text, number or binary (the one that it has, else text)")
        ->transform(
            CLI::IsMember(std::set<std::string>{"text", "number", "binary"}).description(""))
        ->type_name("TYPE");
    AddDryRun(set, "Store nothing, show what would be");

    CLI::App& remove = AddSub(parser, options, "delete", "Delete a value, or a key with all below",
                              "  fieldcore-cli settings delete Ports COM3\n"
                              "  fieldcore-cli settings delete Ports --dry-run\n");
    AddKeyOptions(remove, options, true);
    const CLI::Option* const doomedName = AddName(remove, options);
    CLI::Option* const yes = remove.add_flag("--yes", options->yes, "Do not ask");
    AddDryRun(remove, "Delete nothing, show what would be", yes);

    CLI::App& save = AddSub(parser, options, "export", "Write settings as text",
                            "  fieldcore-cli settings export             to stdout\n"
                            "  fieldcore-cli settings export saved.txt\n"
                            "  fieldcore-cli settings export --all saved.txt\n");
    save.add_option("FILE", options->file, "Where to (stdout)")->type_name("");
    save.add_option("--key", options->key, "Only this key and what is below it")->type_name("KEY");
    save.add_flag("--all", options->whole, "From the root on, not from the library's own key");
    CLI::Option* const replace =
        save.add_flag("--yes", options->yes, "Replace FILE without asking");
    AddDryRun(save, "Write no FILE, show how much would be in it", replace);

    CLI::App& load = AddSub(parser, options, "import", "Store what export has written",
                            "  fieldcore-cli settings import saved.txt --dry-run\n"
                            "  fieldcore-cli settings import saved.txt\n"
                            "  fieldcore-cli settings import - <saved.txt\n");
    load.add_option("FILE", options->file, "What export has written; - is stdin")
        ->type_name("")
        ->required();
    AddDryRun(load, "Store nothing, show what would change");

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
