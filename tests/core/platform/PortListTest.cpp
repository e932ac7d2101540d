#include "core/platform/PortList.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

/// A made-up machine: the system's folders with ports in them.
struct Machine : TemporaryFolder
{
    /// A port whose driver sits @p below the system's devices, with its device file.
    void AddPort(const std::string& name, const fs::path& below) const
    {
        const fs::path parent = fs::path("sys/devices") / below;
        Link(parent / "driver", "some-driver");
        Write(parent / "some-driver/name", "");
        Link(parent / "tty" / name / "device", "../..");
        Link("sys/class/tty/" + name, fs::path("../../devices") / below / "tty" / name);
        Write("dev/" + name, "");
    }
};

TEST(PortList, OffersOnlyPortsThatAreThereAndSaysWhatTheyAre)
{
    const Machine machine;
    machine.AddPort("ttyS0", "serial8250-0");
    machine.Write("sys/class/tty/ttyS0/type", "4\n");
    machine.AddPort("ttyS1", "serial8250-1"); // no UART behind it
    machine.Write("sys/class/tty/ttyS1/type", "0\n");
    machine.AddPort("ttyUSB10", "usb1/1-3/1-3:1.0/ttyUSB10");
    machine.Write("sys/devices/usb1/1-3/idVendor", "1234\n"); // silent about itself
    machine.AddPort("ttyUSB2", "usb1/1-2/1-2:1.0/ttyUSB2");
    machine.Write("sys/devices/usb1/1-2/idVendor", "1234\n");
    machine.Write("sys/devices/usb1/1-2/product", "Field \x1B[2JCable\n");
    machine.Write("sys/devices/usb1/1-2/serial", "F100\n");
    machine.Write("sys/devices/usb1/idVendor", "0000\n"); // the hub above says nothing of the cable
    machine.Write("sys/devices/usb1/product", "Hub\n");
    machine.Link("dev/serial/by-id/usb-F100", "../../ttyUSB2");
    machine.AddPort("ttyACM0", "usb1/1-4/1-4:1.0"); // its device file was not made
    fs::remove(machine.Path() / "dev/ttyACM0");
    machine.Write("sys/class/tty/tty1/dev", "4:1\n"); // a screen, no driver
    machine.Write("dev/tty1", "");
    machine.Write("sys/class/tty/rfcomm0/address", "00:11:22:33:44:55\n");
    machine.Write("dev/rfcomm0", "");

    const fs::path dev = machine.Path() / "dev";
    const SystemRoots roots{dev, machine.Path() / "sys", machine.Path() / "proc"};
    PortNames names(roots);
    ASSERT_TRUE(names.Assign(5, (dev / "ttyUSB2").string()));
    std::vector<std::string> listed;
    for (const SerialPort& port : ListSerialPorts(names, roots)) {
        const std::string stable = fs::path(port.stablePath).filename().string();
        listed.push_back("SUB"[static_cast<int>(port.kind)] + std::string(" ") +
                         fs::path(port.path).lexically_relative(dev).string() + ": " +
                         port.description + "; " + port.comName + "; " + stable);
    }
    const std::vector<std::string> expected{
        "B rfcomm0: Bluetooth serial port to 00:11:22:33:44:55; ; ",
        "S ttyS0: built-in serial port; COM1; ",
        "U ttyUSB2: Field [2JCable, serial number F100; COM5; usb-F100",
        "U ttyUSB10: USB serial adapter; ; ",
    };
    EXPECT_EQ(listed, expected);
}

} // namespace
} // namespace fieldcore
