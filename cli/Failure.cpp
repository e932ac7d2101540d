#include "cli/Failure.h"

#include "core/platform/PortReport.h"

#include <array>
#include <cstddef>
#include <utility>

namespace fieldcore::cli {

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
    if (std::error_code ignored; error.line == 0 && !std::filesystem::exists(file, ignored)) {
        return FileFailure({text::kSayNotThere, {place}});
    }
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
    const FaultMeaning& meaning = MeaningOf(fault);
    const TerminalFault& said = meaning.terminal;
    Failure failure{ExitCode{said.exitCode}, said.code, WordedOr(said.message, meaning.textId),
                    HintOf(said)};
    failure.detail = std::move(detail);
    return failure;
}

Failure PortFailure(const std::string& path, int systemError, std::string detail,
                    const SystemRoots& roots)
{
    // In the order of PortTrouble.
    constexpr std::array kCodes{"port-not-opened",  "port-absent",       "port-unplugged",
                                "port-not-serial",  "port-not-serial",   "port-no-hardware",
                                "port-not-allowed", "port-login-needed", "port-in-use"};
    const PortReport report = ReportPort(path, systemError, roots);
    const char* const code = kCodes[static_cast<std::size_t>(report.trouble)];
    return {ExitCode::NoPort, code, Translated(report.text), report.command, "", std::move(detail)};
}

} // namespace fieldcore::cli
