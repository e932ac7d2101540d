#include "cli/Command.h"
#include "cli/Doctor.h"
#include "cli/Utf8.h"

#include <algorithm>
#include <cstddef>

namespace fieldcore::cli {

namespace {

struct Verdict
{
    const char* word;
    Colour colour;
};

Verdict VerdictOf(Health health)
{
    switch (health) {
    case Health::Ok:
        return {"ok", Colour::Green};
    case Health::Attention:
        return {"attention", Colour::Yellow};
    case Health::Bad:
        break;
    }
    return {"bad", Colour::Red};
}

ExitCode Run(const Context& context)
{
    const std::vector<Finding> findings = Examine(context.world);
    Report::Table table{
        "checks", "", {{"check", ""}, {"health", ""}, {"found", ""}, {"advice", ""}}, {}};
    std::size_t width = 0;
    for (const Finding& finding : findings) {
        width = std::max(width, DisplayWidth(finding.check));
    }
    std::string words = Padded("STATE", 11) + Padded("CHECK", width + 2) + "FOUND\n";
    bool anyBad = false;
    for (const Finding& finding : findings) {
        const Verdict verdict = VerdictOf(finding.health);
        table.rows.push_back({Value::Text(finding.check), Value::Text(std::string(verdict.word)),
                              Value::Text(finding.found), Value::Text(finding.advice)});
        const std::string advice = finding.advice.empty() ? "" : "  Try: " + finding.advice;
        words += context.output.Painted(Padded(verdict.word, 11), verdict.colour) +
                 Padded(finding.check, width + 2) + Printable(finding.found + advice) + "\n";
        anyBad = anyBad || finding.health == Health::Bad;
    }
    Report report;
    report.AddTable(std::move(table));
    const ExitCode done = context.output.Done(report, words);
    return anyBad ? ExitCode::Failed : done;
}

} // namespace

Command AddDoctorCommand(CLI::App& program)
{
    return AddCommand(
        program, {"doctor",
                  "Why does it not work on this machine",
                  "  fieldcore-cli doctor          ports, rights, almanac, folders, a line each\n"
                  "  fieldcore-cli doctor --json   the same for a bug report\n",
                  {},
                  Run});
}

} // namespace fieldcore::cli
