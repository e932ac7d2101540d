#pragma once

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

} // namespace fieldcore::cli
