#include "bench/BareLink.h"

#include <array>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {

BareLink::BareLink(const std::string& path)
    : m_port(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)),
      m_stop(eventfd(0, EFD_CLOEXEC)), m_buffer(5120)
{
    termios raw{};
    tcgetattr(m_port, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_port, TCSANOW, &raw);
    m_reader = std::thread(&BareLink::Run, this);
}

BareLink::~BareLink()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_stop, &one, sizeof one);
    m_reader.join();
    close(m_stop);
    close(m_port);
}

void BareLink::Write(std::span<const std::uint8_t> bytes) const
{
    [[maybe_unused]] const ssize_t written = write(m_port, bytes.data(), bytes.size());
}

void BareLink::Await(std::size_t count)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_count >= count; });
    m_count -= count;
}

std::size_t BareLink::Count()
{
    const std::scoped_lock lock(m_mutex);
    return m_count;
}

void BareLink::Run()
{
    for (;;) {
        std::array<pollfd, 2> watched{pollfd{m_port, POLLIN, 0}, pollfd{m_stop, POLLIN, 0}};
        poll(watched.data(), watched.size(), -1);
        if (watched[1].revents != 0) {
            return;
        }
        const ssize_t count = read(m_port, m_buffer.data(), m_buffer.size());
        if (count > 0) {
            {
                const std::scoped_lock lock(m_mutex);
                m_count += static_cast<std::size_t>(count);
            }
            m_changed.notify_one();
        }
    }
}

} // namespace fieldcore::bench
