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
    return context.output.Failed({ExitCode::Failed, "not-valid", "The text is not valid."},
                                 &report);
}

Report Begin(const CheckOptions& options, bool valid)
{
    Report report;
    report.Add("text", Worded(text::kLabelText), Value::Text(options.text));
    report.Add("valid", Worded(text::kLabelValid), Value::YesNo(valid));
    return report;
}

ExitCode CheckNumber(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context.world, context.output);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(options.minimum, options.maximum, host);
    const bool valid = check.CheckNum(text, nullptr, options.integer ? 1 : 0, 1) == 1;
    Report report = Begin(options, valid);
    report.Add("value", Worded(text::kLabelValue),
               valid ? Value::Exact(CParts::atof(text)) : Value::Unknown());
    report.Add("rounded", Worded(text::kLabelRounded),
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
    report.Add("rad", Worded(text::kLabelRadians), valid ? Value::Exact(rad) : Value::Unknown());
    report.Add("dms", Worded(text::kLabelDegrees),
               valid ? Value::Text(RADtoDEGStr(rad, 0, static_cast<std::uint8_t>(options.decimals)))
                     : Value::Unknown());
    return Finish(context, std::move(report), valid);
}

ExitCode CountUp(const Context& context, const CheckOptions& options)
{
    Report report;
    report.Add("name", Worded(text::kLabelName), Value::Text(options.text));
    Report::Table table{
        "names",
        "",
        {{"name", Worded(text::kHeadNext)}, {"changed", Worded(text::kHeadChanged)}},
        {}};
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
void AddTyped(CLI::App& parser, CheckOptions& options, const char* purpose)
{
    AddText(parser, "--text,TEXT", options.text, "", purpose)->required();
}

void AddDecimals(CLI::App& parser, CheckOptions& options)
{
    AddNumber(parser, "--decimals", options.decimals, {0.0, 9.0, "", "3"}, "N",
              "Digits behind the point");
}

} // namespace

Command AddCheckCommand(CLI::App& program)
{
    const auto options = std::make_shared<CheckOptions>();
    const auto doing = [options](ExitCode (*act)(const Context&, const CheckOptions&)) {
        return [options, act](const Context& context) { return act(context, *options); };
    };
    return AddCommands(
        program, {"check", "Is this a number, a point name, an angle", nullptr, {}, {}},
        {{"number", "A number within limits",
          "  fieldcore-cli check number 1.543 --min 0 --max 5\n"
          "  fieldcore-cli check number 12 --integer\n",
          [options](CLI::App& parser) {
              AddTyped(parser, *options, "What was typed");
              AddNumber(parser, "--min", options->minimum, {-1e24, 1e24, "", "-1e24"}, "N",
                        "Lowest that is valid");
              AddNumber(parser, "--max", options->maximum, {-1e24, 1e24, "", "1e24"}, "N",
                        "Highest that is valid");
              parser.add_flag("--integer", options->integer, "Digits alone");
              AddDecimals(parser, *options);
          },
          doing(CheckNumber)},
         {"point", "The name of a point", "  fieldcore-cli check point A-1\n",
          [options](CLI::App& parser) { AddTyped(parser, *options, "What was typed"); },
          doing(CheckPoint)},
         {"angle", "Degrees, minutes and seconds",
          "  fieldcore-cli check angle 135-07-04.5\n"
          "  fieldcore-cli check angle 89-30 --min 0 --max 90\n",
          [options](CLI::App& parser) {
              AddTyped(parser, *options, "What was typed; a minus in front is lost");
              AddNumber(parser, "--min", options->minimumDeg, {-359.0, 359.0, "deg", "-359"}, "N",
                        "Lowest, whole");
              AddNumber(parser, "--max", options->maximumDeg, {-359.0, 359.0, "deg", "359"}, "N",
                        "Highest, whole");
              AddDecimals(parser, *options);
          },
          doing(CheckAngle)}});
}

Command AddNextCommand(CLI::App& program)
{
    const auto options = std::make_shared<CheckOptions>();
    return AddCommand(
        program,
        {"next", "The name of the next point",
         "  fieldcore-cli next A-9              A-10\n"
         "  fieldcore-cli next P09 --count 5    the next five\n"
         "  fieldcore-cli next 99 --max 2       no room: stays 99\n",
         [options](CLI::App& parser) {
             AddTyped(parser, *options, "Name of the last point");
             AddNumber(parser, "--max", options->maxLength, {1.0, 255.0, "characters", "255"}, "N",
                       "Longest name");
             AddNumber(parser, "--count", options->count, {1.0, 10000.0, "", "1"}, "N", "How many");
         },
         [options](const Context& context) { return CountUp(context, *options); }});
}

} // namespace fieldcore::cli
