#include "core/platform/PosixSerialDevice.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore {

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

struct BaudRate
{
    std::uint32_t bitsPerSecond;
    speed_t code;
};

constexpr std::array kBaudRates{
    BaudRate{300, B300},       BaudRate{600, B600},       BaudRate{1200, B1200},
    BaudRate{2400, B2400},     BaudRate{4800, B4800},     BaudRate{9600, B9600},
    BaudRate{19200, B19200},   BaudRate{38400, B38400},   BaudRate{57600, B57600},
    BaudRate{115200, B115200}, BaudRate{230400, B230400}, BaudRate{460800, B460800},
    BaudRate{921600, B921600},
};

constexpr std::array<tcflag_t, 4> kByteSizes{CS5, CS6, CS7, CS8}; // for 5 to 8 data bits

// How often DSR is looked at while sending waits for it: no driver reports its changes.
constexpr std::chrono::milliseconds kDsrPollInterval{5};

std::optional<speed_t> SpeedCode(std::uint32_t bitsPerSecond)
{
    for (const BaudRate& rate : kBaudRates) {
        if (rate.bitsPerSecond == bitsPerSecond) {
            return rate.code;
        }
    }
    return std::nullopt;
}

int RemainingMs(SteadyTime deadline)
{
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

/// What a call of the system answers when no signal interrupts it.
template <typename Call>
auto Uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

void SetFlag(tcflag_t& flags, tcflag_t bit, bool on)
{
    flags = on ? flags | bit : flags & ~bit;
}

constexpr tcflag_t kControlBits = CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS;
constexpr tcflag_t kInputBits = IXON | IXOFF | INPCK;

bool SameLine(const termios& a, const termios& b)
{
    return (a.c_cflag & kControlBits) == (b.c_cflag & kControlBits) &&
           (a.c_iflag & kInputBits) == (b.c_iflag & kInputBits) &&
           cfgetispeed(&a) == cfgetispeed(&b) && cfgetospeed(&a) == cfgetospeed(&b);
}

} // namespace

bool IsPseudoTerminal(dev_t device)
{
    constexpr unsigned kFirstMajor = 136; // of their slave sides
    constexpr unsigned kLastMajor = 143;
    return major(device) >= kFirstMajor && major(device) <= kLastMajor;
}

PosixSerialDevice::~PosixSerialDevice()
{
    if (IsOpen()) {
        static_cast<void>(Close());
    }
}

bool PosixSerialDevice::Open(const std::string& path)
{
    // Non-blocking, or opening would wait for the carrier of a modem that is not there.
    m_port = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_port < 0) {
        return Fail("open", errno);
    }
    const auto giveUp = [this](const char* operation, int error) {
        close(m_port);
        m_port = -1;
        return Fail(operation, error);
    };
    if (isatty(m_port) == 0) {
        return giveUp("open", ENOTTY);
    }
    if (flock(m_port, LOCK_EX | LOCK_NB) != 0) {
        return giveUp("lock", errno == EWOULDBLOCK ? EBUSY : errno);
    }
    struct stat info = {};
    m_isPseudoTerminal = fstat(m_port, &info) == 0 && IsPseudoTerminal(info.st_rdev);
    if (!m_isPseudoTerminal && ioctl(m_port, TIOCEXCL) != 0) {
        return giveUp("lock", errno);
    }
    m_wake = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (m_wake < 0) {
        return giveUp("make an event", errno);
    }
    m_mask = EventMask::None;
    m_dsrSensitivity = false;
    m_settings = LineSettings{};
    m_timeouts = PortTimeouts{};
    return true;
}

bool PosixSerialDevice::Close()
{
    if (!IsOpen()) {
        return Fail("close", EBADF);
    }
    if (!m_isPseudoTerminal) {
        ioctl(m_port, TIOCNXCL);
    }
    close(m_wake);
    m_wake = -1;
    const int result = close(m_port);
    const int error = errno;
    m_port = -1;
    return result == 0 || Fail("close", error);
}

bool PosixSerialDevice::SetQueueSizes(std::size_t, std::size_t)
{
    return IsOpen() || Fail("set queue sizes", EBADF);
}

bool PosixSerialDevice::ReadSettings(LineSettings& settings)
{
    termios line{};
    if (tcgetattr(m_port, &line) != 0) {
        return Fail("read the line settings", errno);
    }
    settings = m_settings;
    for (const BaudRate& rate : kBaudRates) {
        if (rate.code == cfgetospeed(&line)) {
            settings.baudRate = rate.bitsPerSecond;
        }
    }
    for (std::size_t i = 0; i < kByteSizes.size(); ++i) {
        if (kByteSizes[i] == (line.c_cflag & CSIZE)) {
            settings.byteSize = static_cast<std::uint8_t>(i + 5);
        }
    }
    const bool odd = (line.c_cflag & PARODD) != 0;
    settings.parity = (line.c_cflag & PARENB) == 0 ? 0 : odd ? 1 : 2;
    settings.stopBits = (line.c_cflag & CSTOPB) != 0 ? 2 : 0;
    return true;
}

bool PosixSerialDevice::Apply(const LineSettings& settings, termios& wanted)
{
    const auto speed = SpeedCode(settings.baudRate);
    if (!speed || settings.byteSize < 5 || settings.byteSize > 8 || settings.parity > 2 ||
        (settings.stopBits != 0 && settings.stopBits != 2)) {
        return Fail("apply the line settings", EINVAL);
    }
    if (tcgetattr(m_port, &wanted) != 0) {
        return Fail("read the line settings", errno);
    }
    cfmakeraw(&wanted);
    cfsetispeed(&wanted, *speed);
    cfsetospeed(&wanted, *speed);
    wanted.c_cflag &= ~kControlBits;
    wanted.c_cflag |= kByteSizes[settings.byteSize - 5U] | CLOCAL | CREAD;
    SetFlag(wanted.c_cflag, PARENB, settings.parity != 0);
    SetFlag(wanted.c_cflag, PARODD, settings.parity == 1);
    SetFlag(wanted.c_cflag, CSTOPB, settings.stopBits == 2);
    SetFlag(wanted.c_cflag, CRTSCTS, settings.ctsOutputFlow || settings.rtsHandshake);
    SetFlag(wanted.c_iflag, INPCK, settings.checkParity);
    SetFlag(wanted.c_iflag, IXON, settings.xonXoffOutput);
    SetFlag(wanted.c_iflag, IXOFF, settings.xonXoffInput);
    wanted.c_cc[VSTART] = settings.xonChar;
    wanted.c_cc[VSTOP] = settings.xoffChar;
    wanted.c_cc[VMIN] = 0; // with O_NONBLOCK: what is there, at once
    wanted.c_cc[VTIME] = 0;
    return true;
}

bool PosixSerialDevice::ApplySettings(const LineSettings& settings)
{
    termios wanted{};
    if (!Apply(settings, wanted)) {
        return false;
    }
    if (tcsetattr(m_port, TCSANOW, &wanted) != 0) {
        if (!m_isPseudoTerminal || errno != EINVAL) {
            return Fail("apply the line settings", errno);
        }
        wanted.c_cflag = (wanted.c_cflag & ~kControlBits) | CS8;
        if (tcsetattr(m_port, TCSANOW, &wanted) != 0) {
            return Fail("apply the line settings", errno);
        }
    }
    termios kept{};
    if (tcgetattr(m_port, &kept) != 0) {
        return Fail("read the line settings", errno);
    }
    // tcsetattr succeeds when it could do any part of what it was asked.
    if (!m_isPseudoTerminal && !SameLine(kept, wanted)) {
        return Fail("apply the line settings", EINVAL);
    }
    if (!SetModemLine(TIOCM_DTR, settings.dtrEnabled) ||
        (!settings.rtsHandshake && !SetModemLine(TIOCM_RTS, true))) {
        return false;
    }
    m_settings = settings;
    m_dsrSensitivity = settings.dsrSensitivity;
    return true;
}

bool PosixSerialDevice::ReadTimeouts(PortTimeouts& timeouts)
{
    timeouts = m_timeouts;
    return IsOpen() || Fail("read the time-outs", EBADF);
}

bool PosixSerialDevice::ApplyTimeouts(const PortTimeouts& timeouts)
{
    if (!IsOpen()) {
        return Fail("apply the time-outs", EBADF);
    }
    m_timeouts = timeouts;
    return true;
}

bool PosixSerialDevice::SetEventMask(EventMask mask)
{
    if (!IsOpen()) {
        return Fail("set the event mask", EBADF);
    }
    m_mask = mask;
    if (mask == EventMask::None) {
        Wake();
    }
    return true;
}

SerialDevice::Event PosixSerialDevice::WaitEvent()
{
    if (m_mask == EventMask::None) {
        return Event::Woken;
    }
    std::array<pollfd, 2> watched{pollfd{m_port, POLLIN, 0}, pollfd{m_wake, POLLIN, 0}};
    if (Uninterrupted([&] { return poll(watched.data(), watched.size(), -1); }) < 0) {
        Fail("wait for an event", errno);
        return Event::Failed;
    }
    if ((watched[1].revents & POLLIN) != 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t emptied = read(m_wake, &count, sizeof count);
        return Event::Woken;
    }
    // Before POLLIN: a port that is gone reports both for ever and has nothing to read.
    if ((watched[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
        Fail("wait for an event", EIO);
        return (watched[0].revents & POLLHUP) != 0 ? Event::HangUp : Event::Failed;
    }
    return Event::Received;
}

void PosixSerialDevice::Wake()
{
    const std::uint64_t one = 1;
    // A full counter means that it is set already, which is all that is wanted.
    [[maybe_unused]] const ssize_t written = write(m_wake, &one, sizeof one);
}

std::optional<std::size_t> PosixSerialDevice::Read(std::span<std::uint8_t> buffer)
{
    const auto count =
        Moved("read", Uninterrupted([&] { return read(m_port, buffer.data(), buffer.size()); }));
    return count > 0U && m_dsrSensitivity && DsrIsOff() ? std::optional<std::size_t>(0) : count;
}

bool PosixSerialDevice::HasInput()
{
    int count = 0;
    return ioctl(m_port, FIONREAD, &count) == 0 && count > 0;
}

std::optional<std::size_t> PosixSerialDevice::Write(std::span<const std::uint8_t> bytes)
{
    if (m_settings.dsrOutputFlow && DsrIsOff()) {
        return 0;
    }
    return Moved("write", Uninterrupted([&] { return write(m_port, bytes.data(), bytes.size()); }));
}

/// @return the number of bytes of a read or a write, 0 if the port is not ready
std::optional<std::size_t> PosixSerialDevice::Moved(const char* operation, ssize_t count)
{
    if (count >= 0) {
        return static_cast<std::size_t>(count);
    }
    return errno == EAGAIN || Fail(operation, errno) ? std::optional<std::size_t>(0) : std::nullopt;
}

bool PosixSerialDevice::HasRoom(std::chrono::milliseconds limit)
{
    const SteadyTime deadline = std::chrono::steady_clock::now() + limit;
    while (m_settings.dsrOutputFlow && DsrIsOff()) {
        if (RemainingMs(deadline) == 0) {
            return false;
        }
        std::this_thread::sleep_for(kDsrPollInterval);
    }
    pollfd watched{m_port, POLLOUT, 0};
    return poll(&watched, 1, RemainingMs(deadline)) != 0;
}

bool PosixSerialDevice::Purge(Queue queue)
{
    return tcflush(m_port, queue == Queue::Receive ? TCIFLUSH : TCOFLUSH) == 0 ||
           Fail("purge", errno);
}

bool PosixSerialDevice::SetBreak()
{
    return ioctl(m_port, TIOCSBRK) == 0 || Fail("set BREAK", errno);
}

bool PosixSerialDevice::ClearBreak()
{
    return ioctl(m_port, TIOCCBRK) == 0 || Fail("clear BREAK", errno);
}

bool PosixSerialDevice::SetModemLine(int line, bool on)
{
    if (ioctl(m_port, on ? TIOCMBIS : TIOCMBIC, &line) == 0) {
        return true;
    }
    const bool noSuchLine = errno == ENOTTY || errno == EINVAL;
    return noSuchLine || Fail("set a modem line", errno);
}

bool PosixSerialDevice::EscapeFunction(Escape function)
{
    const bool isRts = function == Escape::SetRts || function == Escape::ClearRts;
    return SetModemLine(isRts ? TIOCM_RTS : TIOCM_DTR,
                        function == Escape::SetRts || function == Escape::SetDtr);
}

bool PosixSerialDevice::ReadModemStatus(ModemStatus& status)
{
    int lines = 0;
    if (ioctl(m_port, TIOCMGET, &lines) != 0) {
        if (errno != ENOTTY && errno != EINVAL) {
            return Fail("read the modem status", errno);
        }
        lines = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR | TIOCM_RNG;
    }
    status.cts = (lines & TIOCM_CTS) != 0;
    status.dsr = (lines & TIOCM_DSR) != 0;
    status.ring = (lines & TIOCM_RNG) != 0;
    status.carrier = (lines & TIOCM_CAR) != 0;
    return true;
}

bool PosixSerialDevice::DsrIsOff()
{
    ModemStatus status;
    return ReadModemStatus(status) && !status.dsr;
}

std::string PosixSerialDevice::LastFault() const
{
    const std::scoped_lock lock(m_faultMutex);
    if (m_faultError == 0) {
        return {};
    }
    return std::string(m_faultOperation) + ": " + std::generic_category().message(m_faultError);
}

int PosixSerialDevice::LastFaultCode() const
{
    const std::scoped_lock lock(m_faultMutex);
    return m_faultError;
}

bool PosixSerialDevice::Fail(const char* operation, int error)
{
    const std::scoped_lock lock(m_faultMutex);
    m_faultOperation = operation;
    m_faultError = error;
    return false;
}

} // namespace fieldcore
