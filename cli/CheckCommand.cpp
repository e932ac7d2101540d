#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/Report.h"
#include "cli/TerminalHost.h"

#include "core/input/Angles.h"
#include "core/input/Check.h"
#include "core/input/Parts.h"
#include "core/input/StrIncre.h"
#include "core/platform/Utf8.h"

#include <cstdint>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

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
    report.Add("text", "text", Value::Text(options.text));
    report.Add("valid", "valid", Value::YesNo(valid));
    return report;
}

ExitCode CheckNumber(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context.world, context.output);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(options.minimum, options.maximum, host);
    const bool valid = check.CheckNum(text, nullptr, options.integer ? 1 : 0, 1) == 1;
    Report report = Begin(options, valid);
    report.Add("value", "value", valid ? Value::Exact(CParts::atof(text)) : Value::Unknown());
    report.Add("rounded", "rounded",
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
    report.Add("rad", "radians", valid ? Value::Exact(rad) : Value::Unknown());
    report.Add("dms", "degrees",
               valid ? Value::Text(RADtoDEGStr(rad, 0, static_cast<std::uint8_t>(options.decimals)))
                     : Value::Unknown());
    return Finish(context, std::move(report), valid);
}

ExitCode CountUp(const Context& context, const CheckOptions& options)
{
    Report report;
    report.Add("name", "name", Value::Text(options.text));
    Report::Table table{"names", "", {{"name", "NEXT"}, {"changed", "CHANGED"}}, {}};
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
void AddText(CLI::App& parser, CheckOptions& options, const char* purpose)
{
    parser.add_option("--text,TEXT", options.text, purpose)->type_name("")->required();
}

template <typename Number>
CLI::Option* AddNumber(CLI::App& parser, const char* name, Number& value, const char* purpose)
{
    return parser.add_option(name, value, purpose)->type_name("N");
}

void AddDecimals(CLI::App& parser, CheckOptions& options)
{
    constexpr int kMostDecimals = 9;
    AddNumber(parser, "--decimals", options.decimals, "Digits behind the point, 0 to 9 (3)")
        ->check(CLI::Range(0, kMostDecimals).description(""));
}

} // namespace

Command AddCheckCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "check", "Is this a number, a point name, an angle",
                                 "  fieldcore-cli check number 1.543 --min 0 --max 5\n"
                                 "  fieldcore-cli check point A-1\n"
                                 "  fieldcore-cli check angle 135-07-04.5\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& number = AddParser(parser, "number", "A number within limits",
                                 "  fieldcore-cli check number 1.543 --min 0 --max 5\n"
                                 "  fieldcore-cli check number 12 --integer\n");
    AddText(number, *options, "What was typed");
    AddNumber(number, "--min", options->minimum, "Lowest that is valid (-1e24)");
    AddNumber(number, "--max", options->maximum, "Highest that is valid (1e24)");
    number.add_flag("--integer", options->integer, "Digits alone");
    AddDecimals(number, *options);
    CLI::App& point =
        AddParser(parser, "point", "The name of a point", "  fieldcore-cli check point A-1\n");
    AddText(point, *options, "What was typed");
    CLI::App& angle = AddParser(parser, "angle", "Degrees, minutes and seconds",
                                "  fieldcore-cli check angle 135-07-04.5\n"
                                "  fieldcore-cli check angle 89-30 --min 0 --max 90\n");
    AddText(angle, *options, "What was typed; a minus in front is lost");
    AddNumber(angle, "--min", options->minimumDeg, "Lowest whole degrees (-359)");
    AddNumber(angle, "--max", options->maximumDeg, "Highest whole degrees (359)");
    AddDecimals(angle, *options);
    return {&parser, [options, &number, &point](const Context& context) {
                return number.parsed()  ? CheckNumber(context, *options)
                       : point.parsed() ? CheckPoint(context, *options)
                                        : CheckAngle(context, *options);
            }};
}

Command AddNextCommand(CLI::App& program)
{
    constexpr int kMostLength = 255;
    constexpr int kMostNames = 10000;
    CLI::App& parser = AddParser(program, "next", "The name of the next point",
                                 "  fieldcore-cli next A-9              A-10\n"
                                 "  fieldcore-cli next P09 --count 5    the next five\n"
                                 "  fieldcore-cli next 99 --max 2       no room: stays 99\n");
    const auto options = std::make_shared<CheckOptions>();
    AddText(parser, *options, "Name of the last point");
    AddNumber(parser, "--max", options->maxLength, "Longest name, 1 to 255 characters (255)")
        ->check(CLI::Range(1, kMostLength).description(""));
    AddNumber(parser, "--count", options->count, "How many, 1 to 10000 (1)")
        ->check(CLI::Range(1, kMostNames).description(""));
    return {&parser, [options](const Context& context) { return CountUp(context, *options); }};
}

} // namespace fieldcore::cli
