#include "core/platform/PortReport.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <tuple>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

PortFacts GoodPort()
{
    PortFacts facts;
    facts.path = "/dev/ttyUSB0";
    facts.kind = PortFacts::Kind::Serial;
    facts.group = "dialout";
    return facts;
}

TEST(PortReport, NamesTheTroubleAndTheCommand)
{
    using Kind = PortFacts::Kind;
    using enum PortTrouble;
    const auto kind = [](Kind is) { return [=](PortFacts& f) { f.kind = is; }; };
    const auto barred = [](const char* group, bool isListed = false, bool groupMayOpen = true) {
        return [=](PortFacts& f) {
            f.mayOpen = false;
            f.group = group;
            f.isListed = isListed;
            f.groupMayOpen = groupMayOpen;
        };
    };
    const auto held = [](std::string by, bool isSelf, int error = 0) {
        return [=](PortFacts& f) {
            f.holders = {{1234, by, isSelf}};
            f.openError = error;
        };
    };
    const auto heldTwice = [](PortFacts& f) {
        f.path = "/dev/it's one";
        f.holders = {{1234, "a", false}, {1235, "b", false}};
    };
    const std::string ports = "fieldcore-cli ports";
    const std::string chown = "sudo chown root:dialout /dev/ttyUSB0 && sudo chmod 660 /dev/ttyUSB0";
    using Spoil = std::function<void(PortFacts&)>;
    const std::tuple<const char*, Spoil, PortTrouble, std::string> rows[] = {
        {"nothing", [](PortFacts&) {}, None, ""},
        {"no such name", kind(Kind::Absent), Absent, ports},
        {"not a serial device", kind(Kind::OtherDevice), NotSerial, ports},
        {"no hardware, whoever asks", [](PortFacts& f) { f.hasHardware = f.mayOpen = false; },
         NoHardware, ports},
        {"not in the group", barred("uucp"), NotAllowed, "sudo usermod -aG uucp $USER"},
        {"in the group, session older", barred("dialout", true), LoginNeeded, "newgrp dialout"},
        {"told to join the group root", barred("root"), NotAllowed, chown},
        {"told to join a group that may not open it either", barred("dialout", true, false),
         NotAllowed, chown},
        {"one program has it", held("logger", false), InUse, "kill 1234"},
        {"told to kill itself", held("me", true), InUse, "fuser -v /dev/ttyUSB0"},
        {"two programs have it", heldTwice, InUse, "fuser -v '/dev/it'\\''s one'"},
        {"a program that does not stand in the way is blamed", held("simulator", false, EIO), None,
         ""},
        {"a program that cannot be seen", [](PortFacts& f) { f.openError = EBUSY; }, InUse,
         "sudo fuser -v /dev/ttyUSB0"},
    };
    for (const auto& [fault, spoil, trouble, command] : rows) {
        SCOPED_TRACE(fault);
        PortFacts facts = GoodPort();
        spoil(facts);
        const PortReport report = ExplainPort(facts);
        EXPECT_EQ(std::tie(report.trouble, report.command), std::tie(trouble, command));
        EXPECT_FALSE(report.text.empty());
    }
}

TEST(PortReport, SeesWhoHasAPortOpenAndPassesOnWhatOpeningSaid)
{
    int master = -1;
    int slave = -1;
    char path[64];
    ASSERT_EQ(openpty(&master, &slave, path, nullptr, nullptr), 0);
    close(slave);
    EXPECT_EQ(ReportPort(path).trouble, PortTrouble::None) << "the other end does not count";
    EXPECT_EQ(ReportPort(path, EBUSY).trouble, PortTrouble::InUse);
    const PortReport report = ReportPort(path, EIO);
    EXPECT_NE(report.text.find("Input/output error"), std::string::npos) << report.text;

    slave = open(path, O_RDWR | O_NOCTTY);
    const PortFacts facts = FindPortFacts(path);
    ASSERT_EQ(facts.holders.size(), 1U);
    EXPECT_EQ(facts.holders[0].pid, getpid());
    EXPECT_TRUE(facts.holders[0].isSelf);
    EXPECT_FALSE(facts.holders[0].name.empty());

    // By whatever name the port is asked for.
    const TemporaryFolder folder;
    const fs::path link = folder.Link("port", path);
    EXPECT_EQ(ReportPort(link.string()).trouble, PortTrouble::InUse);
    close(slave);
    close(master);
}

TEST(PortReport, TellsWhatIsNoPort)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ReportPort((folder.Path() / "absent").string()).trouble, PortTrouble::Absent);
    EXPECT_EQ(ReportPort("").trouble, PortTrouble::Absent);
    EXPECT_EQ(ReportPort(folder.Link("by-id", "gone").string()).trouble, PortTrouble::Unplugged);
    EXPECT_EQ(ReportPort(folder.Write("file", "").string()).trouble, PortTrouble::NotADevice);
    EXPECT_EQ(ReportPort(folder.Path().string()).trouble, PortTrouble::NotADevice);
}

// The null device plays the part of each device in turn: what it is says the made-up tree.
TEST(PortReport, AsksTheSystemWhatADeviceIs)
{
    struct stat info = {};
    ASSERT_EQ(stat("/dev/null", &info), 0);
    const std::string numbers =
        std::to_string(major(info.st_rdev)) + ":" + std::to_string(minor(info.st_rdev));
    const TemporaryFolder folder;
    const SystemRoots roots{.sys = folder.Path() / "sys", .proc = folder.Path() / "proc"};
    EXPECT_EQ(FindPortFacts("/dev/null", 0, roots).kind, PortFacts::Kind::Serial)
        << "nothing known: opening has to tell";

    const fs::path entry = fs::path("sys/dev/char") / numbers;
    folder.Write("sys/devices/mem/null/dev", "");
    folder.Link(entry, "../../devices/mem/null");
    EXPECT_EQ(ReportPort("/dev/null", 0, roots).trouble, PortTrouble::NotSerial);

    fs::remove(folder.Path() / entry);
    folder.Write("sys/devices/port/tty/ttyS0/type", "0\n");
    folder.Link(entry, "../../devices/port/tty/ttyS0");
    EXPECT_EQ(ReportPort("/dev/null", 0, roots).trouble, PortTrouble::NoHardware);
    folder.Write("sys/devices/port/tty/ttyS0/type", "4\n");
    EXPECT_EQ(ReportPort("/dev/null", 0, roots).trouble, PortTrouble::None);

    folder.Link("proc/77/fd/3", "/dev/null");
    folder.Write("proc/77/comm", "logger\n");
    folder.Link("proc/7/fd/0", "/dev/null");
    folder.Link("proc/notaprocess/fd/0", "/dev/null");
    folder.Link("proc/8/fd/0", "/dev/zero");
    const PortFacts facts = FindPortFacts("/dev/null", 0, roots);
    ASSERT_EQ(facts.holders.size(), 2U);
    EXPECT_EQ(facts.holders[0].pid, 7);
    EXPECT_EQ(facts.holders[1].pid, 77);
    EXPECT_EQ(facts.holders[1].name, "logger");
}

} // namespace
} // namespace fieldcore
