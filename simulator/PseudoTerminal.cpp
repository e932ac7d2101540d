#include "simulator/PseudoTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::simulator {

namespace fs = std::filesystem;

namespace {

std::string LastError(const std::string& what)
{
    return what + ": " + std::generic_category().message(errno);
}

void CloseDescriptor(int& descriptor)
{
    if (descriptor >= 0) {
        close(descriptor);
        descriptor = -1;
    }
}

timespec ToTimespec(Clock::Duration duration)
{
    const Clock::Duration positive = std::max(duration, Clock::Duration::zero());
    const auto whole = std::chrono::floor<std::chrono::seconds>(positive);
    timespec value{};
    value.tv_sec = static_cast<std::time_t>(whole.count());
    value.tv_nsec = static_cast<long>((positive - whole).count());
    return value;
}

constexpr const char* kFolderName = "fieldcore-sim-";
constexpr const char* kLinkName = "receiver";

bool IsLater(const timespec& time, const timespec& other)
{
    return time.tv_sec != other.tv_sec ? time.tv_sec > other.tv_sec : time.tv_nsec > other.tv_nsec;
}

/// Whether a simulator of this user that was killed left @p link: the pair that it names is gone,
/// or its number was given to a terminal that is younger than the link.
bool IsLeftOver(const fs::path& link)
{
    std::error_code failure;
    const fs::path target = fs::read_symlink(link, failure);
    struct stat made = {};
    if (failure || target.parent_path() != "/dev/pts" || lstat(link.c_str(), &made) != 0 ||
        made.st_uid != geteuid()) {
        return false;
    }
    struct stat terminal = {};
    if (stat(target.c_str(), &terminal) != 0) {
        return errno == ENOENT;
    }
    return IsLater(terminal.st_ctim, made.st_ctim);
}

/// Removes the folders that simulators of this user left when they were killed.
void RemoveLeftOvers(const fs::path& temporary)
{
    std::error_code ignored;
    fs::directory_iterator entry(temporary, ignored);
    for (; entry != fs::directory_iterator(); entry.increment(ignored)) {
        const fs::path& folder = entry->path();
        if (folder.filename().string().starts_with(kFolderName) &&
            fs::is_directory(entry->symlink_status(ignored)) && IsLeftOver(folder / kLinkName)) {
            fs::remove(folder / kLinkName, ignored);
            fs::remove(folder, ignored);
        }
    }
}

/// No echo, no line ends made of others, no signals: every byte passes as it is, also those that
/// come before a controller has set up its end.
bool MakeRaw(int slave)
{
    termios settings{};
    if (tcgetattr(slave, &settings) != 0) {
        return false;
    }
    cfmakeraw(&settings);
    return tcsetattr(slave, TCSANOW, &settings) == 0;
}

} // namespace

PseudoTerminal::~PseudoTerminal()
{
    Close();
    CloseDescriptor(m_wakeUp);
    if (!m_folder.empty()) {
        std::error_code ignored; // a folder among the temporary files: nothing hangs on it
        fs::remove(m_folder, ignored);
    }
}

bool PseudoTerminal::SetLink(std::string& error)
{
    if (!m_wanted.empty()) {
        std::error_code failure;
        m_link = fs::absolute(m_wanted, failure);
        if (failure) {
            error = m_wanted.string() + ": " + failure.message();
        }
        return !failure;
    }
    std::error_code failure;
    const fs::path temporary = fs::temp_directory_path(failure);
    RemoveLeftOvers(temporary);
    std::string folder = (temporary / kFolderName).string() + "XXXXXX";
    if (failure || mkdtemp(folder.data()) == nullptr) {
        error = LastError("no folder for the port among the temporary files");
        return false;
    }
    m_folder = folder;
    m_link = m_folder / kLinkName;
    return true;
}

bool PseudoTerminal::Open(std::string& error)
{
    if (IsOpen()) {
        return true;
    }
    if (m_wakeUp < 0) {
        m_wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    }
    if (m_wakeUp < 0) {
        error = LastError("no event descriptor");
        return false;
    }
    if (m_link.empty() && !SetLink(error)) {
        return false;
    }
    if (MakePair(error) && Publish(error)) {
        return true;
    }
    CloseDescriptor(m_slave);
    CloseDescriptor(m_master);
    m_slaveName.clear();
    return false;
}

bool PseudoTerminal::MakePair(std::string& error)
{
    std::array<char, 128> name{};
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 ||
        ptsname_r(m_master, name.data(), name.size()) != 0) {
        error = LastError("no pseudo-terminal");
        return false;
    }
    m_slaveName = name.data();
    m_slave = open(m_slaveName.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_slave < 0 || !MakeRaw(m_slave)) {
        error = LastError(m_slaveName);
        return false;
    }
    return true;
}

bool PseudoTerminal::Publish(std::string& error)
{
    std::error_code failure;
    const fs::file_status there = fs::symlink_status(m_link, failure);
    if (fs::exists(there)) {
        const fs::path target = fs::read_symlink(m_link, failure);
        if (target != m_slaveName && !IsLeftOver(m_link)) {
            error = m_link.string() +
                    (target.parent_path() == "/dev/pts"
                         ? ": leads to " + target.string() +
                               ", a terminal in use; remove the link if no simulator runs there"
                         : ": is there already, and is no link that a simulator left");
            return false;
        }
        fs::remove(m_link, failure);
    }
    fs::create_symlink(m_slaveName, m_link, failure);
    if (failure) {
        error = m_link.string() + ": " + failure.message();
    }
    return !failure;
}

std::size_t PseudoTerminal::Read(std::span<std::uint8_t> buffer)
{
    const ssize_t count = IsOpen() ? read(m_master, buffer.data(), buffer.size()) : -1;
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

std::size_t PseudoTerminal::Write(std::span<const std::uint8_t> bytes)
{
    const ssize_t count = write(m_master, bytes.data(), bytes.size());
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

bool PseudoTerminal::Wait(std::optional<Clock::Duration> limit, bool forRoom)
{
    std::array<pollfd, 2> waits{};
    waits[0] = {m_wakeUp, POLLIN, 0};
    waits[1] = {m_master, POLLIN, 0}; // a descriptor of -1 is not looked at
    if (forRoom) {
        waits[1].events |= POLLOUT;
    }
    const timespec atMost = limit ? ToTimespec(*limit) : timespec{};
    const int events = ppoll(waits.data(), waits.size(), limit ? &atMost : nullptr, nullptr);
    if ((waits[0].revents & POLLIN) != 0) {
        eventfd_t ignored = 0;
        eventfd_read(m_wakeUp, &ignored);
    }
    return events == 0 || (waits[1].revents & POLLOUT) != 0;
}

void PseudoTerminal::Wake()
{
    eventfd_write(m_wakeUp, 1);
}

void PseudoTerminal::WaitUntilRead(std::chrono::milliseconds limit)
{
    using namespace std::chrono_literals;
    pollfd unread{m_slave, POLLIN, 0};
    // What was written reaches the far end a moment later and in pieces, so that its being empty
    // must last before it means that all was read.
    constexpr auto kEmptyFor = 5ms;
    auto empty = 0ms;
    for (auto waited = 0ms; waited < limit && empty < kEmptyFor; ++waited) {
        empty = poll(&unread, 1, 0) == 1 ? 0ms : empty + 1ms;
        std::this_thread::sleep_for(1ms);
    }
}

std::uint32_t PseudoTerminal::ControllerRate() const
{
    struct Rate
    {
        speed_t code;
        std::uint32_t rate;
    };
    constexpr Rate kRates[] = {{B1200, 1200},     {B2400, 2400},     {B4800, 4800},
                               {B9600, 9600},     {B19200, 19200},   {B38400, 38400},
                               {B57600, 57600},   {B115200, 115200}, {B230400, 230400},
                               {B460800, 460800}, {B921600, 921600}};
    termios settings{};
    if (tcgetattr(m_slave, &settings) != 0) {
        return 0;
    }
    for (const Rate& rate : kRates) {
        if (rate.code == cfgetospeed(&settings)) {
            return rate.rate;
        }
    }
    return 0;
}

void PseudoTerminal::Close()
{
    if (!IsOpen()) {
        return;
    }
    // While the pair is closed its number may be given to a terminal of somebody else, so the
    // link must not stay.
    std::error_code failure;
    if (fs::read_symlink(m_link, failure) == m_slaveName) {
        fs::remove(m_link, failure);
    }
    CloseDescriptor(m_slave);
    CloseDescriptor(m_master);
    m_slaveName.clear();
}

} // namespace fieldcore::simulator
