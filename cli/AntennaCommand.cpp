#include "cli/Command.h"
#include "cli/GeoInput.h"
#include "cli/Options.h"

#include "core/equipment/AntennaSettings.h"
#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"

#include <optional>
#include <string>

namespace fieldcore::cli {

namespace {

constexpr int kMillimetres = 3; // decimals of a height
constexpr int kCatalogue = 5;   // and of R and V
constexpr int kFull = 6;

struct AntennaOptions
{
    std::string role = "rover";
    std::optional<int> type;
    std::optional<int> method; ///< 0: vertical
    std::optional<std::string> height;
    std::optional<std::string> serial;
    std::string from; ///< file of logged data; empty: none
    std::string slant;
    std::string radius = "0";
    std::string vertical = "0";
};

/// The antenna settings for the time of one command, with the catalogue brought up to date.
struct Access
{
    Access(const Context& context, const AntennaOptions& options)
        : folder(context.world.GetFolders().Program()), command(context.world),
          settings(&command, 0, 0)
    {
        const bool hasFile = InstallSampleAntennas(folder) != 0;
        if (!hasFile || settings.CheckReg() == 0) {
            context.output.Warn({text::kSayCatalogueOld, {File()}});
        }
        settings.SetRole(options.role == "reference"      ? AntennaRole::Reference
                         : options.role == "rover-second" ? AntennaRole::RoverSecond
                                                          : AntennaRole::Rover);
        settings.ReadRegAnt();
    }

    [[nodiscard]] std::string File() const { return AntennaFilePath(folder).string(); }

    std::filesystem::path folder;
    CCommand command; ///< without a port
    AntennaSettings settings;
};

Value Shown(const std::wstring& text)
{
    const std::string utf8 = Printable(ToUtf8(text));
    return Value::Word(utf8, utf8.empty() ? "-" : utf8);
}

Value Metres(double value, int decimals)
{
    return Value::Real(value, decimals, "m");
}

Ending List(const Context& context, const AntennaOptions& options)
{
    Access access(context, options);
    Report report;
    report.Add("file", text::kLabelFile, Value::Text(access.File()));
    const int count = access.settings.GetMaxCount();
    Report::Table types{"types", text::kSayNoAntennas};
    Report::Table methods{"methods", text::kSayNoMethods};
    for (int n = 0; n < count; ++n) {
        const AntennaType type = access.settings.Catalogue().Type(n).value_or(AntennaType{});
        types.rows.push_back({{"type", text::kHeadType, Value::Integer(n)},
                              {"name", text::kHeadName, Shown(type.name)},
                              {"charCode", text::kHeadCalled, Shown(type.charCode)},
                              {"code", text::kHeadNo, Value::Integer(type.code)}});
        for (int way = 1;; ++way) {
            const auto method = access.settings.Catalogue().Method(n, way - 1);
            if (!method) {
                break;
            }
            methods.rows.push_back(
                {{"type", text::kHeadType, Value::Integer(n)},
                 {"method", text::kHeadMethod, Value::Integer(way)},
                 {"radiusM", "R", Metres(method->radiusM, kCatalogue)},
                 {"verticalM", "V", Metres(method->verticalM, kCatalogue)},
                 {"name", text::kHeadName, Shown(access.settings.GetAntWayStr(n, way))}});
        }
    }
    report.AddTable(std::move(types));
    report.AddTable(std::move(methods));
    return context.output.Done(report);
}

/// How a measured height becomes a vertical one, as a person writes it down.
std::string Derivation(const AntennaHeight& height)
{
    const auto number = [](double value, std::uint8_t decimals) {
        return ToUtf8(FormatFixed(value, decimals));
    };
    const std::string h = number(height.measuredM, 4);
    const std::string r = number(height.method.radiusM, kCatalogue);
    const std::string v = number(height.method.verticalM, kCatalogue);
    const std::string result = number(height.verticalM, kFull);
    switch (height.reduction) {
    case AntennaReduction::Slant:
        return "sqrt(" + h + "^2 - " + r + "^2) + " + v + " = " + result;
    case AntennaReduction::TooShort:
    case AntennaReduction::Upright:
        return h + " + " + v + " = " + result;
    case AntennaReduction::Unknown:
        return Worded(text::kSayMethodUnknown);
    case AntennaReduction::None:
        break;
    }
    return Worded(text::kSayVertical);
}

void AddHeight(const Context& context, Report& report, const AntennaHeight& height)
{
    report.Add("measuredM", text::kLabelMeasuredHeightH, Metres(height.measuredM, 4));
    report.Add("radiusM", text::kLabelRadiusR, Metres(height.method.radiusM, kCatalogue));
    report.Add("offsetM", text::kLabelOffsetV, Metres(height.method.verticalM, kCatalogue));
    report.Add("derivation", text::kLabelDerivation, Value::Text(Derivation(height)));
    report.Add("verticalM", text::kLabelVerticalHeight,
               Metres(CParts::round(height.verticalM, kMillimetres), kMillimetres));
    if (height.reduction == AntennaReduction::TooShort) {
        context.output.Warn(text::kSayNotLonger);
    }
}

/// What is stored, or would be, names a type or a method that there is not.
Failure NotInCatalogue(const AntennaSettings& settings)
{
    const bool isType = settings.ChoiceFault() == text::kAntennaTypeUnknown;
    return {ExitCode::Failed, "antenna-unknown",
            Worded(isType ? text::kSayStoredType : text::kSayStoredMethod,
                   {std::to_string(settings.GetAntTypeFlag()),
                    std::to_string(settings.GetAntWayFlag())}),
            Worded(text::kSayChoosesAnother, {isType ? "--type N" : "--method N"})};
}

/// @param isKnown  there is a height, stored or not
Ending ShowSettings(const Context& context, const Access& access, const AntennaOptions& options,
                    bool isKnown, bool isSet = false)
{
    AntennaInfo info;
    access.settings.GetAntInfo(info);
    if (access.settings.ChoiceFault() != 0) {
        context.output.Warn(NotInCatalogue(access.settings).message);
    }
    Report report;
    report.Add("role", text::kLabelRole, Value::Word(options.role, Translated(options.role)));
    report.Add("type", text::kLabelType, Value::Integer(info.type));
    report.Add("name", text::kLabelName, Shown(info.description.name));
    report.Add("number", text::kLabelNumber, Value::Integer(access.settings.GetAntNo()));
    report.Add("method", text::kLabelMethod, Value::Integer(info.way));
    report.Add("methodName", text::kLabelMeasured, Shown(info.methodName));
    report.Add("serial", text::kLabelSerialNumber, Shown(info.serial));
    report.Add("isMeasured", text::kLabelHeightKnown, Value::YesNo(isKnown));
    if (isKnown) {
        AddHeight(context, report, info.height);
    }
    return isSet ? Kept(context, report) : context.output.Done(report);
}

Ending Show(const Context& context, const AntennaOptions& options)
{
    const Access access(context, options);
    return ShowSettings(context, access, options, access.settings.GetAntFlag() != 0);
}

/// What is wrong with what shall be set.
std::optional<Failure> Check(const AntennaSettings& settings, const AntennaOptions& options)
{
    const int type = options.type.value_or(settings.GetAntTypeFlag());
    if (options.type && (type < 0 || type >= settings.GetMaxCount())) {
        return UsageFailure({text::kSayNoType, {std::to_string(type)}},
                            "fieldcore-cli antenna list");
    }
    if (options.method &&
        (*options.method < 0 || settings.GetAntWayStr(type, *options.method).empty())) {
        return UsageFailure(
            {text::kSayNoMethod, {std::to_string(type), std::to_string(*options.method)}},
            text::kSayNoMethodHint);
    }
    if (options.serial && !AntennaSerialFault(FromUtf8(*options.serial)).empty()) {
        return UsageFailure({text::kSayNoSerialNumber, {*options.serial}},
                            text::kSayNoSerialNumberHint);
    }
    return std::nullopt;
}

/// Takes the antenna from a file of logged data.
std::optional<Failure> TakeFrom(const std::string& file, AntennaSettings& settings)
{
    constexpr std::size_t kMost = 64U << 20U; // what a receiver logs in a day is less
    const auto blocks = ReadWholeFile(file, kMost);
    if (!blocks) {
        return FileFailure({text::kSayNotRead, {file}}, text::kSayLoggedHint);
    }
    if (settings.GetAntInfoFromLoggingData(*blocks) != 0) {
        return std::nullopt;
    }
    const std::string code = Printable(ToUtf8(settings.SourceCode()));
    return Failure{
        ExitCode::Failed, "antenna-unknown",
        Worded(code.empty() ? text::kSayFileNoAntenna : text::kSayAntennaNotThere, {file, code}),
        "fieldcore-cli antenna list"};
}

Ending Set(const Context& context, const AntennaOptions& options)
{
    double heightM = 0.0;
    if (options.height) {
        if (const auto failure =
                ReadMetres({text::kLabelHeight, *options.height, 0.0, kHighestAntennaM}, heightM)) {
            return *failure;
        }
    }
    Access access(context, options);
    AntennaSettings& settings = access.settings;
    const Failure notStored = FileFailure(text::kSayAntennaNotStored, "fieldcore-cli doctor");
    if (!context.dryRun && !context.world.Roots().Store(RootKey::CurrentUser).IsKept()) {
        return notStored; // then there may be no catalogue either
    }
    std::optional<Failure> failure;
    if (!options.from.empty()) {
        failure = TakeFrom(options.from, settings);
    }
    if (!failure) {
        failure = Check(settings, options);
    }
    if (failure) {
        return *failure;
    }
    if (!options.height && options.from.empty() && settings.GetAntFlag() == 0) {
        return UsageFailure(text::kSayNoHeight, "--height METRES");
    }
    if (options.type && settings.SetAntTypeFlag(*options.type) != 0) {
        settings.SetAntWayFlag(0); // the other antenna's method means another point of this one
    }
    if (options.method) {
        settings.SetAntWayFlag(*options.method);
    }
    if (options.height) {
        settings.SetAntInputH(heightM);
    }
    if (options.serial) {
        settings.SetAntSN(FromUtf8(*options.serial));
    }
    if (settings.ChoiceFault() != 0) {
        return NotInCatalogue(settings);
    }
    if (!context.dryRun && settings.WriteRegAnt() == 0) {
        return notStored;
    }
    return ShowSettings(context, access, options, true, true);
}

Ending Height(const Context& context, const AntennaOptions& options)
{
    double slantM = 0.0;
    AntennaMethod method;
    if (const auto failure =
            FirstOf({ReadMetres({text::kLabelSlant, options.slant, 0.0, kHighestAntennaM}, slantM),
                     ReadMetres({"R", options.radius, 0.0, kHighestAntennaM}, method.radiusM),
                     ReadMetres({"V", options.vertical, -kHighestAntennaM, kHighestAntennaM},
                                method.verticalM)})) {
        return *failure;
    }
    const AntennaHeight height = ReduceAntennaHeight(slantM, method);
    Report report;
    AddHeight(context, report, height);
    return context.output.Done(report, ToUtf8(CParts::Round(height.verticalM, kMillimetres)) +
                                           "   " + Derivation(height) + "\n");
}

void AddRole(CLI::App& parser, AntennaOptions& options)
{
    AddWord(parser, "--role", options.role, {"reference", "rover", "rover-second"}, "ROLE",
            text::kOptRole);
}

} // namespace

Command AddAntennaCommand(CLI::App& program)
{
    return AddCommand<AntennaOptions>(
        program, {"antenna", text::kHelpAntenna},
        {{"list", text::kHelpAntennaList, nullptr, List},
         {"show", text::kHelpAntennaShow, AddRole, Show},
         {"set", text::kHelpAntennaSet,
          [](CLI::App& parser, AntennaOptions& options) {
              AddRole(parser, options);
              AddText(parser, "--type", options.type, "N", text::kOptAntennaType);
              AddText(parser, "--method", options.method, "N", text::kOptAntennaMethod);
              AddText(parser, "--height", options.height, "METRES", text::kOptAntennaHeight);
              AddText(parser, "--serial", options.serial, "TEXT", text::kOptAntennaSerial);
              AddText(parser, "--from", options.from, "FILE", text::kOptAntennaFrom);
              AddDryRun(parser, text::kOptStoreDry);
          },
          Set},
         {"height", text::kHelpAntennaHeight,
          [](CLI::App& parser, AntennaOptions& options) {
              AddText(parser, "--slant", options.slant, "METRES", text::kOptSlant)->required();
              AddText(parser, "--r", options.radius, "METRES", text::kOptRadius);
              AddText(parser, "--v", options.vertical, "METRES", text::kOptVertical);
          },
          Height}});
}

} // namespace fieldcore::cli
