#include "core/platform/PortNames.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <optional>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::string_literals;

TEST(PortNames, ReadWhatAPersonWrites)
{
    const std::tuple<const char*, std::string, PortKind, std::string, std::string> rows[] = {
        {"capitals", "COM3", PortKind::Device, "/dev/ttyS2", ""},
        {"small letters", "com3", PortKind::Device, "/dev/ttyS2", ""},
        {"colon", "COM3:", PortKind::Device, "/dev/ttyS2", ""},
        {"blanks around", "  COM3 ", PortKind::Device, "/dev/ttyS2", ""},
        {"highest number", "COM256", PortKind::Device, "/dev/ttyS255", ""},
        {"assigned", "COM4", PortKind::Device, "/dev/ttyUSB7", ""},
        {"relative path", "./COM3", PortKind::Device, "./COM3", ""},
        {"blank inside a path", "/dev/my port", PortKind::Device, "/dev/my port", ""},
        {"simulator", "sim:", PortKind::Simulator, "", ""},
        {"scenario", "sim:lark", PortKind::Simulator, "", "lark"},
        {"scenario that looks like a path", "SIM:my/lark", PortKind::Simulator, "", "my/lark"},
    };
    PortNames names;
    ASSERT_TRUE(names.Assign(4, "/dev/ttyUSB7"));
    for (const auto& [fault, name, kind, path, scenario] : rows) {
        SCOPED_TRACE(fault);
        const PortNameResult result = names.Parse(name);
        ASSERT_TRUE(result.port) << result.fault;
        const NamedPort& port = *result.port;
        EXPECT_EQ(std::tie(port.kind, port.path, port.scenario), std::tie(kind, path, scenario));
    }
}

TEST(PortNames, RefuseWithAReason)
{
    // A name, and what is said of it.
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"nothing", "", "No port"},
        {"blanks", "  ", "No port"},
        {"COM0", "COM0", "1 to 256"},
        {"no number", "COM", "1 to 256"},
        {"beyond the last", "COM257", "1 to 256"},
        {"beyond an int", "COM9999999999", "1 to 256"},
        {"plus", "COM+1", "1 to 256"},
        {"something behind", "COM3x", "1 to 256"},
        {"two colons", "COM3::", "1 to 256"},
        {"device without its folder", "ttyUSB0", "whole path"},
        {"simulator without a colon", "sim", "sim:"},
        {"NUL", "/dev/tty\0USB0"s, "control"},
        {"line end", "COM3\n", "control"},
        {"escape in a scenario", "sim:\x1B[2J", "control"},
        {"endless", std::string(5000, '/'), "too long"},
    };
    const PortNames names;
    for (const auto& [fault, name, reason] : rows) {
        SCOPED_TRACE(fault);
        const PortNameResult result = names.Parse(name);
        EXPECT_FALSE(result.port);
        EXPECT_NE(result.fault.find(reason), std::string::npos) << result.fault;
    }
}

TEST(PortNames, RememberAnAdapterByItsStableName)
{
    const TemporaryFolder dev;
    const std::string adapter = dev.Write("ttyUSB0", "").string();
    const std::string other = dev.Write("ttyUSB1", "").string();
    const std::string stable = dev.Link("serial/by-id/usb-A-if00", "../../ttyUSB0").string();
    dev.Link("serial/by-id/usb-B-second-name", "../../ttyUSB0");
    dev.Link("serial/by-id/usb-0-gone", "../../ttyUSB9");

    PortNames names(SystemRoots{.dev = dev.Path()});
    ASSERT_TRUE(names.Assign(3, adapter));
    EXPECT_EQ(names.DevicePath(3), stable);
    ASSERT_TRUE(names.Assign(4, other));
    EXPECT_EQ(names.DevicePath(4), other) << "no stable name: the path itself";

    EXPECT_EQ(names.ComNumber(adapter), 3) << "asked by the name that was not remembered";
    EXPECT_EQ(names.ComNumber(stable), 3);
    EXPECT_EQ(names.ComNumber((dev.Path() / "ttyUSB9").string()), std::nullopt);

    EXPECT_FALSE(names.Assign(0, adapter));
    EXPECT_FALSE(names.Assign(PortNames::kMaxCom + 1, adapter));
    EXPECT_FALSE(names.Assign(1, "ttyUSB0"));
    EXPECT_EQ(names.Assigned().size(), 2U) << "a refused assignment left something";
}

TEST(PortNames, BuiltInPortLosesItsNumberToAnAssignedOne)
{
    PortNames names;
    EXPECT_EQ(names.ComNumber("/dev/ttyS1"), 2);
    EXPECT_EQ(names.ComNumber("/dev/ttyS256"), std::nullopt) << "no COM257";
    EXPECT_EQ(names.ComNumber("/dev/ttyS"), std::nullopt);
    EXPECT_EQ(names.ComNumber("/elsewhere/ttyS1"), std::nullopt);

    ASSERT_TRUE(names.Assign(2, "/dev/ttyUSB0"));
    EXPECT_EQ(names.ComNumber("/dev/ttyS1"), std::nullopt);
}

} // namespace
} // namespace fieldcore
