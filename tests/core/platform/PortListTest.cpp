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
class Machine
{
public:
    [[nodiscard]] SystemRoots Roots() const
    {
        return {m_folder.Path() / "dev", m_folder.Path() / "sys", m_folder.Path() / "proc"};
    }

    /// A port whose driver sits @p below the system's devices, with its device file.
    void AddPort(const std::string& name, const fs::path& below) const
    {
        const fs::path parent = fs::path("sys/devices") / below;
        m_folder.Link(parent / "driver", "some-driver");
        m_folder.Write(parent / "some-driver/name", "");
        m_folder.Link(parent / "tty" / name / "device", "../..");
        m_folder.Link("sys/class/tty/" + name, fs::path("../../devices") / below / "tty" / name);
        m_folder.Write("dev/" + name, "");
    }

    void Write(const fs::path& name, const std::string& content) const
    {
        m_folder.Write(name, content);
    }

    void Link(const fs::path& name, const fs::path& target) const { m_folder.Link(name, target); }

    [[nodiscard]] std::string Device(const std::string& name) const
    {
        return (m_folder.Path() / "dev" / name).string();
    }

private:
    TemporaryFolder m_folder;
};

std::vector<std::string> Paths(const std::vector<SerialPort>& ports)
{
    std::vector<std::string> paths;
    paths.reserve(ports.size());
    for (const SerialPort& port : ports) {
        paths.push_back(port.path);
    }
    return paths;
}

TEST(PortList, OffersOnlyPortsThatAreThere)
{
    const Machine machine;
    machine.AddPort("ttyS0", "serial8250-0");
    machine.Write("sys/class/tty/ttyS0/type", "4\n");
    machine.AddPort("ttyS1", "serial8250-1"); // no UART behind it
    machine.Write("sys/class/tty/ttyS1/type", "0\n");
    machine.AddPort("ttyUSB10", "usb1/1-3/1-3:1.0/ttyUSB10");
    machine.AddPort("ttyUSB2", "usb1/1-2/1-2:1.0/ttyUSB2");
    machine.AddPort("ttyACM0", "usb1/1-4/1-4:1.0"); // its device file was not made
    fs::remove(machine.Device("ttyACM0"));
    machine.Write("sys/class/tty/tty1/dev", "4:1\n"); // a screen, no driver
    machine.Write("dev/tty1", "");
    machine.Write("sys/class/tty/rfcomm0/address", "00:11:22:33:44:55\n");
    machine.Write("dev/rfcomm0", "");

    const SystemRoots roots = machine.Roots();
    EXPECT_EQ(Paths(ListSerialPorts(PortNames(roots), roots)),
              (std::vector<std::string>{machine.Device("rfcomm0"), machine.Device("ttyS0"),
                                        machine.Device("ttyUSB2"), machine.Device("ttyUSB10")}));
}

TEST(PortList, SaysWhatAPortIs)
{
    const Machine machine;
    machine.AddPort("ttyS0", "serial8250-0");
    machine.AddPort("ttyUSB0", "usb1/1-2/1-2:1.0/ttyUSB0");
    machine.Write("sys/devices/usb1/1-2/idVendor", "1234\n");
    machine.Write("sys/devices/usb1/1-2/product", "Field \x1B[2JCable\n");
    machine.Write("sys/devices/usb1/1-2/serial", "F100\n");
    machine.Write("sys/devices/usb1/idVendor", "0000\n"); // the hub above says nothing of the cable
    machine.Write("sys/devices/usb1/product", "Hub\n");
    machine.AddPort("ttyUSB1", "usb1/1-3/1-3:1.0/ttyUSB1");
    machine.Write("sys/devices/usb1/1-3/idVendor", "1234\n"); // silent about itself
    machine.Link("dev/serial/by-id/usb-F100", "../../ttyUSB0");

    const SystemRoots roots = machine.Roots();
    PortNames names(roots);
    ASSERT_TRUE(names.Assign(5, machine.Device("ttyUSB0")));
    const std::vector<SerialPort> ports = ListSerialPorts(names, roots);
    ASSERT_EQ(ports.size(), 3U);

    EXPECT_EQ(ports[0].description, "built-in serial port");
    EXPECT_EQ(ports[0].comName, "COM1");
    EXPECT_EQ(ports[0].stablePath, "");

    EXPECT_EQ(ports[1].description, "Field [2JCable, serial number F100");
    EXPECT_EQ(ports[1].comName, "COM5");
    EXPECT_EQ(ports[1].stablePath, machine.Device("serial/by-id/usb-F100"));

    EXPECT_EQ(ports[2].description, "USB serial adapter");
    EXPECT_EQ(ports[2].comName, "");
}

} // namespace
} // namespace fieldcore
