#include "cli/AlmanacReport.h"
#include "cli/Command.h"

#include "core/link/ConnectChoice.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacTime.h"
#include "core/platform/Calendar.h"
#include "core/platform/Folders.h"
#include "core/platform/PortList.h"
#include "core/platform/PortNames.h"
#include "core/platform/PortReport.h"
#include "core/platform/Utf8.h"
#include "core/platform/Version.h"
#include "core/settings/SettingsRoots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/utsname.h>
#include <unistd.h>

namespace fieldcore::cli {

namespace {

namespace fs = std::filesystem;

/// How a thing is.
struct Health
{
    int word; ///< a text; a program reads the English one
    Colour colour;
};

constexpr Health kOk{text::kDoctorOk, Colour::Green};
constexpr Health kAttention{text::kDoctorAttention, Colour::Yellow}; // works, but not all of it
constexpr Health kBad{text::kDoctorBad, Colour::Red};

/// One thing that was looked at.
struct Finding
{
    int check = 0;       ///< a text
    std::string subject; ///< stands in it; may be empty
    Health health = kOk;
    std::string found;
    std::string advice; ///< what to do, as a command where there is one; empty if all is well
};

Finding ExamineGroup(const World& world)
{
    const World::SerialGroup group = world.serialGroup();
    const auto finding = [&group](Health health, int found, int advice) {
        return Finding{text::kDoctorGroup, "", health, Worded(found, {group.name}),
                       advice == 0 ? "" : Worded(advice, {group.name})};
    };
    return group.name.empty()
               ? finding(kAttention, text::kDoctorNoGroup, text::kDoctorNoGroupAdvice)
           : group.isMember ? finding(kOk, text::kDoctorMember, 0)
           : group.isListed ? finding(kAttention, text::kDoctorListed, text::kDoctorListedAdvice)
                            : finding(kBad, text::kDoctorNotMember, text::kDoctorNotMemberAdvice);
}

Health HealthOf(PortTrouble trouble)
{
    return trouble == PortTrouble::None                                           ? kOk
           : trouble == PortTrouble::InUse || trouble == PortTrouble::LoginNeeded ? kAttention
                                                                                  : kBad;
}

Finding ExaminePort(const World& world, const std::string& path, const std::string& description)
{
    const PortReport report = ReportPort(path, 0, world.system); // which knows who holds it
    const bool free = report.trouble == PortTrouble::None;
    return {text::kDoctorPort, path, HealthOf(report.trouble),
            free ? Worded(text::kDoctorFree, {description}) : Translated(report.text),
            free ? std::string() : report.command};
}

void ExaminePorts(const World& world, std::vector<Finding>& findings)
{
    const std::vector<SerialPort> ports = ListSerialPorts(PortNames(world.system), world.system);
    for (const SerialPort& port : ports) {
        findings.push_back(ExaminePort(world, port.path, Translated(port.description)));
    }
    // That of the controller, which may be none of these: one that is gone, or a simulator's.
    SettingsRoots& roots = world.Roots();
    std::error_code error; // a store that is not there is not made for this
    const bool isStored = fs::exists(roots.File(RootKey::CurrentUser), error) && StoredPort(roots);
    const FoundTarget chosen =
        isStored ? FindTarget(roots, *StoredPort(roots), world.system) : FoundTarget{};
    const std::string path = chosen.target ? chosen.target->devicePath : "";
    if (!chosen.detail.empty() && !chosen.scenario) {
        findings.push_back({text::kDoctorOwnPort, "", kBad, Translated(chosen.detail),
                            Worded(text::kDoctorOwnAdvice)});
    } else if (!path.empty() && std::none_of(ports.begin(), ports.end(),
                                             [&](const auto& port) { return port.path == path; })) {
        findings.push_back(ExaminePort(world, path, Worded(text::kDoctorOfController)));
    }
    if (ports.empty()) {
        findings.push_back({text::kDoctorPorts, "", kAttention, Worded(text::kDoctorNone),
                            Worded(text::kDoctorNoneAdvice)});
    }
}

/// A font file whose name is known to hold Japanese, for machines that cannot list fonts.
fs::path FindFontFile(const std::vector<fs::path>& folders)
{
    constexpr std::array kNames{"VL-Gothic", "VL-PGothic", "ipaexg", "ipag", "NotoSansCJK"};
    for (const fs::path& folder : folders) {
        std::error_code error;
        fs::recursive_directory_iterator files(
            folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && files != fs::recursive_directory_iterator(); files.increment(error)) {
            const fs::path& file = files->path();
            const std::string name = file.filename().string();
            std::string end = file.extension().string();
            std::transform(end.begin(), end.end(), end.begin(), [](char c) {
                return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
            });
            const bool isFont = end == ".ttf" || end == ".ttc" || end == ".otf";
            if (isFont && std::any_of(kNames.begin(), kNames.end(),
                                      [&](const char* known) { return name.starts_with(known); })) {
                return file;
            }
        }
    }
    return {};
}

Finding ExamineFont(const World& world)
{
    const std::optional<std::string> listed = world.listJapaneseFonts();
    const std::string found = listed ? listed->substr(0, listed->find('\n'))
                                     : FindFontFile(world.fontFolders).filename().string();
    return found.empty() ? Finding{text::kDoctorFont, "", kAttention, Worded(text::kDoctorNoFont),
                                   "sudo apt install fonts-vlgothic"}
                         : Finding{text::kDoctorFont, "", kOk, found, ""};
}

/// @p folder, or what there is of it: the next folder above it that exists.
fs::path Existing(fs::path folder)
{
    std::error_code error;
    while (!fs::exists(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

Finding ExamineFolder(int name, const fs::path& folder)
{
    constexpr std::uintmax_t kMegabyte = 1'000'000;
    constexpr std::uintmax_t kScarce = 50 * kMegabyte; // a day of files and a catalogue
    const fs::path existing = Existing(folder);
    std::error_code error;
    if (!fs::is_directory(existing, error)) {
        return {name, "", kBad, Worded(text::kDoctorNoFolder, {folder.string(), existing.string()}),
                Worded(text::kDoctorNoFolderAdvice)};
    }
    if (access(existing.c_str(), W_OK | X_OK) != 0) {
        return {name, "", kBad, Worded(text::kDoctorClosed, {folder.string(), existing.string()}),
                "sudo chown $USER " + existing.string()};
    }
    const fs::space_info space = fs::space(existing, error);
    const bool isScarce = !error && space.available < kScarce;
    const std::string place =
        existing == folder ? folder.string() : Worded(text::kDoctorToBeMade, {folder.string()});
    return {name, "", isScarce ? kAttention : kOk,
            Worded(error ? text::kDoctorSpaceUnknown : text::kDoctorSpace,
                   {place, std::to_string(space.available / kMegabyte)}),
            isScarce ? Worded(text::kDoctorMakeRoom) : ""};
}

Finding ExamineVersions()
{
    utsname system{};
    uname(&system);
    return {text::kDoctorVersion, "", kOk,
            Worded(text::kDoctorVersions,
                   {Version(), std::to_string(kJsonSchema),
                    std::string(system.sysname) + " " + system.release + " " + system.machine}),
            ""};
}

Finding ExamineAlmanac(const World& world)
{
    Finding finding{text::kLabelAlmanac, "", kAttention, Worded(text::kDoctorNoAlmanac),
                    "fieldcore-cli almanac get --port PORT"};
    CSurveyPlanCalc almanac;
    const fs::path file = AlmanacPath(world.GetFolders().Program());
    std::error_code error;
    if (!almanac.LoadAlmanac(file)) {
        finding.found =
            fs::exists(file, error) ? Worded(text::kSayNotRead, {file.string()}) : finding.found;
        return finding;
    }
    const CGPSTime time = AlmanacTime(almanac);
    const CGPSTime now = GpsNow(world);
    const double days = static_cast<double>(GpsSeconds(now) - GpsSeconds(time)) / kDayS;
    finding.found = Worded(days < 0.0 ? text::kDoctorNewer : text::kDoctorOlder,
                           {Value::Real(std::abs(days), 1).Words(), file.string()});
    if (!IsAlmanacOld(time, now)) {
        finding.health = kOk;
        finding.advice.clear();
    }
    return finding;
}

/// Looks at what a surveyor's machine must have: rights to the serial ports, the ports and who
/// holds them, a font, an almanac, and folders that can be written to. Changes nothing.
std::vector<Finding> Examine(const World& world)
{
    std::vector<Finding> findings;
    findings.push_back(ExamineVersions());
    findings.push_back(ExamineGroup(world));
    ExaminePorts(world, findings);
    findings.push_back(ExamineFont(world));
    findings.push_back(ExamineAlmanac(world));
    const Folders& folders = world.GetFolders();
    findings.push_back(ExamineFolder(text::kDoctorProgram, folders.Program()));
    findings.push_back(ExamineFolder(text::kDoctorDocuments, folders.Documents()));
    findings.push_back(ExamineFolder(text::kDoctorBuiltIn, folders.BuiltInStorage()));
    findings.push_back(ExamineFolder(text::kDoctorSettings, folders.Settings()));
    findings.push_back(ExamineFolder(text::kDoctorMachine, folders.MachineSettings()));
    for (const fs::path& card : folders.StorageCards()) {
        findings.push_back(ExamineFolder(text::kDoctorCard, card));
    }
    return findings;
}

Ending Run(const Context& context, const NoOptions& /*options*/)
{
    const std::vector<Finding> findings = Examine(context.world);
    Report::Table table{"checks"};
    std::size_t width = 0;
    for (const Finding& finding : findings) {
        width = std::max(width, DisplayWidth(Worded(finding.check, {finding.subject})));
    }
    std::string words = Padded(Worded(text::kHeadState), 11) +
                        Padded(Worded(text::kHeadCheck), width + 2) + Worded(text::kHeadFound) +
                        "\n";
    bool anyBad = false;
    for (const Finding& finding : findings) {
        table.rows.push_back(
            {{"check", "", Value::Text(InEnglish(finding.check, {finding.subject}))},
             {"health", "", Value::Text(InEnglish(finding.health.word))},
             {"found", "", Value::Text(finding.found)},
             {"advice", "", Value::Text(finding.advice)}});
        const std::string advice =
            finding.advice.empty() ? "" : Worded(text::kDoctorAdvice, {finding.advice});
        words +=
            context.output.Painted(Padded(Worded(finding.health.word), 11), finding.health.colour) +
            Padded(Worded(finding.check, {finding.subject}), width + 2) +
            Printable(finding.found + advice) + "\n";
        anyBad = anyBad || finding.health.word == kBad.word;
    }
    const ExitCode done = context.output.Done(Report(std::move(table)), words);
    return anyBad ? ExitCode::Failed : done;
}

} // namespace

Command AddDoctorCommand(CLI::App& program)
{
    return AddCommand<NoOptions>(program, {"doctor", text::kHelpDoctor, nullptr, Run});
}

} // namespace fieldcore::cli
