#pragma once

namespace fieldcore {

/// Why the last request to the receiver failed.
enum class CommandFault
{
    None,
    Busy,       ///< another request is under way
    NotOpen,    ///< no port is open
    OpenFailed, ///< see the link error and the device's text
    TooLong,    ///< the request does not fit into a frame
    WriteFailed,
    TimedOut,
    Refused, ///< NAK
    Malformed,
    BadChecksum,
    WrongAnswer, ///< an acknowledgement where data was expected, or the other way round
    WrongType,   ///< an answer of another type, or one that does not fit its layout
    LinkLost,    ///< the other end is gone
    Cancelled,
};

/// What a fault says of the receiver, for whoever decides what to do next.
enum class FaultClass
{
    Answered,  ///< it is there: all is well, or it refused, or it said something else
    Damaged,   ///< something comes that is no good frame: noise, another rate, another talker
    Silent,    ///< nothing came in time
    Gone,      ///< no port is open, or nobody is at its other end
    Cancelled, ///< by the host
    Local,     ///< nothing was sent
};

/// What the terminal says of a fault. Texts are static.
struct TerminalFault
{
    int exitCode;        ///< see docs/cli.md
    const char* code;    ///< for programs: never changes
    const char* message; ///< a sentence
    const char* hint;    ///< what to do about it; may be empty
};

/// All that is said of a fault, each thing once.
struct FaultMeaning
{
    CommandFault fault;
    FaultClass faultClass;
    const char* words; ///< for developers
    int textId;        ///< for the user, a number of the string table; 0: nothing to say
    TerminalFault terminal;
};
/// Any thread, as the next two.
[[nodiscard]] const FaultMeaning& MeaningOf(CommandFault fault);
[[nodiscard]] inline FaultClass ClassOf(CommandFault fault)
{
    return MeaningOf(fault).faultClass;
}
/// Why a request failed, for the user: a sentence and what to do about it. Static text.
[[nodiscard]] const wchar_t* CauseText(CommandFault fault);

} // namespace fieldcore
