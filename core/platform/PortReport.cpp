#include "core/platform/PortReport.h"

#include "core/platform/FolderEntries.h"
#include "core/platform/NumberText.h"
#include "core/platform/PosixSerialDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kListPorts = "fieldcore-cli ports";

fs::path DeviceEntry(dev_t device, const SystemRoots& roots)
{
    const std::string numbers = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    return roots.sys / "dev/char" / numbers;
}

bool IsSerial(dev_t device, const SystemRoots& roots)
{
    if (IsPseudoTerminal(device)) { // they have no entry among the system's terminals
        return true;
    }
    std::error_code error;
    const fs::path entry = fs::canonical(DeviceEntry(device, roots), error);
    // Where the system does not show its devices, opening has to tell.
    return error || entry.parent_path().filename() == "tty";
}

PortFacts::Kind KindOf(const std::string& path, const SystemRoots& roots)
{
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) {
        const bool isLink = lstat(path.c_str(), &info) == 0;
        return isLink ? PortFacts::Kind::BrokenLink : PortFacts::Kind::Absent;
    }
    if (!S_ISCHR(info.st_mode)) {
        return S_ISBLK(info.st_mode) ? PortFacts::Kind::OtherDevice : PortFacts::Kind::File;
    }
    return IsSerial(info.st_rdev, roots) ? PortFacts::Kind::Serial : PortFacts::Kind::OtherDevice;
}

bool HasHardware(dev_t device, const SystemRoots& roots)
{
    std::ifstream type(DeviceEntry(device, roots) / "type");
    int uart = -1;
    return !(type >> uart) || uart != 0;
}

/// Whether the group database counts the user to the group, whatever the session has.
bool IsListed(const group& entry)
{
    std::array<char, 4096> buffer{};
    passwd user{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &user, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr) {
        return false;
    }
    if (found->pw_gid == entry.gr_gid) {
        return true;
    }
    for (char** member = entry.gr_mem; *member != nullptr; ++member) {
        if (std::string_view(*member) == found->pw_name) {
            return true;
        }
    }
    return false;
}

void FindGroup(gid_t id, PortFacts& facts)
{
    facts.group = std::to_string(id);
    std::vector<char> buffer(65536); // a group of many members is long
    group entry{};
    group* found = nullptr;
    if (getgrgid_r(id, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        facts.group = found->gr_name;
        facts.isListed = IsListed(*found);
    }
}

bool HasOpen(const fs::path& process, dev_t device)
{
    std::error_code error;
    for (const fs::path& at : FolderEntries(process / "fd", error)) {
        struct stat info = {};
        if (stat(at.c_str(), &info) == 0 && S_ISCHR(info.st_mode) && info.st_rdev == device) {
            return true;
        }
    }
    return false;
}

std::vector<PortHolder> FindHolders(dev_t device, const SystemRoots& roots)
{
    std::vector<PortHolder> holders;
    std::error_code error;
    for (const fs::path& at : FolderEntries(roots.proc, error)) {
        const std::optional<pid_t> pid = NumberOf<pid_t>(at.filename().string());
        if (pid && HasOpen(at, device)) {
            std::string name;
            std::ifstream comm(at / "comm");
            std::getline(comm, name);
            holders.push_back({*pid, name, *pid == getpid()});
        }
    }
    std::sort(holders.begin(), holders.end(),
              [](const PortHolder& a, const PortHolder& b) { return a.pid < b.pid; });
    return holders;
}

/// The path as a shell takes it for one word.
std::string Quoted(const std::string& path)
{
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                        "0123456789/._-+:,@%";
    if (!path.empty() && path.find_first_not_of(kPlain) == std::string::npos) {
        return path;
    }
    std::string quoted = "'";
    for (const char c : path) {
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return quoted + "'";
}

PortReport ExplainPermission(const PortFacts& facts)
{
    if (!facts.groupMayOpen || facts.group == "root") {
        // Joining the group would not help, or would give far too much.
        return {PortTrouble::NotAllowed,
                "You may not open " + facts.path + ", and neither may its group " + facts.group +
                    " on your behalf.",
                "sudo chown root:dialout " + Quoted(facts.path) + " && sudo chmod 660 " +
                    Quoted(facts.path)};
    }
    if (facts.isListed) {
        return {PortTrouble::LoginNeeded,
                "You belong to the group " + facts.group + ", but this session started before. " +
                    "Log out and in again, or start a shell that has the group.",
                "newgrp " + facts.group};
    }
    return {PortTrouble::NotAllowed,
            "You may not open " + facts.path + ": it is for members of the group " + facts.group +
                ". Join it, then log out and in again.",
            "sudo usermod -aG " + facts.group + " $USER"};
}

PortReport ExplainHolders(const PortFacts& facts)
{
    if (facts.holders.empty()) {
        return {PortTrouble::InUse,
                facts.path + " is in use by a program of another user or in another container.",
                "sudo fuser -v " + Quoted(facts.path)};
    }
    std::string names;
    for (const PortHolder& holder : facts.holders) {
        names += names.empty() ? "" : ", ";
        names += holder.isSelf ? "this program itself"
                               : holder.name + " (process " + std::to_string(holder.pid) + ")";
    }
    const PortHolder& first = facts.holders.front();
    const bool canEnd = facts.holders.size() == 1 && !first.isSelf;
    return {PortTrouble::InUse, facts.path + " is in use by " + names + ". Close it there first.",
            canEnd ? "kill " + std::to_string(first.pid) : "fuser -v " + Quoted(facts.path)};
}

} // namespace

PortFacts FindPortFacts(const std::string& path, int openError, const SystemRoots& roots)
{
    PortFacts facts;
    facts.path = path;
    facts.kind = KindOf(path, roots);
    facts.openError = openError;
    struct stat info = {};
    if (facts.kind != PortFacts::Kind::Serial || stat(path.c_str(), &info) != 0) {
        return facts;
    }
    facts.hasHardware = HasHardware(info.st_rdev, roots);
    facts.mayOpen = faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) == 0;
    facts.groupMayOpen = (info.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP);
    FindGroup(info.st_gid, facts);
    facts.holders = FindHolders(info.st_rdev, roots);
    return facts;
}

PortReport ExplainPort(const PortFacts& facts)
{
    switch (facts.kind) {
    case PortFacts::Kind::Absent:
        return {PortTrouble::Absent,
                "There is no " + facts.path +
                    ". Check the name, the cable, and that the adapter is plugged in.",
                std::string(kListPorts)};
    case PortFacts::Kind::BrokenLink:
        return {PortTrouble::Unplugged,
                "What " + facts.path + " stands for is gone. Plug it in again.",
                std::string(kListPorts)};
    case PortFacts::Kind::File:
        return {PortTrouble::NotADevice, facts.path + " is a file or a folder, not a port.",
                std::string(kListPorts)};
    case PortFacts::Kind::OtherDevice:
        return {PortTrouble::NotSerial, facts.path + " is a device, but not a serial port.",
                std::string(kListPorts)};
    case PortFacts::Kind::Serial:
        break;
    }
    if (!facts.hasHardware) {
        return {PortTrouble::NoHardware,
                "This machine has no serial hardware behind " + facts.path + ".",
                std::string(kListPorts)};
    }
    if (!facts.mayOpen) {
        return ExplainPermission(facts);
    }
    if (facts.openError == EBUSY || (facts.openError == 0 && !facts.holders.empty())) {
        return ExplainHolders(facts);
    }
    if (facts.openError != 0) {
        return {PortTrouble::None,
                "The system does not open " + facts.path + ": " +
                    std::generic_category().message(facts.openError) + ".",
                ""};
    }
    return {PortTrouble::None, "Nothing stands in the way of opening " + facts.path + ".", ""};
}

PortReport ReportPort(const std::string& path, int openError, const SystemRoots& roots)
{
    return ExplainPort(FindPortFacts(path, openError, roots));
}

} // namespace fieldcore
