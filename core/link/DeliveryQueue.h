#pragma once

#include "core/link/FrameAssembler.h"
#include "core/link/FrameBuffer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace fieldcore {

/// The deliveries that wait to be taken, oldest first, each with its bytes. What was taken last
/// stays readable until the next one is. Allocates nothing. Not locked; its owner guards it.
class DeliveryQueue
{
public:
    /// How many can wait.
    static constexpr std::size_t kRoom = 32;

    [[nodiscard]] std::size_t Waiting() const { return m_waiting; }
    [[nodiscard]] bool IsFull() const { return m_waiting == kRoom; }

    /// The one that Take() would give.
    [[nodiscard]] const Delivery& Next() const { return m_slots[NextIndex()].delivery; }

    /// Where there is no room, the oldest is lost.
    /// @param bytes  at least as many as it has
    void Put(const Delivery& delivery, std::span<const std::uint8_t> bytes)
    {
        if (IsFull()) {
            m_taken = NextIndex();
            --m_waiting;
        }
        ++m_waiting;
        Slot& slot = m_slots[(m_taken + m_waiting) % m_slots.size()];
        slot.delivery = delivery;
        std::copy_n(bytes.begin(), delivery.length, slot.bytes.begin());
    }

    /// The oldest that waits; if none does, what was taken last once more.
    /// @param destination  gets its bytes, as many as fit; left alone if it has none
    /// @return it, with the number of bytes copied
    Delivery Take(std::span<std::uint8_t> destination)
    {
        m_taken = NextIndex();
        m_waiting -= m_waiting > 0 ? 1 : 0;
        const Slot& slot = m_slots[m_taken];
        const std::size_t count = std::min(slot.delivery.length, destination.size());
        std::copy_n(slot.bytes.begin(), count, destination.begin());
        return {slot.delivery.state, count};
    }

    /// Drops those that wait, and keeps what was taken last.
    void DropWaiting() { m_waiting = 0; }
    void Clear()
    {
        m_waiting = 0;
        m_slots[m_taken].delivery = {};
    }

private:
    struct Slot
    {
        Delivery delivery;
        std::array<std::uint8_t, kFrameBufferSize> bytes{};
    };

    [[nodiscard]] std::size_t NextIndex() const
    {
        return (m_taken + (m_waiting > 0 ? 1 : 0)) % m_slots.size();
    }

    std::array<Slot, kRoom + 1> m_slots; // one for what was taken last
    std::size_t m_taken = 0;             // those that wait follow it
    std::size_t m_waiting = 0;
};

} // namespace fieldcore
