#pragma once

#include "simulator/Frame.h"

#include <algorithm>
#include <array>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::simulator::test {

/// A controller without any library: opens the port and moves bytes.
class Client
{
public:
    explicit Client(const std::string& path)
        : m_port(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {}
    ~Client()
    {
        if (m_port >= 0) {
            close(m_port);
        }
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool Send(const Bytes& bytes) const
    {
        return write(m_port, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }

    /// Sets its end to a rate, as a controller does.
    [[nodiscard]] bool SetRate(speed_t rate) const
    {
        termios settings{};
        return tcgetattr(m_port, &settings) == 0 && cfsetspeed(&settings, rate) == 0 &&
               tcsetattr(m_port, TCSANOW, &settings) == 0;
    }

    /// Reads until @p count bytes are there. Fewer if the port hangs up or nothing more comes for
    /// ten seconds, which only a failing test waits for.
    [[nodiscard]] Bytes Receive(std::size_t count) const
    {
        Bytes bytes;
        while (bytes.size() < count && Wait(POLLIN)) {
            std::array<std::uint8_t, 4096> some{};
            const ssize_t got =
                read(m_port, some.data(), std::min(some.size(), count - bytes.size()));
            if (got <= 0) {
                break;
            }
            bytes.insert(bytes.end(), some.begin(), some.begin() + got);
        }
        return bytes;
    }

    [[nodiscard]] Bytes Ask(const Bytes& request, std::size_t count) const
    {
        return Send(request) ? Receive(count) : Bytes();
    }

    /// Waits until the port hangs up; what still comes is read away.
    [[nodiscard]] bool SeesHangUp() const
    {
        std::array<std::uint8_t, 4096> some{};
        while (Wait(POLLIN)) {
            if (read(m_port, some.data(), some.size()) <= 0) {
                return true;
            }
        }
        return false;
    }

private:
    [[nodiscard]] bool Wait(short events) const
    {
        pollfd wait{m_port, events, 0};
        return poll(&wait, 1, 10'000) == 1;
    }

    const int m_port;
};

} // namespace fieldcore::simulator::test
