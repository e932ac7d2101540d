#include "simulator/Transmitter.h"

#include <algorithm>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::uint64_t kBitsPerByte = 10; // start bit, eight data bits, stop bit
constexpr std::uint64_t kNsPerS = 1'000'000'000;
constexpr std::size_t kSlicesPerS = 250; // so often a paced piece goes on

} // namespace

void Transmitter::Queue(Pieces pieces, Clock::Duration now)
{
    if (m_pieces.empty()) {
        TakeNewBaudRate(now);
    }
    for (Piece& piece : pieces) {
        if (m_waiting + piece.bytes.size() > kMaxWaiting) {
            return;
        }
        if (m_pieces.empty()) {
            m_start = now + piece.wait;
            m_sent = 0;
            m_begun = false;
        }
        m_waiting += piece.bytes.size();
        m_pieces.push_back(std::move(piece));
    }
}

void Transmitter::DropUnsent()
{
    const std::size_t kept = !m_pieces.empty() && m_sent > 0 ? 1 : 0;
    while (m_pieces.size() > kept) {
        m_waiting -= m_pieces.back().bytes.size();
        m_pieces.pop_back();
    }
}

void Transmitter::Clear()
{
    m_pieces.clear();
    m_waiting = 0;
}

void Transmitter::SetBaudRate(std::uint32_t rate, Clock::Duration from)
{
    m_newBaudRate = rate;
    m_newBaudFrom = from;
}

void Transmitter::TakeNewBaudRate(Clock::Duration now)
{
    if (m_newBaudRate != 0 && now >= m_newBaudFrom) {
        m_baudRate = m_newBaudRate;
        m_newBaudRate = 0;
    }
}

Clock::Duration Transmitter::LineTime(std::size_t bytes) const
{
    return Clock::Duration(m_paced ? bytes * kBitsPerByte * kNsPerS / m_baudRate : 0);
}

std::size_t Transmitter::Slice() const
{
    return std::max<std::size_t>(m_baudRate / kBitsPerByte / kSlicesPerS, 1);
}

std::optional<Clock::Duration> Transmitter::NextDue() const
{
    if (m_pieces.empty()) {
        return std::nullopt;
    }
    const std::size_t until = std::min(m_sent + Slice(), m_pieces.front().bytes.size());
    return m_start + LineTime(until);
}

const Piece* Transmitter::Current(Clock::Duration now) const
{
    return m_pieces.empty() || now < m_start ? nullptr : &m_pieces.front();
}

std::span<const std::uint8_t> Transmitter::DueBytes(Clock::Duration now)
{
    const Bytes& bytes = m_pieces.front().bytes;
    std::size_t due = bytes.size();
    if (m_paced) {
        const std::chrono::duration<double> elapsed = now - m_start;
        due = static_cast<std::size_t>(elapsed.count() * m_baudRate / kBitsPerByte);
        // The estimate may be one off; it must agree with NextDue(), or the sender would spin.
        while (due > 0 && LineTime(due) > now - m_start) {
            --due;
        }
        while (due < bytes.size() && LineTime(due + 1) <= now - m_start) {
            ++due;
        }
        due = std::min(due, bytes.size());
    }
    return due <= m_sent ? std::span<const std::uint8_t>()
                         : std::span(bytes).subspan(m_sent, due - m_sent);
}

void Transmitter::Next(Clock::Duration now)
{
    m_waiting -= m_pieces.front().bytes.size();
    m_pieces.pop_front();
    m_sent = 0;
    m_begun = false;
    TakeNewBaudRate(now);
    if (!m_pieces.empty()) {
        m_start = now + m_pieces.front().wait;
    }
}

} // namespace fieldcore::simulator
