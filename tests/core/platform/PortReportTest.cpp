#include "core/platform/PortReport.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

/// Both ends of a pseudo-terminal.
class PseudoTerminal
{
public:
    PseudoTerminal() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (m_master >= 0 && grantpt(m_master) == 0 && unlockpt(m_master) == 0) {
            m_path = ptsname(m_master); // NOLINT(concurrency-mt-unsafe)
        }
    }
    ~PseudoTerminal()
    {
        close(m_slave);
        close(m_master);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    void OpenSlave() { m_slave = open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); }

private:
    int m_master;
    int m_slave = -1;
    std::string m_path;
};

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
    struct Row
    {
        const char* fault;
        std::function<void(PortFacts&)> spoil;
        PortTrouble trouble;
        std::string command;
    };
    const Row rows[] = {
        {"nothing", [](PortFacts&) {}, None, ""},
        {"no such name", kind(Kind::Absent), Absent, ports},
        {"adapter pulled out", kind(Kind::BrokenLink), Unplugged, ports},
        {"a folder", kind(Kind::File), NotADevice, ports},
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        PortFacts facts = GoodPort();
        row.spoil(facts);
        const PortReport report = ExplainPort(facts);
        EXPECT_EQ(report.trouble, row.trouble);
        EXPECT_EQ(report.command, row.command);
        EXPECT_FALSE(report.text.empty());
    }
}

TEST(PortReport, SeesWhoHasAPortOpen)
{
    PseudoTerminal terminal;
    ASSERT_FALSE(terminal.Path().empty());
    EXPECT_EQ(ReportPort(terminal.Path()).trouble, PortTrouble::None);

    terminal.OpenSlave();
    const PortFacts facts = FindPortFacts(terminal.Path());
    ASSERT_EQ(facts.holders.size(), 1U) << "the other end does not count";
    EXPECT_EQ(facts.holders[0].pid, getpid());
    EXPECT_TRUE(facts.holders[0].isSelf);
    EXPECT_FALSE(facts.holders[0].name.empty());

    // By whatever name the port is asked for.
    const TemporaryFolder folder;
    const fs::path link = folder.Link("port", terminal.Path());
    EXPECT_EQ(ReportPort(link.string()).trouble, PortTrouble::InUse);
}

TEST(PortReport, PassesOnWhatOpeningSaid)
{
    const PseudoTerminal terminal;
    EXPECT_EQ(ReportPort(terminal.Path(), EBUSY).trouble, PortTrouble::InUse);
    const PortReport report = ReportPort(terminal.Path(), EIO);
    EXPECT_NE(report.text.find("Input/output error"), std::string::npos) << report.text;
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
