#include "core/link/DeliveryQueue.h"

#include <algorithm>

namespace fieldcore {

void DeliveryQueue::Put(const Delivery& delivery, std::span<const std::uint8_t> bytes)
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

Delivery DeliveryQueue::Take(std::span<std::uint8_t> destination)
{
    const std::size_t index = NextIndex();
    if (m_waiting > 0) {
        m_taken = index;
        --m_waiting;
    }
    const Slot& slot = m_slots[index];
    const std::size_t count = std::min(slot.delivery.length, destination.size());
    std::copy_n(slot.bytes.begin(), count, destination.begin());
    return {slot.delivery.state, count};
}

void DeliveryQueue::Clear()
{
    m_waiting = 0;
    m_slots[m_taken].delivery = {};
}

} // namespace fieldcore
