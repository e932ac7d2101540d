#pragma once

#include "simulator/Outgoing.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <utility>

namespace fieldcore::simulator {

/// The sending side of the line: knows which bytes may go out by now, so that pieces keep their
/// distance and, with pacing, every byte takes its ten bits. It moves no bytes itself. All times
/// are of one clock. One thread.
class Transmitter
{
public:
    /// @param paced  false: a piece goes out at once when its time has come
    Transmitter(bool paced, std::uint32_t baudRate) : m_paced(paced), m_baudRate(baudRate) {}

    /// More than this many waiting bytes are not kept: nobody reads the port.
    static constexpr std::size_t kMaxWaiting = 1U << 20U;

    void Queue(Pieces pieces, Clock::Duration now);
    /// Forgets the pieces of which nothing has gone out yet.
    void DropUnsent();
    void Clear();
    [[nodiscard]] bool IsEmpty() const { return m_pieces.empty(); }

    void SetBaudRate(std::uint32_t rate, Clock::Duration from);
    /// How long @p bytes bytes take on the line; nothing without pacing.
    [[nodiscard]] Clock::Duration LineTime(std::size_t bytes) const;

    /// When something is next to be done; nothing if nothing waits.
    [[nodiscard]] std::optional<Clock::Duration> NextDue() const;

    /// The first piece, if its time has come.
    [[nodiscard]] const Piece* Current(Clock::Duration now) const;
    /// True when it is asked for the first time about this piece.
    [[nodiscard]] bool Begin() { return !std::exchange(m_begun, true); }
    /// Its bytes that may go out now.
    [[nodiscard]] std::span<const std::uint8_t> DueBytes(Clock::Duration now);
    /// So many of them went out.
    void Sent(std::size_t bytes) { m_sent += bytes; }
    [[nodiscard]] bool IsCurrentDone() const { return m_sent >= m_pieces.front().bytes.size(); }
    void Next(Clock::Duration now);

private:
    [[nodiscard]] std::size_t Slice() const;
    void TakeNewBaudRate(Clock::Duration now);

    const bool m_paced;
    std::uint32_t m_baudRate;
    std::uint32_t m_newBaudRate = 0; // 0: none waits
    Clock::Duration m_newBaudFrom{};
    std::deque<Piece> m_pieces;
    Clock::Duration m_start{}; // when the first piece begins
    bool m_begun = false;
    std::size_t m_sent = 0;    // bytes of it
    std::size_t m_waiting = 0; // bytes of all pieces
};

} // namespace fieldcore::simulator
