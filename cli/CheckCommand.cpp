#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/TerminalHost.h"

#include "core/input/Angles.h"
#include "core/input/Check.h"
#include "core/input/Parts.h"
#include "core/input/StrIncre.h"
#include "core/platform/Utf8.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

/// Tells what was checked and whether it holds.
Ending Tell(const Context& context, const CheckOptions& options, bool valid,
            std::vector<Report::Field> more)
{
    Report report;
    report.Add("text", text::kLabelText, Value::Text(options.text));
    report.Add("valid", text::kLabelValid, Value::YesNo(valid));
    for (Report::Field& field : more) {
        report.Add(field.key, field.label, std::move(field.value));
    }
    return valid ? context.output.Done(report)
                 : context.output.Failed({ExitCode::Failed, "not-valid", text::kSayNotValid},
                                         &report);
}

/// The value only if it is one.
Value If(bool valid, Value value)
{
    return valid ? std::move(value) : Value::Unknown();
}

Ending CheckNumber(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(options.minimum, options.maximum, host);
    const bool valid = check.CheckNum(text, nullptr, options.integer ? 1 : 0, 1) == 1;
    const auto decimals = static_cast<std::uint8_t>(options.decimals);
    const double value = CParts::atof(text);
    return Tell(context, options, valid,
                {{"value", text::kLabelValue, If(valid, Value::Exact(value))},
                 {"rounded", text::kLabelRounded,
                  If(valid, Value::Real(CParts::round(value, decimals), options.decimals))}});
}

Ending CheckPoint(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context);
    return Tell(context, options,
                CCheck(host).CheckPointName(FromUtf8(options.text), nullptr, 1) == 1, {});
}

Ending CheckAngle(const Context& context, const CheckOptions& options)
{
    TerminalHost host(context);
    const std::wstring text = FromUtf8(options.text);
    CCheck check(host);
    check.SetRadMinMax(options.minimumDeg, options.maximumDeg);
    const bool valid = check.CheckDeg(text, nullptr, 1) == 1;
    const auto decimals = static_cast<std::uint8_t>(options.decimals);
    const double rad = valid ? check.GetRad(text) : 0.0;
    return Tell(
        context, options, valid,
        {{"rad", text::kLabelRadians, If(valid, Value::Exact(rad))},
         {"dms", text::kLabelDegrees, If(valid, Value::Text(RADtoDEGStr(rad, 0, decimals)))}});
}

Ending CountUp(const Context& context, const CheckOptions& options)
{
    Report report;
    report.Add("name", text::kLabelName, Value::Text(options.text));
    Report::Table table{"names"};
    std::wstring name = FromUtf8(options.text);
    for (int i = 0; i < options.count; ++i) {
        const std::wstring before = name;
        PointNameIncre(name, static_cast<std::uint8_t>(options.maxLength));
        table.rows.push_back({{"name", text::kHeadNext, Value::Text(name)},
                              {"changed", text::kHeadChanged, Value::YesNo(name != before)}});
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
    return AddCommand<CheckOptions>(
        program, {"check", text::kHelpCheck},
        {{"number", text::kHelpCheckNumber,
          [](CLI::App& parser, CheckOptions& options) {
              AddTyped(parser, options, text::kOptTyped);
              AddNumber(parser, "--min", options.minimum, {-1e24, 1e24, "", "-1e24"}, "N",
                        text::kOptLowest);
              AddNumber(parser, "--max", options.maximum, {-1e24, 1e24, "", "1e24"}, "N",
                        text::kOptHighest);
              AddFlag(parser, "--integer", options.integer, text::kOptInteger);
              AddDecimals(parser, options);
          },
          CheckNumber},
         {"point", text::kHelpCheckPoint,
          [](CLI::App& parser, CheckOptions& options) {
              AddTyped(parser, options, text::kOptTyped);
          },
          CheckPoint},
         {"angle", text::kHelpCheckAngle,
          [](CLI::App& parser, CheckOptions& options) {
              AddTyped(parser, options, text::kOptTypedAngle);
              AddNumber(parser, "--min", options.minimumDeg, {-359.0, 359.0, "deg", "-359"}, "N",
                        text::kOptLowestWhole);
              AddNumber(parser, "--max", options.maximumDeg, {-359.0, 359.0, "deg", "359"}, "N",
                        text::kOptHighestWhole);
              AddDecimals(parser, options);
          },
          CheckAngle}});
}

Command AddNextCommand(CLI::App& program)
{
    return AddCommand<CheckOptions>(
        program, {"next", text::kHelpNext,
                  [](CLI::App& parser, CheckOptions& options) {
                      AddTyped(parser, options, text::kOptLastPoint);
                      AddNumber(parser, "--max", options.maxLength,
                                {1.0, 255.0, Worded(text::kUnitCharacters), "255"}, "N",
                                text::kOptLongest);
                      AddNumber(parser, "--count", options.count, {1.0, 10000.0, "", "1"}, "N",
                                text::kOptHowMany);
                  },
                  CountUp});
}

} // namespace fieldcore::cli
