#pragma once

#include "core/platform/SerialDevice.h"
#include "simulator/Port.h"
#include "tests/support/VirtualClock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore::testing {

using Bytes = std::vector<std::uint8_t>;

/// A serial line in memory: each byte has the moment of a virtual clock at which it arrives. What
/// waits on either side waits through that clock. Beyond that it behaves as a pseudo-terminal does:
/// it holds 4096 bytes a direction, purging throws away what has arrived, a BREAK does not arrive,
/// after a hang-up nothing can be read any more and only opening again helps.
///
/// The far end is moved by a test, by its listener, or by a simulator on FarPort(). Any thread.
class VirtualLine
{
public:
    /// @param baudRate  10 bits a byte in each direction; 0: what is written arrives at once
    explicit VirtualLine(const VirtualClock& clock, std::uint32_t baudRate = 0);
    ~VirtualLine(); ///< when no device and no simulator uses it any more
    VirtualLine(const VirtualLine&) = delete;
    VirtualLine& operator=(const VirtualLine&) = delete;

    /// The library's end, for the surroundings of a channel. Its reader's thread joins the clock
    /// when it asks for events.
    [[nodiscard]] std::unique_ptr<SerialDevice> MakeDevice();
    /// Asks @p fails before each call of the library's end that can fail, by its name and on its
    /// thread, whether it shall. Null: none does.
    void SetFailing(std::function<bool(const char* call)> fails);
    /// The other end, for one simulator.
    [[nodiscard]] simulator::Port& FarPort();

    // The other end, moved by hand.

    /// Sends bytes, from the moment @p from on or when what was sent before is through.
    /// @return when the last of them arrives
    Clock::Duration Send(std::span<const std::uint8_t> bytes, Clock::Duration from = {});
    /// What has arrived; it is taken out of the line.
    [[nodiscard]] Bytes TakeReceived();
    /// Is told in place of TakeReceived() of each write, at once and on its thread, with the moment
    /// at which the last byte arrives. Null: nobody is.
    using Listener = std::function<void(std::span<const std::uint8_t>, Clock::Duration arrives)>;
    void SetListener(Listener listener);
    /// From now on nothing more can be written, as behind flow control that is held.
    void TakeNothing(bool isHeld = true);
    void HangUp(); ///< what is under way is lost
    void Plug();

    [[nodiscard]] const VirtualClock& GetClock() const { return m_clock; }

private:
    class Device;
    class Far;
    struct Byte
    {
        std::uint8_t value;
        Clock::Duration at;
    };
    struct Way
    {
        std::deque<Byte> bytes;
        Clock::Duration freeAt{}; // when the next byte can begin
    };

    void Put(Way& way, std::span<const std::uint8_t> bytes, Clock::Duration from) const;
    std::size_t Take(Way& way, std::span<std::uint8_t> buffer) const;
    [[nodiscard]] bool HasRoom() const { return !m_isHeld && m_toFar.bytes.size() < kRoom; }
    [[nodiscard]] static std::optional<Clock::Duration> NextArrival(const Way& way);

    static constexpr std::size_t kRoom = 4096;

    const VirtualClock& m_clock;
    const Clock::Duration m_byteTime;
    const std::unique_ptr<Far> m_far;

    mutable std::mutex m_mutex; // guards everything below; the clock's is never taken behind it
    Way m_toFar;
    Way m_toNear;
    Listener m_listener;
    std::function<bool(const char*)> m_fails;
    bool m_isHeld = false;
    bool m_isPlugged = true;
    int m_plugs = 1;              // how often it was plugged in
    std::uint32_t m_nearRate = 0; // as the library has set its end
};

} // namespace fieldcore::testing
