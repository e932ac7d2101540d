#pragma once

#include "core/platform/SystemRoots.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace fieldcore {

/// Why a port does not open.
enum class PortTrouble
{
    None,        ///< nothing was found; the text repeats what the system said
    Absent,      ///< there is nothing of that name
    Unplugged,   ///< a stable name whose adapter is gone
    NotADevice,  ///< a file or a folder
    NotSerial,   ///< a device, but no serial port
    NoHardware,  ///< a built-in port that this machine does not have
    NotAllowed,  ///< the user may not open it
    LoginNeeded, ///< the user was put into the port's group and has not logged in again since
    InUse        ///< another program has it open
};

/// A process that has a port open.
struct PortHolder
{
    pid_t pid;
    std::string name;
    bool isSelf; ///< it is the process that asks
};

/// What can be found out about a port without opening it.
struct PortFacts
{
    enum class Kind
    {
        Absent,
        BrokenLink,
        File,
        OtherDevice,
        Serial
    };

    std::string path;
    Kind kind = Kind::Absent;
    bool hasHardware = true;         ///< false only where the system says so
    bool mayOpen = true;             ///< the process may read and write it
    bool groupMayOpen = true;        ///< its group may read and write it
    std::string group;               ///< name or number of its group
    bool isListed = false;           ///< the group database counts the user to that group
    int openError = 0;               ///< errno of the failed attempt, 0 if there was none
    std::vector<PortHolder> holders; ///< only processes that the user may look into
};

/// What is wrong with a port, and what to do about it.
struct PortReport
{
    PortTrouble trouble = PortTrouble::None;
    std::string text;    ///< one or two English sentences
    std::string command; ///< to type in a shell: it mends the trouble or shows it; may be empty
};

/// @param openError  the errno of the failed attempt, 0 if there was none
[[nodiscard]] PortFacts FindPortFacts(const std::string& path, int openError = 0,
                                      const SystemRoots& roots = {});

/// Puts facts into words; the first trouble from the cable upwards counts. Who else has the port
/// open counts if the attempt failed for that or there was none: ports can be shared.
[[nodiscard]] PortReport ExplainPort(const PortFacts& facts);

/// Finds out why @p path does not open. Opens nothing, but looks through all processes of the
/// machine, which takes some milliseconds.
[[nodiscard]] PortReport ReportPort(const std::string& path, int openError = 0,
                                    const SystemRoots& roots = {});

} // namespace fieldcore
