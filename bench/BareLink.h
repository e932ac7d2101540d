#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace fieldcore::bench {

/// The plainest port with a reader thread that one can write: poll, read, count bytes, wake the
/// waiter. No frames, no time-outs of its own, no errors: the yardstick of what a link must cost.
class BareLink
{
public:
    explicit BareLink(const std::string& path);
    ~BareLink();
    BareLink(const BareLink&) = delete;
    BareLink& operator=(const BareLink&) = delete;

    void Write(std::span<const std::uint8_t> bytes) const;
    /// Waits until @p count bytes have come, and forgets them.
    void Await(std::size_t count);
    /// How many bytes have come since they were last awaited.
    [[nodiscard]] std::size_t Count();

private:
    void Run();

    int m_port;
    int m_stop;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::uint8_t> m_buffer;
    std::size_t m_count = 0; // guarded by m_mutex
    std::thread m_reader;
};

} // namespace fieldcore::bench
