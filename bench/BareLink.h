#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {

/// The plainest port with a reader thread that one can write: poll, read, count bytes, wake the
/// waiter. No frames, no time-outs of its own, no errors: the yardstick of what a link must cost.
class BareLink
{
public:
    explicit BareLink(const std::string& path)
        : m_port(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        termios raw{};
        tcgetattr(m_port, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_port, TCSANOW, &raw);
        m_reader = std::thread(&BareLink::Run, this);
    }
    ~BareLink()
    {
        eventfd_write(m_stop, 1);
        m_reader.join();
        close(m_stop);
        close(m_port);
    }
    BareLink(const BareLink&) = delete;
    BareLink& operator=(const BareLink&) = delete;

    void Write(std::span<const std::uint8_t> bytes) const
    {
        [[maybe_unused]] const ssize_t written = write(m_port, bytes.data(), bytes.size());
    }
    /// Waits until @p count bytes have come, and forgets them.
    void Await(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_count >= count; });
        m_count -= count;
    }
    /// How many bytes have come since they were last awaited.
    [[nodiscard]] std::size_t Count()
    {
        const std::scoped_lock lock(m_mutex);
        return m_count;
    }

private:
    void Run()
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

    const int m_port;
    const int m_stop = eventfd(0, EFD_CLOEXEC);
    std::vector<std::uint8_t> m_buffer = std::vector<std::uint8_t>(5120);
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_count = 0; // guarded by m_mutex
    std::thread m_reader;
};

} // namespace fieldcore::bench
