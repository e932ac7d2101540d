#include "tests/core/link/FarEnd.h"

#include <array>
#include <cstdlib>
#include <numeric>
#include <stdexcept>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::testing {

namespace {

Bytes Closed(Bytes frame)
{
    frame.push_back(static_cast<std::uint8_t>(std::accumulate(frame.begin() + 1, frame.end(), 0U)));
    frame.push_back(0x03);
    return frame;
}

} // namespace

Bytes Frame(std::uint8_t type, const Bytes& data)
{
    return Closed(Joined({{0x02, 0x00, type, static_cast<std::uint8_t>(data.size())}, data}));
}

Bytes LongFrame(const Bytes& data)
{
    const auto high = static_cast<std::uint8_t>(data.size() >> 8);
    return Closed(
        Joined({{0x02, 0x00, 0x95, high, static_cast<std::uint8_t>(data.size() & 0xFF)}, data}));
}

FrameBuffer Loaded(const Bytes& frame)
{
    FrameBuffer buffer;
    buffer.Load(Bytes(kFrameBufferSize, '1'));
    buffer.Load(frame);
    return buffer;
}

Bytes Joined(std::initializer_list<Bytes> pieces)
{
    Bytes all;
    for (const Bytes& piece : pieces) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

Bytes Ascii(const std::string& text)
{
    return {text.begin(), text.end()};
}

FarEnd::FarEnd() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    std::array<char, 64> name{};
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 ||
        ptsname_r(m_master, name.data(), name.size()) != 0) {
        throw std::runtime_error("no pseudo-terminal");
    }
    m_path = name.data();
    m_slave = open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    tcgetattr(m_slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_slave, TCSANOW, &raw);
}

FarEnd::~FarEnd()
{
    HangUp();
}

void FarEnd::Send(std::span<const std::uint8_t> bytes) const
{
    while (!bytes.empty()) {
        const ssize_t count = write(m_master, bytes.data(), bytes.size());
        if (count <= 0) {
            return; // the test will miss the bytes and say so
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

Bytes FarEnd::Receive() const
{
    Bytes received(64);
    const ssize_t got = read(m_master, received.data(), received.size());
    received.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    return received;
}

void FarEnd::HangUp()
{
    if (m_master >= 0) {
        close(m_slave);
        close(m_master);
        m_master = -1;
    }
}

} // namespace fieldcore::testing
