#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace fieldcore {

/// Bytes that were read from the port and wait to be assembled. Of fixed size once made: nothing
/// allocates while the port is open. Not locked; its owner guards it.
class ByteQueue
{
public:
    explicit ByteQueue(std::size_t capacity = 0) : m_bytes(capacity) {}

    [[nodiscard]] std::size_t Size() const { return m_end - m_begin; }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const
    {
        return std::span(m_bytes).subspan(m_begin, Size());
    }

    /// Room behind the queued bytes; what was written there is queued by Commit().
    [[nodiscard]] std::span<std::uint8_t> Free() { return std::span(m_bytes).subspan(m_end); }
    void Commit(std::size_t count) { m_end += std::min(count, m_bytes.size() - m_end); }

    /// Takes the oldest bytes.
    /// @return how many there were, at most the size of @p destination
    std::size_t Take(std::span<std::uint8_t> destination)
    {
        const std::size_t count = std::min(destination.size(), Size());
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_begin), count,
                    destination.begin());
        m_begin += count;
        if (m_begin == m_end) {
            Clear();
        }
        return count;
    }

    void Clear() { m_begin = m_end = 0; }

private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace fieldcore
