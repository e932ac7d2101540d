#include "cli/Failure.h"
#include "cli/Wording.h"

#include "core/platform/PortReport.h"
#include "core/resources/StringTable.h"

#include <array>
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

} // namespace

std::string HintOf(const TerminalFault& said)
{
    const std::string hint = said.hint;
    return IsEnglish() || hint.starts_with("fieldcore-cli") ? hint : "";
}

Failure UsageFailure(Wording message, Wording hint)
{
    return {ExitCode::Usage, "usage", std::move(message), std::move(hint)};
}

Failure FileFailure(Wording message, Wording hint)
{
    return {ExitCode::LocalFile, "local-file", std::move(message), std::move(hint)};
}

Failure TextFailure(const std::filesystem::path& file, const TextError& error, Wording hint)
{
    std::string place = file.string();
    place += error.line > 0 ? Worded(text::kSayLine, {std::to_string(error.line)}) : "";
    place += error.field.empty() ? "" : Worded(text::kSayField, {error.field});
    return FileFailure(place + ": " + Translated(error.message), std::move(hint));
}

Failure ScenarioFailure(const std::string& detail)
{
    return {ExitCode::Usage, "usage", text::kSayNoScenario, "fieldcore-cli sim list", "", detail};
}

Failure SimulatorFailure(ExitCode exit, const std::string& detail)
{
    return {exit, "simulator-not-started", Worded(text::kSayNoSimulator), "", "", detail};
}

Failure RequestFailure(CommandFault fault, std::string detail)
{
    const TerminalFault& said = MeaningOf(fault).terminal;
    if (const int id = MeaningOf(fault).textId; id != 0 && !IsEnglish()) {
        return {ExitCode{said.exitCode}, said.code, Worded(id), HintOf(said), "",
                std::move(detail)};
    }
    return {ExitCode{said.exitCode}, said.code, said.message, said.hint, "", std::move(detail)};
}

Failure SendingFailure(std::string detail)
{
    return {ExitCode::Failed, "port-sending", text::kSayPortSending, text::kSayPortSendingHint, "",
            std::move(detail)};
}

Failure PortFailure(const std::string& path, int systemError, std::string detail,
                    const SystemRoots& roots)
{
    const PortReport report = ReportPort(path, systemError, roots);
    return {ExitCode::NoPort, CodeOf(report.trouble), Translated(report.text), report.command, "",
            std::move(detail)};
}

} // namespace fieldcore::cli
