#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/Options.h"
#include "cli/Report.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/input/Angles.h"
#include "core/input/Check.h"
#include "core/input/Parts.h"
#include "core/input/StrIncre.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <cstdint>
#include <memory>
#include <string>

namespace fieldcore::cli {

namespace {

struct CheckOptions
{
    std::string text;
    double minimum = -1.0e24;
    double maximum = 1.0e24;
    int minimumDeg = -359;
    int maximumDeg = 359;
    bool integer = false;
    int decimals = 3;
    int maxLength = 255;
    int count = 1;
};

/// What was checked and whether it holds; the value only if it does.
ExitCode Finish(const Context& context, Report report, bool valid)
{
    if (valid) {
        return context.output.Done(report);
    }
    return context.output.Failed({ExitCode::Failed, "not-valid", Worded(text::kSayNotValid)},
                                 &report);
}

Report Begin(const CheckOptions& options, bool valid)
{
    Report report;
    report.Add("text", text::kLabelText, Value::Text(options.text));
    report.Add("valid", text::kLabelValid, Value::YesNo(valid));
    return report;
}

ExitCode CheckNumber(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context.world, context.output);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(options.minimum, options.maximum, host);
    const bool valid = check.CheckNum(text, nullptr, options.integer ? 1 : 0, 1) == 1;
    Report report = Begin(options, valid);
    report.Add("value", text::kLabelValue,
               valid ? Value::Exact(CParts::atof(text)) : Value::Unknown());
    report.Add("rounded", text::kLabelRounded,
               valid ? Value::Real(CParts::round(CParts::atof(text),
                                                 static_cast<std::uint8_t>(options.decimals)),
                                   options.decimals)
                     : Value::Unknown());
    return Finish(context, std::move(report), valid);
}

ExitCode CheckPoint(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context.world, context.output);
    CCheck check(host);
    const bool valid = check.CheckPointName(FromUtf8(options.text), nullptr, 1) == 1;
    return Finish(context, Begin(options, valid), valid);
}

ExitCode CheckAngle(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context.world, context.output);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(host);
    check.SetRadMinMax(options.minimumDeg, options.maximumDeg);
    const bool valid = check.CheckDeg(text, nullptr, 1) == 1;
    const double rad = valid ? check.GetRad(text) : 0.0;
    Report report = Begin(options, valid);
    report.Add("rad", text::kLabelRadians, valid ? Value::Exact(rad) : Value::Unknown());
    report.Add("dms", text::kLabelDegrees,
               valid ? Value::Text(RADtoDEGStr(rad, 0, static_cast<std::uint8_t>(options.decimals)))
                     : Value::Unknown());
    return Finish(context, std::move(report), valid);
}

ExitCode CountUp(const Context& context, const CheckOptions& options)
{
    Report report;
    report.Add("name", text::kLabelName, Value::Text(options.text));
    Report::Table table{
        "names", "", {{"name", text::kHeadNext}, {"changed", text::kHeadChanged}}, {}};
    std::wstring name = FromUtf8(options.text);
    for (int i = 0; i < options.count; ++i) {
        const std::wstring before = name;
        PointNameIncre(name, static_cast<std::uint8_t>(options.maxLength));
        table.rows.push_back({Value::Text(name), Value::YesNo(name != before)});
    }
    report.AddTable(std::move(table));
    return context.output.Done(report);
}

/// A text that begins with a minus and no digit would pass for an option: hence --text, too.
void AddTyped(CLI::App& parser, CheckOptions& options, int purpose)
{
    AddText(parser, "--text,TEXT", options.text, "", purpose)->required();
}

void AddDecimals(CLI::App& parser, CheckOptions& options)
{
    AddNumber(parser, "--decimals", options.decimals, {0.0, 9.0, "", "3"}, "N", text::kOptDecimals);
}

} // namespace

Command AddCheckCommand(CLI::App& program)
{
    const auto options = std::make_shared<CheckOptions>();
    const auto doing = [options](ExitCode (*act)(const Context&, const CheckOptions&)) {
        return [options, act](const Context& context) { return act(context, *options); };
    };
    return AddCommands(
        program, {"check", text::kHelpCheck, {}, {}},
        {{"number", text::kHelpCheckNumber,
          [options](CLI::App& parser) {
              AddTyped(parser, *options, text::kOptTyped);
              AddNumber(parser, "--min", options->minimum, {-1e24, 1e24, "", "-1e24"}, "N",
                        text::kOptLowest);
              AddNumber(parser, "--max", options->maximum, {-1e24, 1e24, "", "1e24"}, "N",
                        text::kOptHighest);
              AddFlag(parser, "--integer", options->integer, text::kOptInteger);
              AddDecimals(parser, *options);
          },
          doing(CheckNumber)},
         {"point", text::kHelpCheckPoint,
          [options](CLI::App& parser) { AddTyped(parser, *options, text::kOptTyped); },
          doing(CheckPoint)},
         {"angle", text::kHelpCheckAngle,
          [options](CLI::App& parser) {
              AddTyped(parser, *options, text::kOptTypedAngle);
              AddNumber(parser, "--min", options->minimumDeg, {-359.0, 359.0, "deg", "-359"}, "N",
                        text::kOptLowestWhole);
              AddNumber(parser, "--max", options->maximumDeg, {-359.0, 359.0, "deg", "359"}, "N",
                        text::kOptHighestWhole);
              AddDecimals(parser, *options);
          },
          doing(CheckAngle)}});
}

Command AddNextCommand(CLI::App& program)
{
    const auto options = std::make_shared<CheckOptions>();
    return AddCommand(program,
                      {"next", text::kHelpNext,
                       [options](CLI::App& parser) {
                           AddTyped(parser, *options, text::kOptLastPoint);
                           AddNumber(parser, "--max", options->maxLength,
                                     {1.0, 255.0, Worded(text::kUnitCharacters), "255"}, "N",
                                     text::kOptLongest);
                           AddNumber(parser, "--count", options->count, {1.0, 10000.0, "", "1"},
                                     "N", text::kOptHowMany);
                       },
                       [options](const Context& context) { return CountUp(context, *options); }});
}

} // namespace fieldcore::cli
