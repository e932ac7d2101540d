#pragma once

#include "cli/Wording.h"

#include "core/link/CommandFault.h"
#include "core/platform/SystemRoots.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <string>

namespace fieldcore::cli {

/// How the program ends, for scripts. docs/cli.md lists them; the numbers never change.
enum class ExitCode : int
{
    Done = 0,
    Failed = 1,
    Usage = 2,
    NoPort = 3,    ///< no such port, no permission, in use, or gone
    NoAnswer = 4,  ///< the port is open and the receiver says nothing
    Refused = 5,   ///< a receiver type or firmware that is not supported
    Nak = 6,       ///< the receiver refused a request
    Cancelled = 7, ///< Ctrl-C, or a question answered with no
    LocalFile = 8, ///< a file or folder of this machine, or its space
};

/// Why a command did not do what it was asked.
struct Failure
{
    ExitCode exit = ExitCode::Failed;
    std::string code;     ///< for programs: lower-case words joined by "-"; never changes
    Wording message;      ///< one or two sentences
    Wording hint{};       ///< what to do about it, as a command where there is one; may be empty
    std::string step{};   ///< of connecting, where it failed; empty otherwise
    std::string detail{}; ///< for developers; may be empty
};

[[nodiscard]] Failure UsageFailure(Wording message, Wording hint = {});

[[nodiscard]] Failure FileFailure(Wording message, Wording hint = {});

/// A text file with a mistake in it.
[[nodiscard]] Failure TextFailure(const std::filesystem::path& file, const TextError& error,
                                  Wording hint = {});

/// What to do about a fault. In Japanese the text of the fault says it, but for a command.
[[nodiscard]] std::string HintOf(const TerminalFault& said);

/// @param detail  what the simulator says of it
[[nodiscard]] Failure ScenarioFailure(const std::string& detail);
[[nodiscard]] Failure SimulatorFailure(ExitCode exit, const std::string& detail);

/// A request that failed on an open port.
[[nodiscard]] Failure RequestFailure(CommandFault fault, std::string detail);

/// A port that did not open: finds out why. Opens nothing.
/// @param systemError  the errno value of the attempt
/// @param detail       what the channel says of it
[[nodiscard]] Failure PortFailure(const std::string& path, int systemError, std::string detail,
                                  const SystemRoots& roots);

} // namespace fieldcore::cli
