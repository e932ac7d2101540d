#include "cli/CommandLine.h"

#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"

#include "core/platform/Version.h"
#include "simulator/Reference.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

constexpr const char* kProgram = "fieldcore-cli";
constexpr const char* kDryRun = "--dry-run";
constexpr const char* kPort = "--port";
constexpr const char* kLanguage = "--language";

/// The name of the command as it was typed: "sim run"; empty for the program itself.
std::string CommandName(const CLI::App& parser)
{
    std::string name;
    for (const CLI::App* app = &parser; app->get_parent() != nullptr; app = app->get_parent()) {
        name.insert(0, app->get_name() + (name.empty() ? "" : " "));
    }
    return name;
}

/// How many letters were left out, added, wrong, or swapped with the next one.
std::size_t Mistypings(const std::string& typed, const std::string& meant)
{
    std::vector<std::vector<std::size_t>> costs(typed.size() + 1,
                                                std::vector<std::size_t>(meant.size() + 1));
    for (std::size_t i = 0; i <= typed.size(); ++i) {
        for (std::size_t j = 0; j <= meant.size(); ++j) {
            std::size_t& cost = costs[i][j] = std::max(i, j);
            if (i == 0 || j == 0) {
                continue;
            }
            const std::size_t wrong = typed[i - 1] == meant[j - 1] ? 0 : 1;
            cost =
                std::min({costs[i - 1][j] + 1, costs[i][j - 1] + 1, costs[i - 1][j - 1] + wrong});
            if (i > 1 && j > 1 && typed[i - 1] == meant[j - 2] && typed[i - 2] == meant[j - 1]) {
                cost = std::min(cost, costs[i - 2][j - 2] + 1);
            }
        }
    }
    return costs[typed.size()][meant.size()];
}

/// "Did you mean ...?"; empty if nothing is near enough.
std::string Guess(const std::string& typed, const std::vector<std::string>& known)
{
    constexpr std::size_t kLongest = 30; // of what could be meant
    if (typed.size() > kLongest) {
        return "";
    }
    std::string nearest;
    std::size_t fewest = std::max<std::size_t>(1, typed.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t mistypings = Mistypings(typed, candidate);
        if (mistypings < fewest) {
            fewest = mistypings;
            nearest = candidate;
        }
    }
    return nearest.empty() ? nearest : Worded(text::kSayDidYouMean, {nearest});
}

std::vector<std::string> NamesBelow(const CLI::App& parser)
{
    std::vector<std::string> names;
    for (const CLI::App* child : parser.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(child->get_name());
    }
    return names;
}

std::string HelpOf(const CLI::App& parser)
{
    const std::string name = CommandName(parser);
    return "fieldcore-cli " + name + (name.empty() ? "" : " ") + "--help";
}

/// The option that @p complaint of the parser begins or ends with.
const CLI::Option* OptionIn(const CLI::App& parser, const std::string& complaint)
{
    for (const CLI::App* app = &parser; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            const std::string name = option->get_name();
            const std::size_t at = complaint.find(name);
            const std::string_view before = std::string_view(complaint).substr(0, at);
            const char behind = at == std::string::npos ? '?' : (complaint + ':')[at + name.size()];
            if ((behind == ':' || behind == ' ') &&
                (before.empty() || before == "Could not convert: ")) {
                return option;
            }
        }
    }
    return nullptr;
}

/// "--count N: how many, 1 to 10000 (1)"
std::string Described(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return option.get_name() + (type.empty() ? "" : " " + type) + ": " + option.get_description();
}

Failure NotExpected(const CLI::App& parser)
{
    const CLI::App* program = &parser;
    while (program->get_parent() != nullptr) {
        program = program->get_parent();
    }
    const std::vector<std::string> left = program->remaining(true);
    const std::string word = left.empty() ? "" : left.front();
    const std::string name = CommandName(parser);
    if (!name.empty() && parser.get_option_no_throw(word) != nullptr) {
        return UsageFailure({text::kSayBehindCommand, {word}},
                            "fieldcore-cli " + name + " " + word + " ...");
    }
    std::vector<std::string> known = NamesBelow(parser);
    for (const CLI::App* app = &parser; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            known.push_back(option->get_name());
        }
    }
    return UsageFailure({text::kSayNotTaken, {name.empty() ? "fieldcore-cli" : name, word}},
                        Guess(word.substr(0, word.find('=')), known) + HelpOf(parser));
}

Failure BadValue(const CLI::App& parser, const CLI::Option& option)
{
    const std::string value = Joined(option.results());
    return UsageFailure(
        {value.empty() ? text::kSayNeedsValue : text::kSayCannotBe, {option.get_name(), value}},
        Described(option) + "\n         " + HelpOf(parser));
}

Failure Missing(const CLI::App& parser, const std::string& complaint)
{
    if (const CLI::Option* const option = OptionIn(parser, complaint)) {
        return UsageFailure({text::kSayMissing, {option->get_name()}},
                            Described(*option) + "\n         " + HelpOf(parser));
    }
    return UsageFailure({text::kSayNeedsOneOf, {CommandName(parser), Joined(NamesBelow(parser))}},
                        HelpOf(parser));
}

/// "--yes excludes --dry-run" in our words.
Failure Related(const CLI::App& parser, const std::string& complaint, std::string_view verb, int id)
{
    const std::size_t at = complaint.find(verb);
    Failure failure = UsageFailure(
        at == std::string::npos
            ? Worded(text::kSayNotUnderstood)
            : Worded(id, {complaint.substr(0, at), complaint.substr(at + verb.size())}),
        HelpOf(parser));
    failure.detail = at == std::string::npos ? complaint : "";
    return failure;
}

/// @return what is wrong if the words that should name a command name none
std::optional<Failure> UnknownCommand(const CLI::App& program,
                                      const std::vector<std::string>& arguments)
{
    const CLI::App* parser = &program;
    bool isValue = false; // of the option before
    for (const std::string& word : arguments) {
        if (std::exchange(isValue, false)) {
            continue;
        }
        if (word.starts_with('-')) {
            const CLI::Option* const option = parser->get_option_no_throw(word);
            if (option == nullptr) {
                break; // it may have a value
            }
            isValue = option->get_items_expected_min() > 0;
            continue;
        }
        const std::vector<std::string> names = NamesBelow(*parser);
        if (std::find(names.begin(), names.end(), word) == names.end()) {
            return UsageFailure({text::kSayUnknownCommand,
                                 {CommandName(*parser) + (parser == &program ? "" : " ") + word}},
                                Guess(word, names) + HelpOf(*parser));
        }
        parser = parser->get_subcommand(word);
        if (parser->get_require_subcommand_min() == 0) {
            break; // what follows is the parser's to judge
        }
    }
    return std::nullopt;
}

/// What is wrong with a command line, and what would be right: the range of an option stands in its
/// description.
/// @param parser  of the command, after it has failed
Failure Complaint(const CLI::App& parser, const CLI::ParseError& error)
{
    const std::string complaint = error.what();
    const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
    if (kind == CLI::ExitCodes::ExtrasError) {
        return NotExpected(parser);
    }
    if (kind == CLI::ExitCodes::RequiredError) {
        return Missing(parser, complaint);
    }
    const CLI::Option* const option = OptionIn(parser, complaint);
    if (kind == CLI::ExitCodes::RequiresError) {
        return Related(parser, complaint, " requires ", text::kSayGoesWith);
    }
    return kind == CLI::ExitCodes::ExcludesError || option == nullptr
               ? Related(parser, complaint, " excludes ", text::kSayNotWith)
               : BadValue(parser, *option);
}

/// What the parser calls the parts of a help, and the groups of its options.
constexpr std::pair<const char*, int> kHelpLabels[] = {
    {"Usage", text::kHelpUsage},        {"OPTIONS", text::kHelpOptions},
    {"Options", text::kHelpOptions},    {"Positionals", text::kHelpPositionals},
    {"SUBCOMMAND", text::kHelpCommand}, {"REQUIRED", text::kHelpRequired},
    {"Needs", text::kHelpNeeds},        {"Excludes", text::kHelpExcludes},
    {kPortGroup, text::kHelpPortGroup}, {kPlanGroup, text::kHelpPlanGroup},
};

/// Puts the examples, which are kept as the footer, in front: they answer most questions.
class HelpFormatter final : public CLI::Formatter
{
public:
    HelpFormatter()
    {
        column_width(28);
        for (const auto& [key, id] : kHelpLabels) {
            label(key, Worded(id));
        }
    }
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override
    {
        return CLI::Formatter::make_group(get_label(group), isPositional, std::move(options));
    }
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override
    {
        if (mode == CLI::AppFormatMode::Sub) {
            return make_expanded(app);
        }
        std::ostringstream help;
        help << Worded(text::kHelpExamples) << app->get_footer() << "\n"
             << app->get_description() << "\n"
             << make_usage(app, name) << make_positionals(app) << make_groups(app, mode)
             << make_subcommands(app, mode);
        return help.str();
    }
};

/// What a parser is for stands in the first line of its help, examples below.
void Explain(CLI::App& parser, int help)
{
    const std::string all = Worded(help);
    const std::size_t end = std::min(all.find('\n'), all.size());
    parser.description(all.substr(0, end));
    parser.footer(all.substr(std::min(end + 1, all.size())));
}

struct Program
{
    CLI::App parser{"", kProgram};
    bool json = false;
    bool version = false;
    std::vector<Command> commands;

    Program()
    {
        parser.formatter(std::make_shared<HelpFormatter>());
        parser.group(Worded(text::kHelpCommands));
        Explain(parser, text::kHelp);
        parser.set_help_flag("-h,--help", Worded(text::kOptHelp));
        AddFlag(parser, "--version", version, text::kOptVersion);
        for (const auto add :
             {AddPortsCommand,    AddInfoCommand,     AddStatusCommand,  AddTimeCommand,
              AddIdentifyCommand, AddResetCommand,    AddAlmanacCommand, AddFilesCommand,
              AddPlanCommand,     AddSettingsCommand, AddGeoCommand,     AddCheckCommand,
              AddNextCommand,     AddAntennaCommand,  AddSignalCommand,  AddTiltCommand,
              AddSimCommand,      AddTraceCommand,    AddDoctorCommand,  AddDemoCommand}) {
            commands.push_back(add(parser));
        }
        AddEverywhere(parser);
        AddStore(*parser.get_subcommand("ports")->get_subcommand("show"));
        for (const char* const stores : {"almanac", "plan", "settings", "antenna"}) {
            AddStore(*parser.get_subcommand(stores));
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

private:
    /// What asks no receiver can look into the simulator's store all the same.
    static void AddStore(CLI::App& app)
    {
        if (app.get_option_no_throw(kPort) == nullptr) {
            app.add_option(kPort)->description(Worded(text::kOptStore))->type_name("sim:");
        }
        for (CLI::App* child : app.get_subcommands({})) {
            AddStore(*child);
        }
    }

    /// What is understood wherever it stands.
    void AddEverywhere(CLI::App& app)
    {
        AddFlag(app, "--json", json, text::kOptJson);
        app.add_option(kLanguage)->description(Worded(text::kOptLanguage))->type_name("LANGUAGE");
        for (CLI::App* child : app.get_subcommands({})) {
            AddEverywhere(*child);
        }
    }
};

const CLI::App& LastParsed(const CLI::App& parser)
{
    const std::vector<CLI::App*> children = parser.get_subcommands();
    return children.empty() ? parser : LastParsed(*children.front());
}

/// The world of a command: what a simulated receiver leads to stays apart from the user's own.
World WorldOf(const World& world, const CLI::App& program)
{
    std::string named;
    bool asksReceiver = false;
    const CLI::App* app = &program;
    for (std::vector<CLI::App*> children = app->get_subcommands(); !children.empty();
         children = app->get_subcommands()) {
        app = children.front();
        const CLI::Option* const port = app->get_option_no_throw(kPort);
        named = port != nullptr && port->count() > 0 ? port->as<std::string>() : named;
        asksReceiver = app->get_option_no_throw("--timeout") != nullptr;
    }
    World own = world;
    if (asksReceiver || !named.empty()) {
        own.folders.isSimulated = IsSimulated(world, NamedPort(world, named));
    }
    return own;
}

ExitCode ShowVersion(Output& output)
{
    Report report;
    report.Add("version", text::kLabelVersion, Value::Text(std::string(Version())));
    return output.Done(report, std::string(kProgram) + " " + Version() + "\n");
}

/// What "help" asks for is what --help shows.
void TurnHelpIntoOption(std::vector<std::string>& arguments)
{
    if (!arguments.empty() && arguments.front() == "help") {
        arguments.erase(arguments.begin());
        arguments.emplace_back("--help");
    }
}

ExitCode Dispatch(const World& world, Program& program, std::vector<std::string> userCommand)
{
    const CLI::App& parsed = LastParsed(program.parser);
    const CLI::Option* const dryRun = parsed.get_option_no_throw(kDryRun);
    const bool isDryRun = dryRun != nullptr && dryRun->count() > 0;
    Output output(world, program.version ? "version" : CommandName(parsed), program.json, isDryRun);
    if (program.version) {
        return ShowVersion(output);
    }
    const bool isSimRun = CommandName(parsed) == "sim run";
    if (!userCommand.empty() && !isSimRun) {
        return output.Failed(UsageFailure(text::kSayOnlySimRun, "fieldcore-cli sim run --help"));
    }
    World own = WorldOf(world, program.parser);
    SettingsRoots roots{Folders(own.folders)};
    own.roots = &roots;
    for (const Command& command : program.commands) {
        if (command.parser->parsed()) {
            const Ending ending = command.run({own, output, isDryRun, std::move(userCommand)});
            const auto* const failure = std::get_if<Failure>(&ending);
            return failure != nullptr ? output.Failed(*failure) : std::get<ExitCode>(ending);
        }
    }
    return output.Failed(UsageFailure(text::kSayNoCommand, "fieldcore-cli --help"));
}

/// Sets the language of the run before anything is said in it.
std::optional<Failure> UseLanguage(const World& world, const std::vector<std::string>& arguments)
{
    std::string source = kLanguageVariable;
    std::string name = world.variable(source).value_or("en");
    SetLanguage(LanguageNamed(name).value_or(Language::English));
    const std::string joined = std::string(kLanguage) + "=";
    for (std::size_t at = 0; at < arguments.size() && arguments[at] != "--"; ++at) {
        const bool isApart = arguments[at] == kLanguage && at + 1 < arguments.size();
        if (isApart || arguments[at].starts_with(joined)) {
            source = kLanguage;
            name = isApart ? arguments[at + 1] : arguments[at].substr(joined.size());
        }
    }
    const std::optional<Language> language = LanguageNamed(name);
    SetLanguage(language.value_or(CurrentLanguage()));
    return language ? std::nullopt
                    : std::optional(
                          UsageFailure({text::kSayCannotBe, {source, name}}, text::kSayLanguages));
}

ExitCode ParseAndRun(const World& world, std::vector<std::string> arguments)
{
    const std::optional<Failure> noLanguage = UseLanguage(world, arguments);
    if (arguments.size() == 1 && arguments.front() == "--version") {
        Output output(world, "version", false); // without making the parsers of all commands
        return ShowVersion(output);
    }
    const auto dashes = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> userCommand(dashes == arguments.end() ? dashes : dashes + 1,
                                         arguments.end());
    const bool emptyCommand = dashes != arguments.end() && userCommand.empty();
    arguments.erase(dashes, arguments.end());
    const bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    if (noLanguage) {
        return Output(world, "", json).Failed(*noLanguage);
    }
    TurnHelpIntoOption(arguments);

    Program program;
    if (arguments.size() == 1 && arguments.front() == "--print-reference") {
        ReferencePrinter(*world.out).Print(program.parser, program.parser.get_footer());
        return ExitCode::Done;
    }
    if (emptyCommand) {
        return Output(world, "", json).Failed(UsageFailure(text::kSayNothingBehind));
    }
    if (const auto failure = UnknownCommand(program.parser, arguments)) {
        return Output(world, "", json).Failed(*failure);
    }
    try {
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        program.parser.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        *world.out << program.parser.help() << std::flush;
        return ExitCode::Done;
    } catch (const CLI::ParseError& error) {
        const CLI::App& parsed = LastParsed(program.parser);
        return Output(world, CommandName(parsed), json).Failed(Complaint(parsed, error));
    }
    return Dispatch(world, program, std::move(userCommand));
}

} // namespace

ExitCode Kept(const Context& context, const Report& report)
{
    if (context.world.folders.isSimulated && !context.dryRun) {
        context.output.Message("information", "", Worded(text::kSayKeptApart), Colour::Plain);
    }
    return context.output.Done(report);
}

CLI::App& AddParser(CLI::App& parent, const std::string& name, int help)
{
    CLI::App* const parser = parent.add_subcommand(name);
    Explain(*parser, help);
    return *parser;
}

CLI::Option* AddDryRun(CLI::App& parser, int purpose, CLI::Option* yes)
{
    CLI::Option* const option = parser.add_flag(kDryRun)->description(Worded(purpose));
    if (yes != nullptr) {
        option->excludes(yes);
    }
    return option;
}

void PutBelow(Command& command, std::vector<Command> below, bool runs)
{
    std::string examples = command.parser->get_footer();
    const bool hasOwn = !examples.empty();
    command.parser->require_subcommand(runs ? 0 : 1, 1);
    for (const Command& one : below) {
        const std::string all = one.parser->get_footer();
        examples += hasOwn ? "" : all.substr(0, all.find('\n') + 1);
    }
    command.parser->footer(examples);
    command.run = [below = std::move(below), run = std::move(command.run)](const Context& context) {
        const auto named = std::find_if(below.begin(), below.end(), [](const Command& candidate) {
            return candidate.parser->parsed();
        });
        return named != below.end() ? named->run(context) : run(context);
    };
}

int RunCommandLine(const World& world, std::vector<std::string> arguments)
{
    int code = static_cast<int>(ParseAndRun(world, std::move(arguments)));
    world.out->flush();
    // Whoever has closed the pipe has seen enough.
    if (!*world.out && code == static_cast<int>(ExitCode::Done) && !world.outIsClosed()) {
        *world.err << "fieldcore-cli: " << Worded(text::kSayNoResult);
        code = static_cast<int>(ExitCode::LocalFile);
    }
    return code;
}

} // namespace fieldcore::cli
