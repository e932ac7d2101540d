#include "cli/Command.h"
#include "cli/Doctor.h"
#include "cli/Utf8.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"

#include <algorithm>
#include <cstddef>

namespace fieldcore::cli {

namespace {

struct Verdict
{
    int word; ///< a text; a program reads the English one
    Colour colour;
};

Verdict VerdictOf(Health health)
{
    switch (health) {
    case Health::Ok:
        return {text::kDoctorOk, Colour::Green};
    case Health::Attention:
        return {text::kDoctorAttention, Colour::Yellow};
    case Health::Bad:
        break;
    }
    return {text::kDoctorBad, Colour::Red};
}

ExitCode Run(const Context& context)
{
    const std::vector<Finding> findings = Examine(context.world);
    Report::Table table{
        "checks", "", {{"check", ""}, {"health", ""}, {"found", ""}, {"advice", ""}}, {}};
    std::size_t width = 0;
    for (const Finding& finding : findings) {
        width = std::max(width, DisplayWidth(Worded(finding.check, {finding.subject})));
    }
    std::string words = Padded(Worded(text::kHeadState), 11) +
                        Padded(Worded(text::kHeadCheck), width + 2) + Worded(text::kHeadFound) +
                        "\n";
    bool anyBad = false;
    for (const Finding& finding : findings) {
        const Verdict verdict = VerdictOf(finding.health);
        table.rows.push_back({Value::Text(InEnglish(finding.check, {finding.subject})),
                              Value::Text(InEnglish(verdict.word)), Value::Text(finding.found),
                              Value::Text(finding.advice)});
        const std::string advice =
            finding.advice.empty() ? "" : Worded(text::kDoctorAdvice, {finding.advice});
        words += context.output.Painted(Padded(Worded(verdict.word), 11), verdict.colour) +
                 Padded(Worded(finding.check, {finding.subject}), width + 2) +
                 Printable(finding.found + advice) + "\n";
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
    return AddCommand(program, {"doctor", text::kHelpDoctor, {}, Run});
}

} // namespace fieldcore::cli
