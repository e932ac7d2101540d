#include "cli/CommandLine.h"

#include "cli/Command.h"
#include "cli/Complaint.h"
#include "cli/Output.h"
#include "cli/PortSession.h"
#include "cli/Wording.h"

#include "core/platform/Version.h"
#include "core/resources/StringTable.h"
#include "simulator/Reference.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string_view>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

constexpr const char* kProgram = "fieldcore-cli";
constexpr const char* kDryRun = "--dry-run";
constexpr const char* kPort = "--port";
constexpr const char* kLanguage = "--language";

constexpr const char* kExamples =
    R"(  fieldcore-cli demo                        see it all work, without a receiver
  fieldcore-cli ports                       the serial ports of this machine
  fieldcore-cli info --port /dev/ttyUSB0    who is the receiver, and what can it do
  fieldcore-cli status --port sim: --watch  its state, every few seconds; here a simulated one
  fieldcore-cli status --port COM1 --json   the same for a script
  fieldcore-cli almanac get --port COM1     the satellites' orbits, for planning
  fieldcore-cli files get '*' --port COM1   the receiver's data files
  fieldcore-cli settings list               what is set, and what COM3 means
  fieldcore-cli geo plane 35.69 139.69      coordinates and angles converted
  fieldcore-cli antenna height --slant 1.5 --r 0.1 --v 0.05
                                            an antenna's vertical height
  fieldcore-cli doctor                      why does it not work on this machine
)";

/// Puts the examples, which are kept as the footer, in front: they answer most questions.
class HelpFormatter final : public CLI::Formatter
{
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override
    {
        if (mode == CLI::AppFormatMode::Sub) {
            return make_expanded(app);
        }
        std::ostringstream help;
        help << "Examples:\n"
             << app->get_footer() << "\n"
             << app->get_description() << "\n"
             << make_usage(app, name) << make_positionals(app) << make_groups(app, mode)
             << make_subcommands(app, mode);
        return help.str();
    }
};

struct Program
{
    CLI::App parser{"The field controller's library in a terminal. Results go to stdout, the rest "
                    "to stderr.",
                    kProgram};
    bool json = false;
    bool version = false;
    std::vector<Command> commands;

    Program()
    {
        auto formatter = std::make_shared<HelpFormatter>();
        formatter->column_width(28);
        parser.formatter(formatter);
        parser.footer(kExamples);
        parser.set_help_flag("-h,--help", "Show this help");
        parser.add_flag("--version", version, "Show the version");
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
            app.add_option(kPort, "sim: takes what the simulator's own store has")
                ->type_name("sim:");
        }
        for (CLI::App* child : app.get_subcommands({})) {
            AddStore(*child);
        }
    }

    /// What is understood wherever it stands.
    void AddEverywhere(CLI::App& app)
    {
        app.add_flag("--json", json, "Print one JSON document (docs/cli.md)");
        app.add_option(kLanguage, "en or ja (else $FIELDCORE_LANGUAGE, else en)")
            ->type_name("LANGUAGE");
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
    report.Add("version", Worded(text::kLabelVersion), Value::Text(std::string(Version())));
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
        return output.Failed(
            UsageFailure("Only sim run starts a command of your own behind \"--\".",
                         "fieldcore-cli sim run --help"));
    }
    const World own = WorldOf(world, program.parser);
    for (const Command& command : program.commands) {
        if (command.parser->parsed()) {
            return command.run({own, output, isDryRun, std::move(userCommand)});
        }
    }
    return output.Failed(UsageFailure(Worded(text::kSayNoCommand), "fieldcore-cli --help"));
}

/// Sets the language of the run before anything is said in it.
std::optional<Failure> UseLanguage(const World& world, const std::vector<std::string>& arguments)
{
    std::string source = kLanguageVariable;
    std::string name = world.variable(source).value_or("en");
    const std::string joined = std::string(kLanguage) + "=";
    for (std::size_t at = 0; at < arguments.size() && arguments[at] != "--"; ++at) {
        const bool isApart = arguments[at] == kLanguage && at + 1 < arguments.size();
        if (isApart || arguments[at].starts_with(joined)) {
            source = kLanguage;
            name = isApart ? arguments[at + 1] : arguments[at].substr(joined.size());
        }
    }
    const std::optional<Language> language = LanguageNamed(name);
    SetLanguage(language.value_or(Language::English));
    return language ? std::nullopt
                    : std::optional(UsageFailure(source + " cannot be \"" + name + "\".",
                                                 "en for English, ja for Japanese"));
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
        ReferencePrinter(*world.out).Print(program.parser, kExamples);
        return ExitCode::Done;
    }
    if (emptyCommand) {
        return Output(world, "", json).Failed(UsageFailure("There is no command behind \"--\"."));
    }
    if (const std::optional<Failure> failure = UnknownCommand(program.parser, arguments)) {
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

CLI::App& AddParser(CLI::App& parent, const std::string& name, const std::string& purpose,
                    const std::string& examples)
{
    CLI::App* const parser = parent.add_subcommand(name, purpose);
    parser->footer(examples);
    return *parser;
}

CLI::Option* AddDryRun(CLI::App& parser, const std::string& purpose, CLI::Option* yes)
{
    CLI::Option* const option = parser.add_flag(kDryRun, purpose);
    if (yes != nullptr) {
        option->excludes(yes);
    }
    return option;
}

Command AddCommand(CLI::App& program, const CommandRow& row)
{
    CLI::App& parser = AddParser(program, row.name, row.purpose, row.examples);
    if (row.addOptions) {
        row.addOptions(parser);
    }
    return {&parser, row.run};
}

Command AddCommands(CLI::App& program, const CommandRow& group, const std::vector<CommandRow>& rows)
{
    std::string examples = group.examples != nullptr ? group.examples : "";
    for (const CommandRow& row : rows) {
        const std::string_view all = row.examples;
        examples += group.examples == nullptr ? all.substr(0, all.find('\n') + 1) : "";
    }
    CommandRow whole = group;
    whole.examples = examples.c_str();
    Command command = AddCommand(program, whole);
    command.parser->require_subcommand(group.run ? 0 : 1, 1);
    std::vector<Command> below;
    for (const CommandRow& row : rows) {
        below.push_back(AddCommand(*command.parser, row));
    }
    command.run = [below, run = group.run](const Context& context) {
        const auto named = std::find_if(below.begin(), below.end(), [](const Command& candidate) {
            return candidate.parser->parsed();
        });
        return named != below.end() ? named->run(context) : run(context);
    };
    return command;
}

int RunCommandLine(const World& world, std::vector<std::string> arguments)
{
    int code = static_cast<int>(ParseAndRun(world, std::move(arguments)));
    world.out->flush();
    // Whoever has closed the pipe has seen enough.
    if (!*world.out && code == static_cast<int>(ExitCode::Done) && !world.outIsClosed()) {
        *world.err << "fieldcore-cli: the result could not be written.\n";
        code = static_cast<int>(ExitCode::LocalFile);
    }
    return code;
}

} // namespace fieldcore::cli
