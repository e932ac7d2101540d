#include "cli/Failure.h"

#include "core/platform/PortReport.h"

#include <utility>

namespace fieldcore::cli {

namespace {

const char* CodeOf(PortTrouble trouble)
{
    switch (trouble) {
    case PortTrouble::None:
        break;
    case PortTrouble::Absent:
        return "port-absent";
    case PortTrouble::Unplugged:
        return "port-unplugged";
    case PortTrouble::NotADevice:
    case PortTrouble::NotSerial:
        return "port-not-serial";
    case PortTrouble::NoHardware:
        return "port-no-hardware";
    case PortTrouble::NotAllowed:
        return "port-not-allowed";
    case PortTrouble::LoginNeeded:
        return "port-login-needed";
    case PortTrouble::InUse:
        return "port-in-use";
    }
    return "port-not-opened";
}

Failure OfFault(CommandFault fault)
{
    switch (fault) {
    case CommandFault::TimedOut:
        return {ExitCode::NoAnswer, "no-answer", "The receiver does not answer.",
                "Check that it is on, the cable, and the rate of the port (--baud)."};
    case CommandFault::Refused:
        return {ExitCode::Nak, "nak", "The receiver refused the request.",
                "It does not know the request, or cannot do it now."};
    case CommandFault::Cancelled:
        return {ExitCode::Cancelled, "cancelled", "Cancelled."};
    case CommandFault::LinkLost:
        return {ExitCode::NoPort, "link-lost", "The port is gone.",
                "Check the cable or the Bluetooth link, then try again."};
    case CommandFault::NotOpen:
    case CommandFault::OpenFailed:
        return {ExitCode::NoPort, "port-not-opened", "The port is not open.",
                "fieldcore-cli doctor"};
    case CommandFault::WriteFailed:
        return {ExitCode::Failed, "not-written", "Nothing could be sent to the receiver.",
                "Check the cable and the handshake (--flow)."};
    case CommandFault::Malformed:
    case CommandFault::BadChecksum:
        return {ExitCode::Failed, "damaged-answer", "What the receiver answers arrives damaged.",
                "Check the cable, and the rate and parity of the port."};
    case CommandFault::WrongAnswer:
    case CommandFault::WrongType:
        return {ExitCode::Failed, "unexpected-answer", "The receiver answered something else.",
                "Something may be sent over the port besides. Keep what is said with --log FILE "
                "and look at it with fieldcore-cli trace FILE."};
    case CommandFault::None:
    case CommandFault::Busy:
    case CommandFault::TooLong:
        break;
    }
    return {ExitCode::Failed, "failed", "The request could not be made."};
}

} // namespace

Failure UsageFailure(std::string message, std::string hint)
{
    return {ExitCode::Usage, "usage", std::move(message), std::move(hint)};
}

Failure FileFailure(std::string message, std::string hint)
{
    return {ExitCode::LocalFile, "local-file", std::move(message), std::move(hint)};
}

Failure TextFailure(const std::filesystem::path& file, const TextError& error, std::string hint)
{
    std::string place = file.string();
    place += error.line > 0 ? ", line " + std::to_string(error.line) : "";
    place += error.field.empty() ? "" : ", " + error.field;
    return FileFailure(place + ": " + error.message, std::move(hint));
}

Failure RequestFailure(CommandFault fault, std::string detail)
{
    Failure failure = OfFault(fault);
    failure.detail = std::move(detail);
    return failure;
}

Failure SendingFailure(std::string detail)
{
    return {ExitCode::Failed,
            "port-sending",
            "The receiver puts NMEA or corrections out over this port.",
            "Stop the output at the receiver, or use another of its ports, then try again.",
            "",
            std::move(detail)};
}

Failure PortFailure(const std::string& path, int systemError, std::string detail,
                    const SystemRoots& roots)
{
    const PortReport report = ReportPort(path, systemError, roots);
    return {ExitCode::NoPort, CodeOf(report.trouble), report.text, report.command, "",
            std::move(detail)};
}

} // namespace fieldcore::cli
