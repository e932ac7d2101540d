#include "cli/Command.h"
#include "cli/GeoInput.h"
#include "cli/Options.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/equipment/AntennaSettings.h"
#include "core/input/Parts.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"

#include <memory>
#include <optional>
#include <set>
#include <string>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

constexpr int kMillimetres = 3; // decimals of a height
constexpr int kCatalogue = 5;   // and of R and V
constexpr int kFull = 6;

struct AntennaOptions
{
    std::string role = "rover";
    int type = 0;
    int method = 0; ///< 0: vertical
    std::string height;
    std::string serial;
    std::string from; ///< file of logged data; empty: none
    std::string slant;
    std::string radius = "0";
    std::string vertical = "0";
    CLI::Option* typeOption = nullptr; // which of them were given
    CLI::Option* methodOption = nullptr;
    CLI::Option* heightOption = nullptr;
    CLI::Option* serialOption = nullptr;
};

AntennaRole RoleOf(const std::string& name)
{
    return name == "reference"      ? AntennaRole::Reference
           : name == "rover-second" ? AntennaRole::RoverSecond
                                    : AntennaRole::Rover;
}

/// The antenna settings for the time of one command, with the catalogue brought up to date.
class Access
{
public:
    Access(const Context& context, const AntennaOptions& options)
        : m_folders(context.world.folders), m_roots(m_folders),
          settings(nullptr, 0, 0, {m_folders.Program(), &m_roots})
    {
        const bool hasFile = InstallSampleAntennas(m_folders.Program()) != 0;
        if (!hasFile || settings.CheckReg() == 0) {
            context.output.Message(
                "warning", "",
                Worded(text::kSayCatalogueOld, {AntennaFilePath(m_folders.Program()).string()}),
                Colour::Yellow);
        }
        settings.SetRole(RoleOf(options.role));
        settings.ReadRegAnt();
    }

    [[nodiscard]] std::filesystem::path File() const
    {
        return AntennaFilePath(m_folders.Program());
    }
    [[nodiscard]] bool CanWrite() { return m_roots.Store(RootKey::CurrentUser).IsKept(); }

private:
    const Folders m_folders;
    SettingsRoots m_roots;

public:
    AntennaSettings settings; // behind the roots it uses
};

Value Words(const std::wstring& text)
{
    const std::string utf8 = Printable(ToUtf8(text));
    return Value::Word(utf8, utf8.empty() ? "-" : utf8);
}

Value Vertical(double metres)
{
    return Value::Real(CParts::round(metres, kMillimetres), kMillimetres, "m");
}

Value Metres(double value, int decimals)
{
    return Value::Real(value, decimals, "m");
}

ExitCode List(const Context& context, const AntennaOptions& options)
{
    Access access(context, options);
    Report report;
    report.Add("file", text::kLabelFile, Value::Text(access.File().string()));
    const int count = access.settings.GetMaxCount();
    Report::Table types{"types",
                        Worded(text::kSayNoAntennas),
                        {{"type", text::kHeadType},
                         {"name", text::kHeadName},
                         {"charCode", text::kHeadCalled},
                         {"code", text::kHeadNo}},
                        {}};
    Report::Table methods{"methods",
                          Worded(text::kSayNoMethods),
                          {{"type", text::kHeadType},
                           {"method", text::kHeadMethod},
                           {"radiusM", "R"},
                           {"verticalM", "V"},
                           {"name", text::kHeadName}},
                          {}};
    for (int n = 0; n < count; ++n) {
        const AntennaType type = access.settings.Catalogue().Type(n).value_or(AntennaType{});
        types.rows.push_back(
            {Value::Integer(n), Words(type.name), Words(type.charCode), Value::Integer(type.code)});
        for (int way = 1;; ++way) {
            const auto method = access.settings.Catalogue().Method(n, way - 1);
            if (!method) {
                break;
            }
            methods.rows.push_back({Value::Integer(n), Value::Integer(way),
                                    Metres(method->radiusM, kCatalogue),
                                    Metres(method->verticalM, kCatalogue),
                                    Words(access.settings.GetAntWayStr(n, way))});
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

void AddHeight(Report& report, const AntennaHeight& height)
{
    report.Add("measuredM", text::kLabelMeasuredHeightH, Metres(height.measuredM, 4));
    report.Add("radiusM", text::kLabelRadiusR, Metres(height.method.radiusM, kCatalogue));
    report.Add("offsetM", text::kLabelOffsetV, Metres(height.method.verticalM, kCatalogue));
    report.Add("derivation", text::kLabelDerivation, Value::Text(Derivation(height)));
    report.Add("verticalM", text::kLabelVerticalHeight, Vertical(height.verticalM));
}

void WarnOfShort(const Context& context, const AntennaHeight& height)
{
    if (height.reduction == AntennaReduction::TooShort) {
        context.output.Message("warning", "", Worded(text::kSayNotLonger), Colour::Yellow);
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
ExitCode ShowSettings(const Context& context, const Access& access, const AntennaOptions& options,
                      bool isKnown, bool isSet = false)
{
    AntennaInfo info;
    access.settings.GetAntInfo(info);
    if (access.settings.ChoiceFault() != 0) {
        context.output.Message("warning", "", NotInCatalogue(access.settings).message,
                               Colour::Yellow);
    }
    Report report;
    report.Add("role", text::kLabelRole, Value::Word(options.role, Translated(options.role)));
    report.Add("type", text::kLabelType, Value::Integer(info.type));
    report.Add("name", text::kLabelName, Words(info.description.name));
    report.Add("number", text::kLabelNumber, Value::Integer(access.settings.GetAntNo()));
    report.Add("method", text::kLabelMethod, Value::Integer(info.way));
    report.Add("methodName", text::kLabelMeasured, Words(info.methodName));
    report.Add("serial", text::kLabelSerialNumber, Words(info.serial));
    report.Add("isMeasured", text::kLabelHeightKnown, Value::YesNo(isKnown));
    if (isKnown) {
        AddHeight(report, info.height);
        WarnOfShort(context, info.height);
    }
    return isSet ? Kept(context, report) : context.output.Done(report);
}

ExitCode Show(const Context& context, const AntennaOptions& options)
{
    const Access access(context, options);
    return ShowSettings(context, access, options, access.settings.GetAntFlag() != 0);
}

/// What is wrong with what shall be set.
std::optional<Failure> Check(const AntennaSettings& settings, const AntennaOptions& options)
{
    const int count = settings.GetMaxCount();
    if (options.typeOption->count() > 0 && (options.type < 0 || options.type >= count)) {
        return UsageFailure(Worded(text::kSayNoType, {std::to_string(options.type)}),
                            "fieldcore-cli antenna list");
    }
    const int type = options.typeOption->count() > 0 ? options.type : settings.GetAntTypeFlag();
    if (options.methodOption->count() > 0 &&
        (options.method < 0 || settings.GetAntWayStr(type, options.method).empty())) {
        return UsageFailure(
            Worded(text::kSayNoMethod, {std::to_string(type), std::to_string(options.method)}),
            Worded(text::kSayNoMethodHint));
    }
    if (options.serialOption->count() > 0 &&
        !AntennaSerialFault(FromUtf8(options.serial)).empty()) {
        return UsageFailure(Worded(text::kSayNoSerialNumber, {options.serial}),
                            Worded(text::kSayNoSerialNumberHint));
    }
    return std::nullopt;
}

/// Takes the antenna from a file of logged data.
std::optional<Failure> TakeFrom(const std::string& file, AntennaSettings& settings)
{
    constexpr std::size_t kMost = 64U << 20U; // what a receiver logs in a day is less
    const auto blocks = ReadWholeFile(file, kMost);
    if (!blocks) {
        return FileFailure(Worded(text::kSayNotRead, {file}), Worded(text::kSayLoggedHint));
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

ExitCode Set(const Context& context, const AntennaOptions& options)
{
    double heightM = 0.0;
    if (options.heightOption->count() > 0) {
        if (const auto failure = ReadMetres(
                {Worded(text::kLabelHeight), options.height, 0.0, kHighestAntennaM}, heightM)) {
            return context.output.Failed(*failure);
        }
    }
    Access access(context, options);
    AntennaSettings& settings = access.settings;
    const Failure notStored =
        FileFailure(Worded(text::kSayAntennaNotStored), "fieldcore-cli doctor");
    if (!context.dryRun && !access.CanWrite()) {
        return context.output.Failed(notStored); // then there may be no catalogue either
    }
    std::optional<Failure> failure;
    if (!options.from.empty()) {
        failure = TakeFrom(options.from, settings);
    }
    if (!failure) {
        failure = Check(settings, options);
    }
    if (failure) {
        return context.output.Failed(*failure);
    }
    const bool hasHeight =
        options.heightOption->count() > 0 || !options.from.empty() || settings.GetAntFlag() != 0;
    if (!hasHeight) {
        return context.output.Failed(UsageFailure(Worded(text::kSayNoHeight), "--height METRES"));
    }
    if (options.typeOption->count() > 0 && settings.SetAntTypeFlag(options.type) != 0) {
        settings.SetAntWayFlag(0); // the other antenna's method means another point of this one
    }
    if (options.methodOption->count() > 0) {
        settings.SetAntWayFlag(options.method);
    }
    if (options.heightOption->count() > 0) {
        settings.SetAntInputH(heightM);
    }
    if (options.serialOption->count() > 0) {
        settings.SetAntSN(FromUtf8(options.serial));
    }
    if (settings.ChoiceFault() != 0) {
        return context.output.Failed(NotInCatalogue(settings));
    }
    if (!context.dryRun && settings.WriteRegAnt() == 0) {
        return context.output.Failed(notStored);
    }
    return ShowSettings(context, access, options, true, true);
}

ExitCode Height(const Context& context, const AntennaOptions& options)
{
    double slantM = 0.0;
    AntennaMethod method;
    std::optional<Failure> failure =
        ReadMetres({Worded(text::kLabelSlant), options.slant, 0.0, kHighestAntennaM}, slantM);
    if (!failure) {
        failure = ReadMetres({"R", options.radius, 0.0, kHighestAntennaM}, method.radiusM);
    }
    if (!failure) {
        failure = ReadMetres({"V", options.vertical, -kHighestAntennaM, kHighestAntennaM},
                             method.verticalM);
    }
    if (failure) {
        return context.output.Failed(*failure);
    }
    const AntennaHeight height = ReduceAntennaHeight(slantM, method);
    Report report;
    AddHeight(report, height);
    WarnOfShort(context, height);
    return context.output.Done(report, ToUtf8(CParts::Round(height.verticalM, kMillimetres)) +
                                           "   " + Derivation(height) + "\n");
}

using Options = std::shared_ptr<AntennaOptions>;

void AddRole(CLI::App& parser, const Options& options)
{
    parser.add_option("--role", options->role, Worded(text::kOptRole))
        ->transform(CLI::IsMember(std::set<std::string>{"reference", "rover", "rover-second"})
                        .description(""))
        ->type_name("ROLE");
}

} // namespace

Command AddAntennaCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "antenna", text::kHelpAntenna);
    parser.require_subcommand(1);
    const auto options = std::make_shared<AntennaOptions>();
    const CLI::App& list = AddParser(parser, "list", text::kHelpAntennaList);
    CLI::App& show = AddParser(parser, "show", text::kHelpAntennaShow);
    AddRole(show, options);

    CLI::App& set = AddParser(parser, "set", text::kHelpAntennaSet);
    AddRole(set, options);
    options->typeOption = AddText(set, "--type", options->type, "N", text::kOptAntennaType);
    options->methodOption = AddText(set, "--method", options->method, "N", text::kOptAntennaMethod);
    options->heightOption =
        AddText(set, "--height", options->height, "METRES", text::kOptAntennaHeight);
    options->serialOption =
        AddText(set, "--serial", options->serial, "TEXT", text::kOptAntennaSerial);
    AddText(set, "--from", options->from, "FILE", text::kOptAntennaFrom);
    AddDryRun(set, text::kOptStoreDry);

    CLI::App& height = AddParser(parser, "height", text::kHelpAntennaHeight);
    AddText(height, "--slant", options->slant, "METRES", text::kOptSlant)->required();
    AddText(height, "--r", options->radius, "METRES", text::kOptRadius);
    AddText(height, "--v", options->vertical, "METRES", text::kOptVertical);

    return {&parser, [=, &list, &show, &set](const Context& context) {
                return list.parsed()   ? List(context, *options)
                       : show.parsed() ? Show(context, *options)
                       : set.parsed()  ? Set(context, *options)
                                       : Height(context, *options);
            }};
}

} // namespace fieldcore::cli
