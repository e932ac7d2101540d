#pragma once

#include "core/platform/SerialDevice.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <string>

#include <sys/types.h>

struct termios;

namespace fieldcore {

/// Whether it is a side of a pseudo-terminal that programs open.
[[nodiscard]] bool IsPseudoTerminal(dev_t device);

/// A serial port, USB or Bluetooth serial port or pseudo-terminal behind termios. See
/// SerialDevice for what each operation does.
///
/// What is particular here:
/// - A port in use by another program is refused (a lock on the file, and exclusive mode on real
///   hardware; a pseudo-terminal would keep exclusive mode after a crash, so it has the lock only).
/// - A pseudo-terminal refuses 7 data bits and drops parity silently, and has no modem lines.
///   There that is accepted; on hardware a setting that was not kept is a failure.
/// - DSR flow control is made here, since termios has none: writing waits for DSR, and with DSR
///   sensitivity bytes read while DSR is off are thrown away.
/// - The thresholds of XON and XOFF are the driver's.
class PosixSerialDevice final : public SerialDevice
{
public:
    PosixSerialDevice() = default;
    ~PosixSerialDevice() override;
    PosixSerialDevice(const PosixSerialDevice&) = delete;
    PosixSerialDevice& operator=(const PosixSerialDevice&) = delete;

    [[nodiscard]] bool Open(const std::string& path) override;
    [[nodiscard]] bool Close() override;
    [[nodiscard]] bool IsOpen() const override { return m_port >= 0; }
    [[nodiscard]] bool SetQueueSizes(std::size_t receive, std::size_t transmit) override;
    [[nodiscard]] bool ReadSettings(LineSettings& settings) override;
    [[nodiscard]] bool ApplySettings(const LineSettings& settings) override;
    [[nodiscard]] bool ReadTimeouts(PortTimeouts& timeouts) override;
    [[nodiscard]] bool ApplyTimeouts(const PortTimeouts& timeouts) override;
    [[nodiscard]] bool SetEventMask(EventMask mask) override;
    [[nodiscard]] Event WaitEvent() override;
    void Wake() override;
    [[nodiscard]] std::optional<std::size_t> Read(std::span<std::uint8_t> buffer) override;
    [[nodiscard]] bool HasInput() override;
    [[nodiscard]] std::optional<std::size_t> Write(std::span<const std::uint8_t> bytes) override;
    [[nodiscard]] bool HasRoom(std::chrono::milliseconds limit) override;
    [[nodiscard]] bool Purge(Queue queue) override;
    [[nodiscard]] bool SetBreak() override;
    [[nodiscard]] bool ClearBreak() override;
    [[nodiscard]] bool EscapeFunction(Escape function) override;
    [[nodiscard]] bool ReadModemStatus(ModemStatus& status) override;
    [[nodiscard]] std::string LastFault() const override;
    [[nodiscard]] int LastFaultCode() const override;

private:
    bool Fail(const char* operation, int error);
    bool Apply(const LineSettings& settings, termios& wanted);
    bool SetModemLine(int line, bool on);
    std::optional<std::size_t> Moved(const char* operation, ssize_t count);
    bool DsrIsOff();

    int m_port = -1;
    int m_wake = -1; // eventfd
    bool m_isPseudoTerminal = false;
    LineSettings m_settings; // as applied; what termios cannot hold is remembered here
    PortTimeouts m_timeouts;
    std::atomic<EventMask> m_mask = EventMask::None;
    std::atomic<bool> m_dsrSensitivity = false;

    mutable std::mutex m_faultMutex;
    const char* m_faultOperation = ""; // guarded by m_faultMutex, as is the next
    int m_faultError = 0;
};

} // namespace fieldcore
