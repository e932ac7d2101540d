#include "cli/Doctor.h"

#include "cli/AlmanacReport.h"
#include "cli/Output.h"

#include "core/link/ConnectChoice.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacTime.h"
#include "core/platform/Folders.h"
#include "core/platform/PortList.h"
#include "core/platform/PortNames.h"
#include "core/platform/PortReport.h"
#include "core/platform/Version.h"
#include "core/settings/SettingsRoots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/utsname.h>
#include <unistd.h>

namespace fieldcore::cli {

namespace {

namespace fs = std::filesystem;

Finding ExamineGroup(const World& world)
{
    const World::SerialGroup group = world.serialGroup();
    Finding finding{"serial group", Health::Ok, "", ""};
    if (group.name.empty()) {
        finding.health = Health::Attention;
        finding.found = "This machine has no group for serial ports.";
        finding.advice = "fieldcore-cli ports tells for each port whether you may open it";
    } else if (group.isMember) {
        finding.found = "You may open what belongs to " + group.name + ".";
    } else if (group.isListed) {
        finding.health = Health::Attention;
        finding.found = "You are in " + group.name + ", but this session started before.";
        finding.advice = "log out and in again";
    } else {
        finding.health = Health::Bad;
        finding.found = "You are not in " + group.name + ", whose members may open serial ports.";
        finding.advice = "sudo usermod -aG " + group.name + " $USER, then log out and in again";
    }
    return finding;
}

Health HealthOf(PortTrouble trouble)
{
    switch (trouble) {
    case PortTrouble::None:
        return Health::Ok;
    case PortTrouble::InUse:
    case PortTrouble::LoginNeeded:
        return Health::Attention;
    case PortTrouble::Absent:
    case PortTrouble::Unplugged:
    case PortTrouble::NotADevice:
    case PortTrouble::NotSerial:
    case PortTrouble::NoHardware:
    case PortTrouble::NotAllowed:
        break;
    }
    return Health::Bad;
}

Finding ExaminePort(const World& world, const std::string& path, const std::string& description)
{
    const PortReport report = ReportPort(path, 0, world.roots); // which knows who holds it
    const bool free = report.trouble == PortTrouble::None;
    return {"port " + path, HealthOf(report.trouble), free ? description + ", free" : report.text,
            free ? std::string() : report.command};
}

void ExaminePorts(const World& world, std::vector<Finding>& findings)
{
    const std::vector<SerialPort> ports = ListSerialPorts(PortNames(world.roots), world.roots);
    for (const SerialPort& port : ports) {
        findings.push_back(ExaminePort(world, port.path, port.description));
    }
    // That of the controller, which may be none of these: one that is gone, or a simulator's.
    SettingsRoots roots{Folders(world.folders)};
    std::error_code error; // a store that is not there is not made for this
    const bool isStored = fs::exists(roots.File(RootKey::CurrentUser), error) && StoredPort(roots);
    const FoundTarget chosen =
        isStored ? FindTarget(roots, *StoredPort(roots), world.roots) : FoundTarget{};
    const std::string path = chosen.target ? chosen.target->devicePath : "";
    if (!chosen.detail.empty() && !chosen.scenario) {
        findings.push_back({"port of the controller", Health::Bad, chosen.detail,
                            "choose another one, or name it: --port PORT"});
    } else if (!path.empty() && std::none_of(ports.begin(), ports.end(),
                                             [&](const auto& port) { return port.path == path; })) {
        findings.push_back(ExaminePort(world, path, "of the controller"));
    }
    if (ports.empty()) {
        findings.push_back({"serial ports", Health::Attention, "There is none.",
                            "plug in an adapter, or use the simulator: --port sim:"});
    }
}

bool HasExtension(const fs::path& file, std::string_view wanted)
{
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return extension == wanted;
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
            const bool isFont = HasExtension(file, ".ttf") || HasExtension(file, ".ttc") ||
                                HasExtension(file, ".otf");
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
    Finding finding{"Japanese font", Health::Ok, "", ""};
    const std::optional<std::string> listed = world.listJapaneseFonts();
    const std::string found = listed ? listed->substr(0, listed->find('\n'))
                                     : FindFontFile(world.fontFolders).filename().string();
    if (!found.empty()) {
        finding.found = found;
        return finding;
    }
    finding.health = Health::Attention;
    finding.found = "There is none: the dialogs would show boxes.";
    finding.advice = "sudo apt install fonts-vlgothic";
    return finding;
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

Finding ExamineFolder(const std::string& name, const fs::path& folder)
{
    constexpr std::uintmax_t kMegabyte = 1'000'000;
    constexpr std::uintmax_t kScarce = 50 * kMegabyte; // a day of files and a catalogue
    Finding finding{name, Health::Bad, folder.string(), ""};
    const fs::path existing = Existing(folder);
    std::error_code error;
    if (!fs::is_directory(existing, error)) {
        finding.found += ": " + existing.string() + " is no folder.";
        finding.advice = "move that file away";
        return finding;
    }
    if (access(existing.c_str(), W_OK | X_OK) != 0) {
        finding.found += ": you may not write to " + existing.string() + ".";
        finding.advice = "sudo chown $USER " + existing.string();
        return finding;
    }
    const fs::space_info space = fs::space(existing, error);
    const bool isScarce = !error && space.available < kScarce;
    finding.health = isScarce ? Health::Attention : Health::Ok;
    finding.found += existing == folder ? "" : " (is made when it is needed)";
    finding.found += error ? ", free space unknown"
                           : ", " + std::to_string(space.available / kMegabyte) + " MB free";
    finding.advice = isScarce ? "make room: files from the receiver may not fit" : "";
    return finding;
}

Finding ExamineVersions()
{
    utsname system{};
    uname(&system);
    return {"version", Health::Ok,
            std::string("fieldcore ") + Version() + ", JSON schema " + std::to_string(kJsonSchema) +
                ", " + system.sysname + " " + system.release + " " + system.machine,
            ""};
}

Finding ExamineAlmanac(const World& world)
{
    Finding finding{"almanac", Health::Attention, "There is none yet.",
                    "fieldcore-cli almanac get --port PORT"};
    CSurveyPlanCalc almanac;
    const fs::path file = AlmanacPath(Folders(world.folders).Program());
    std::error_code error;
    if (!almanac.LoadAlmanac(file)) {
        finding.found =
            fs::exists(file, error) ? file.string() + " cannot be read." : finding.found;
        return finding;
    }
    constexpr double kDayS = 86400.0;
    const CGPSTime time = AlmanacTime(almanac);
    const CGPSTime now = GpsNow(world);
    const double days = static_cast<double>(GpsSeconds(now) - GpsSeconds(time)) / kDayS;
    finding.found = Value::Real(std::abs(days), 1).Words() +
                    (days < 0.0 ? " days newer than today" : " days old") + ", " + file.string();
    if (!IsAlmanacOld(time, now)) {
        finding.health = Health::Ok;
        finding.advice.clear();
    }
    return finding;
}

} // namespace

std::vector<Finding> Examine(const World& world)
{
    std::vector<Finding> findings;
    findings.push_back(ExamineVersions());
    findings.push_back(ExamineGroup(world));
    ExaminePorts(world, findings);
    findings.push_back(ExamineFont(world));
    findings.push_back(ExamineAlmanac(world));
    const Folders folders(world.folders);
    findings.push_back(ExamineFolder("program folder", folders.Program()));
    findings.push_back(ExamineFolder("documents", folders.Documents()));
    findings.push_back(ExamineFolder("built-in storage", folders.BuiltInStorage()));
    findings.push_back(ExamineFolder("settings", folders.Settings()));
    findings.push_back(ExamineFolder("machine settings", folders.MachineSettings()));
    for (const fs::path& card : folders.StorageCards()) {
        findings.push_back(ExamineFolder("storage card", card));
    }
    return findings;
}

} // namespace fieldcore::cli
