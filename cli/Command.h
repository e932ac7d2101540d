#pragma once

#include "cli/Failure.h"
#include "cli/Output.h"
#include "cli/World.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace fieldcore::cli {

/// What a command runs with.
struct Context
{
    const World& world;
    Output& output;
    bool dryRun; ///< do everything but the change, see AddDryRun()
    /// What stands behind "--" on the command line: a command of the user's own.
    std::vector<std::string> userCommand;
};

/// The command is done and has stored something, but in a dry run: says where, if that is not
/// among the user's own things but among those that the simulator leads to.
ExitCode Kept(const Context& context, const Report& report);

/// How a command ends: all is told, or a failure is to be.
using Ending = std::variant<ExitCode, Failure>;

/// A command of the command line: the parser that reads its options, and what it then does.
/// The options live in what the function holds.
struct Command
{
    CLI::App* parser = nullptr;
    std::function<Ending(const Context&)> run;
};

// Each adds its parser to the program's.
Command AddPortsCommand(CLI::App& program);
Command AddInfoCommand(CLI::App& program);
Command AddStatusCommand(CLI::App& program);
Command AddIdentifyCommand(CLI::App& program);
Command AddResetCommand(CLI::App& program);
Command AddSignalCommand(CLI::App& program);
Command AddTiltCommand(CLI::App& program);
Command AddAlmanacCommand(CLI::App& program);
Command AddFilesCommand(CLI::App& program);
Command AddSettingsCommand(CLI::App& program);
Command AddGeoCommand(CLI::App& program);
Command AddAntennaCommand(CLI::App& program);
Command AddSimCommand(CLI::App& program);
Command AddTimeCommand(CLI::App& program);
Command AddTraceCommand(CLI::App& program);
Command AddPlanCommand(CLI::App& program);
Command AddDoctorCommand(CLI::App& program);
Command AddCheckCommand(CLI::App& program);
Command AddNextCommand(CLI::App& program);
Command AddDemoCommand(CLI::App& program);

/// Adds a parser.
/// @param help  its text: a line that says what it is for, then examples, which its help begins
/// with
CLI::App& AddParser(CLI::App& parent, const std::string& name, int help);

/// Offers --dry-run, as every command does that changes something: Context::dryRun tells it, and
/// Output that nothing was changed.
/// @param purpose  a text: what is not done and what is shown instead
/// @param yes      the option that makes no sense beside it; may be null
CLI::Option* AddDryRun(CLI::App& parser, int purpose, CLI::Option* yes = nullptr);

/// A row of the table of commands: its parser, its help and its call are made from it.
template <typename Options>
struct CommandRow
{
    const char* name;
    int help; ///< as of AddParser(); one without examples takes the first of each row below it
    void (*addOptions)(CLI::App&, Options&) = nullptr;
    Ending (*run)(const Context&, const Options&) = nullptr;
};

/// For commands without options.
struct NoOptions
{};

/// Makes @p command one with commands below it.
/// @param runs  it does something by itself; otherwise one of them must be named
void PutBelow(Command& command, std::vector<Command> below, bool runs);

/// @param rows  commands below it, which share its options
template <typename Options>
Command AddCommand(CLI::App& program, const CommandRow<Options>& row,
                   const std::vector<CommandRow<Options>>& rows = {})
{
    const auto options = std::make_shared<Options>();
    const auto add = [&options](CLI::App& parent, const CommandRow<Options>& one) {
        CLI::App& parser = AddParser(parent, one.name, one.help);
        if (one.addOptions != nullptr) {
            one.addOptions(parser, *options);
        }
        return Command{&parser, [options, run = one.run](const Context& context) {
                           return run(context, *options);
                       }};
    };
    Command command = add(program, row);
    std::vector<Command> below;
    below.reserve(rows.size());
    for (const CommandRow<Options>& one : rows) {
        below.push_back(add(*command.parser, one));
    }
    if (!below.empty()) {
        PutBelow(command, std::move(below), row.run != nullptr);
    }
    return command;
}

} // namespace fieldcore::cli
