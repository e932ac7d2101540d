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

} // namespace fieldcore
