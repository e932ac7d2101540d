#include "cli/Command.h"
#include "cli/GeoInput.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/equipment/AntennaInput.h"
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
            context.output.Message("warning", "",
                                   "The antenna catalogue could not be brought up to date: " +
                                       AntennaFilePath(m_folders.Program()).string() +
                                       " or the settings cannot be written.",
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
    report.Add("file", Worded(text::kLabelFile), Value::Text(access.File().string()));
    const int count = access.settings.GetMaxCount();
    Report::Table types{"types",
                        "There are no antennas in the catalogue.",
                        {{"type", Worded(text::kHeadType)},
                         {"name", Worded(text::kHeadName)},
                         {"charCode", Worded(text::kHeadCalled)},
                         {"code", Worded(text::kHeadNo)}},
                        {}};
    Report::Table methods{"methods",
                          "There are no methods: heights are vertical.",
                          {{"type", Worded(text::kHeadType)},
                           {"method", Worded(text::kHeadMethod)},
                           {"radiusM", "R"},
                           {"verticalM", "V"},
                           {"name", Worded(text::kHeadName)}},
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
        return "as measured: the catalogue does not have the method";
    case AntennaReduction::None:
        break;
    }
    return "vertical as measured";
}

void AddHeight(Report& report, const AntennaHeight& height)
{
    report.Add("measuredM", Worded(text::kLabelMeasuredHeightH), Metres(height.measuredM, 4));
    report.Add("radiusM", Worded(text::kLabelRadiusR), Metres(height.method.radiusM, kCatalogue));
    report.Add("offsetM", Worded(text::kLabelOffsetV), Metres(height.method.verticalM, kCatalogue));
    report.Add("derivation", Worded(text::kLabelDerivation), Value::Text(Derivation(height)));
    report.Add("verticalM", Worded(text::kLabelVerticalHeight), Vertical(height.verticalM));
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
    const std::string type = std::to_string(settings.GetAntTypeFlag());
    return {ExitCode::Failed, "antenna-unknown",
            isType ? "The catalogue has no type " + type + ", which is stored."
                   : "The catalogue has no method " + std::to_string(settings.GetAntWayFlag()) +
                         " of type " + type + ", which is stored.",
            std::string(isType ? "--type N" : "--method N") +
                " chooses another; fieldcore-cli antenna list"};
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
    report.Add("role", Worded(text::kLabelRole), Value::Text(options.role));
    report.Add("type", Worded(text::kLabelType), Value::Integer(info.type));
    report.Add("name", Worded(text::kLabelName), Words(info.description.name));
    report.Add("number", Worded(text::kLabelNumber), Value::Integer(access.settings.GetAntNo()));
    report.Add("method", Worded(text::kLabelMethod), Value::Integer(info.way));
    report.Add("methodName", Worded(text::kLabelMeasured), Words(info.methodName));
    report.Add("serial", Worded(text::kLabelSerialNumber), Words(info.serial));
    report.Add("isMeasured", Worded(text::kLabelHeightKnown), Value::YesNo(isKnown));
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
        return UsageFailure("There is no type " + std::to_string(options.type) +
                                " in the catalogue.",
                            "fieldcore-cli antenna list");
    }
    const int type = options.typeOption->count() > 0 ? options.type : settings.GetAntTypeFlag();
    if (options.methodOption->count() > 0 &&
        (options.method < 0 || settings.GetAntWayStr(type, options.method).empty())) {
        return UsageFailure("Type " + std::to_string(type) + " has no method " +
                                std::to_string(options.method) + ".",
                            "0 for a vertical height, or fieldcore-cli antenna list");
    }
    if (options.serialOption->count() > 0 &&
        !AntennaSerialFault(FromUtf8(options.serial)).empty()) {
        return UsageFailure("\"" + options.serial + "\" is no serial number.",
                            "letters, digits and -, at most 16");
    }
    return std::nullopt;
}

/// Takes the antenna from a file of logged data.
std::optional<Failure> TakeFrom(const std::string& file, AntennaSettings& settings)
{
    constexpr std::size_t kMost = 64U << 20U; // what a receiver logs in a day is less
    const auto blocks = ReadWholeFile(file, kMost);
    if (!blocks) {
        return FileFailure(file + " cannot be read.", "Name a file of logged data.");
    }
    if (settings.GetAntInfoFromLoggingData(*blocks) != 0) {
        return std::nullopt;
    }
    const std::string code = Printable(ToUtf8(settings.SourceCode()));
    return Failure{ExitCode::Failed, "antenna-unknown",
                   code.empty() ? file + " tells of no antenna."
                                : "The catalogue does not have the antenna \"" + code +
                                      "\" with the method of " + file + ".",
                   "fieldcore-cli antenna list"};
}

ExitCode Set(const Context& context, const AntennaOptions& options)
{
    double heightM = 0.0;
    if (options.heightOption->count() > 0) {
        if (const auto failure =
                ReadMetres({"The height", options.height, 0.0, kHighestAntennaM}, heightM)) {
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
        ReadMetres({"The slant height", options.slant, 0.0, kHighestAntennaM}, slantM);
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
    parser.add_option("--role", options->role, "reference, rover or rover-second (rover)")
        ->transform(CLI::IsMember(std::set<std::string>{"reference", "rover", "rover-second"})
                        .description(""))
        ->type_name("ROLE");
}

} // namespace

Command AddAntennaCommand(CLI::App& program)
{
    CLI::App& parser =
        AddParser(program, "antenna", "Antennas, their heights, and how these are reduced",
                  "  fieldcore-cli antenna list                  the catalogue\n"
                  "  fieldcore-cli antenna show --role reference what is set\n"
                  "  fieldcore-cli antenna set --type 3 --method 1 --height 1.543\n"
                  "  fieldcore-cli antenna height --slant 1.5 --r 0.1 --v 0.05\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<AntennaOptions>();
    const CLI::App& list = AddParser(parser, "list", "The antennas of the catalogue",
                                     "  fieldcore-cli antenna list --json\n");
    CLI::App& show = AddParser(parser, "show", "What is set, and the vertical height",
                               "  fieldcore-cli antenna show --role reference\n");
    AddRole(show, options);

    CLI::App& set =
        AddParser(parser, "set", "Store the antenna of a role; what is not named stays",
                  "  fieldcore-cli antenna set --type 3 --method 1 --height 1.543\n"
                  "  fieldcore-cli antenna set --role reference --height 1.200 --serial A0001\n"
                  "  fieldcore-cli antenna set --from A0314A00 --dry-run   what was logged with\n");
    AddRole(set, options);
    options->typeOption =
        set.add_option("--type", options->type, "Number of the type in the catalogue")
            ->type_name("N");
    options->methodOption = set.add_option("--method", options->method,
                                           "0: the height is vertical; else a method's number")
                                ->type_name("N");
    options->heightOption =
        set.add_option("--height", options->height, "Height as measured, m")->type_name("METRES");
    options->serialOption =
        set.add_option("--serial", options->serial, "Serial number")->type_name("TEXT");
    set.add_option("--from", options->from,
                   "Take the last antenna of this file of logged data; the others go before it")
        ->type_name("FILE");
    AddDryRun(set, "Store nothing, show what would be");

    CLI::App& height = AddParser(parser, "height", "Reduce a slant height to a vertical one",
                                 "  fieldcore-cli antenna height --slant 1.5 --r 0.1 --v 0.05\n");
    height.add_option("--slant", options->slant, "Slant height as measured, m")
        ->type_name("METRES")
        ->required();
    height
        .add_option("--r", options->radius, "Distance of the measured point from the axis, m (0)")
        ->type_name("METRES");
    height.add_option("--v", options->vertical, "Phase centre above the measured point, m (0)")
        ->type_name("METRES");

    return {&parser, [=, &list, &show, &set](const Context& context) {
                return list.parsed()   ? List(context, *options)
                       : show.parsed() ? Show(context, *options)
                       : set.parsed()  ? Set(context, *options)
                                       : Height(context, *options);
            }};
}

} // namespace fieldcore::cli
