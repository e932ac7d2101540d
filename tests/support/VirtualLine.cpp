#include "tests/support/VirtualLine.h"

#include "tests/support/Scarcity.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace fieldcore::testing {

namespace {

using Moment = std::optional<Clock::Duration>;

constexpr Clock::Duration kNow{0}; // due at once

} // namespace

class VirtualLine::Device final : public SerialDevice
{
public:
    explicit Device(VirtualLine& line) : m_line(line) {}

    bool Open(const std::string& /*path*/) override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        if (Fails("Open") || m_plug != 0 || !m_line.m_isPlugged) {
            return Fail("Open", m_plug != 0 ? EBUSY : ENOENT);
        }
        m_plug = m_line.m_plugs;
        m_mask = EventMask::None;
        m_isWoken = false;
        return true;
    }
    bool Close() override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        m_plug = 0;
        return !Fails("Close"); // closed all the same
    }
    bool IsOpen() const override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_plug != 0;
    }
    bool SetQueueSizes(std::size_t, std::size_t) override { return Can("SetQueueSizes"); }
    bool ReadSettings(LineSettings& settings) override
    {
        settings = m_settings;
        return Can("ReadSettings");
    }
    bool ApplySettings(const LineSettings& settings) override
    {
        const bool can = Can("ApplySettings");
        const std::scoped_lock lock(m_line.m_mutex);
        m_settings = settings;
        m_line.m_nearRate = settings.baudRate;
        return can;
    }
    bool ReadTimeouts(PortTimeouts& timeouts) override
    {
        timeouts = m_timeouts;
        return Can("ReadTimeouts");
    }
    bool ApplyTimeouts(const PortTimeouts& timeouts) override
    {
        m_timeouts = timeouts;
        return Can("ApplyTimeouts");
    }

    bool SetEventMask(EventMask mask) override
    {
        if (mask == EventMask::Received) {
            m_line.m_clock.Join();
        }
        {
            const std::scoped_lock lock(m_line.m_mutex);
            if (Fails("SetEventMask")) {
                return false;
            }
            m_mask = mask;
        }
        m_line.m_clock.Poke();
        return true;
    }
    Event WaitEvent() override
    {
        m_line.m_clock.WaitUntil([this]() -> Moment {
            const std::scoped_lock lock(m_line.m_mutex);
            return m_isWoken || m_mask == EventMask::None || IsGone()
                       ? kNow
                       : NextArrival(m_line.m_toNear);
        });
        const std::scoped_lock lock(m_line.m_mutex);
        if (std::exchange(m_isWoken, false) || m_mask == EventMask::None) {
            return Event::Woken;
        }
        if (IsGone() || Fails("WaitEvent")) {
            Fail("WaitEvent", EIO);
            return IsGone() ? Event::HangUp : Event::Failed;
        }
        return Event::Received;
    }
    void Wake() override
    {
        {
            const std::scoped_lock lock(m_line.m_mutex);
            m_isWoken = true;
        }
        m_line.m_clock.Poke();
    }

    std::optional<std::size_t> Read(std::span<std::uint8_t> buffer) override
    {
        if (!Can("Read")) {
            return std::nullopt;
        }
        const std::scoped_lock lock(m_line.m_mutex);
        return m_line.Take(m_line.m_toNear, buffer);
    }
    bool HasRoom(std::chrono::milliseconds limit) override
    {
        const auto due = [this, end = m_line.m_clock.Steady() + limit] {
            const std::scoped_lock lock(m_line.m_mutex);
            return IsGone() || m_line.HasRoom() ? kNow : end; // of a lost line the write tells
        };
        if (due() != kNow) {
            m_line.m_clock.WaitUntil(due);
        }
        return due() == kNow;
    }
    std::optional<std::size_t> Write(std::span<const std::uint8_t> bytes) override
    {
        const Spared spared;
        if (!Can("Write")) {
            return std::nullopt;
        }
        Listener listener;
        Clock::Duration arrives{};
        {
            const std::scoped_lock lock(m_line.m_mutex);
            if (!m_line.HasRoom()) {
                return 0;
            }
            m_line.Put(m_line.m_toFar, bytes, {});
            arrives = m_line.m_toFar.freeAt;
            listener = m_line.m_listener;
            if (listener) {
                m_line.m_toFar.bytes.clear();
            }
        }
        if (listener) {
            listener(bytes, arrives);
        }
        return bytes.size();
    }

    bool Purge(Queue queue) override
    {
        const Spared spared;
        if (!Can("Purge")) {
            return false;
        }
        const std::scoped_lock lock(m_line.m_mutex);
        Bytes thrownAway(queue == Queue::Receive ? kRoom : 0); // no more has reached the driver
        m_line.Take(m_line.m_toNear, thrownAway);
        return true;
    }
    bool SetBreak() override { return Can("SetBreak"); }
    bool ClearBreak() override { return Can("ClearBreak"); }
    bool EscapeFunction(Escape) override { return Can("EscapeFunction"); }
    bool ReadModemStatus(ModemStatus& status) override
    {
        status = {true, true, true, true};
        return Can("ReadModemStatus");
    }

    std::string LastFault() const override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_fault == 0 ? std::string()
                            : m_call + (": " + std::generic_category().message(m_fault));
    }
    int LastFaultCode() const override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_fault;
    }

private:
    // The line's mutex is held in all but Can().

    [[nodiscard]] bool IsGone() const { return !m_line.m_isPlugged || m_plug != m_line.m_plugs; }
    [[nodiscard]] bool Fails(const char* call) { return m_line.m_fails && m_line.m_fails(call); }
    bool Fail(const char* call, int error)
    {
        const Spared spared;
        m_call = call;
        m_fault = error;
        return false;
    }
    bool Can(const char* call)
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return (!Fails(call) && !IsGone()) || Fail(call, EIO);
    }

    VirtualLine& m_line;
    LineSettings m_settings;
    PortTimeouts m_timeouts;
    EventMask m_mask = EventMask::None;
    bool m_isWoken = false;
    int m_plug = 0; // which one it was opened on; 0: it is closed
    std::string m_call;
    int m_fault = 0;
};

class VirtualLine::Far final : public simulator::Port
{
public:
    explicit Far(VirtualLine& line) : m_line(line) {}

    bool Open(std::string& /*error*/) override
    {
        if (!std::exchange(m_isServed, true)) {
            m_line.m_clock.Expect(); // the simulator's thread
        }
        m_line.Plug();
        return true;
    }
    void Close() override { m_line.HangUp(); }
    bool IsOpen() const override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_line.m_isPlugged;
    }
    std::string Path() const override { return "in memory"; }

    std::size_t Read(std::span<std::uint8_t> buffer) override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_line.Take(m_line.m_toFar, buffer);
    }
    std::size_t Write(std::span<const std::uint8_t> bytes) override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        std::size_t count = 0;
        while (count < bytes.size() && RoomFrom() == kNow) {
            m_line.Put(m_line.m_toNear, bytes.subspan(count++, 1), {});
        }
        return count;
    }
    bool Wait(std::optional<Clock::Duration> limit, bool forRoom) override
    {
        m_line.m_clock.Join(true);
        const Moment end = limit ? Moment(m_line.m_clock.Steady() + *limit) : std::nullopt;
        m_line.m_clock.WaitUntil([&]() -> Moment {
            const std::scoped_lock lock(m_line.m_mutex);
            Moment due = m_isWoken ? Moment(kNow) : end;
            for (const Moment other :
                 {NextArrival(m_line.m_toFar), forRoom ? RoomFrom() : std::nullopt}) {
                due = other && (!due || *other < *due) ? other : due;
            }
            return due;
        });
        const std::scoped_lock lock(m_line.m_mutex);
        m_isWoken = false;
        return RoomFrom() == kNow || (end && *end <= m_line.m_clock.Steady());
    }
    void Wake() override
    {
        {
            const std::scoped_lock lock(m_line.m_mutex);
            m_isWoken = true;
        }
        m_line.m_clock.Poke();
    }
    void WaitUntilRead(std::chrono::milliseconds limit) override
    {
        m_line.m_clock.WaitUntil([this, end = m_line.m_clock.Steady() + limit] {
            const std::scoped_lock lock(m_line.m_mutex);
            return m_line.m_toNear.bytes.empty() ? kNow : end;
        });
    }
    std::uint32_t ControllerRate() const override
    {
        const std::scoped_lock lock(m_line.m_mutex);
        return m_line.m_nearRate;
    }

private:
    /// When a byte can be written, with the line's mutex held: on a line that takes time, when the
    /// one before is through, so that nothing which is taken back was sent already.
    [[nodiscard]] Moment RoomFrom() const
    {
        if (m_line.m_toNear.bytes.size() >= kRoom) {
            return std::nullopt;
        }
        return m_line.m_toNear.freeAt <= m_line.m_clock.Steady() ? kNow : m_line.m_toNear.freeAt;
    }

    VirtualLine& m_line;
    bool m_isServed = false;
    bool m_isWoken = false; // guarded by the line's mutex
};

VirtualLine::VirtualLine(const VirtualClock& clock, std::uint32_t baudRate)
    : m_clock(clock),
      m_byteTime(baudRate == 0 ? Clock::Duration::zero()
                               : Clock::Duration(std::chrono::seconds(10)) / baudRate),
      m_far(std::make_unique<Far>(*this))
{}

VirtualLine::~VirtualLine() = default;

std::unique_ptr<SerialDevice> VirtualLine::MakeDevice()
{
    return std::make_unique<Device>(*this);
}

simulator::Port& VirtualLine::FarPort()
{
    return *m_far;
}

Clock::Duration VirtualLine::Send(std::span<const std::uint8_t> bytes, Clock::Duration from)
{
    const std::scoped_lock lock(m_mutex);
    Put(m_toNear, bytes, from);
    return m_toNear.freeAt;
}

Bytes VirtualLine::TakeReceived()
{
    const std::scoped_lock lock(m_mutex);
    Bytes received(m_toFar.bytes.size());
    received.resize(Take(m_toFar, received));
    return received;
}

void VirtualLine::SetListener(Listener listener)
{
    const std::scoped_lock lock(m_mutex);
    m_listener = std::move(listener);
}

void VirtualLine::SetFailing(std::function<bool(const char*)> fails)
{
    const std::scoped_lock lock(m_mutex);
    m_fails = std::move(fails);
}

void VirtualLine::TakeNothing(bool isHeld)
{
    const std::scoped_lock lock(m_mutex);
    m_isHeld = isHeld;
}

void VirtualLine::HangUp()
{
    const std::scoped_lock lock(m_mutex);
    m_isPlugged = false;
    m_toFar = {};
    m_toNear = {};
}

void VirtualLine::Plug()
{
    const std::scoped_lock lock(m_mutex);
    if (!std::exchange(m_isPlugged, true)) {
        ++m_plugs;
    }
}

void VirtualLine::Put(Way& way, std::span<const std::uint8_t> bytes, Clock::Duration from) const
{
    way.freeAt = std::max({way.freeAt, from, m_clock.Steady()});
    for (const std::uint8_t byte : bytes) {
        way.freeAt += m_byteTime;
        way.bytes.push_back({byte, way.freeAt});
    }
}

std::size_t VirtualLine::Take(Way& way, std::span<std::uint8_t> buffer) const
{
    std::size_t count = 0;
    while (count < buffer.size() && !way.bytes.empty() &&
           way.bytes.front().at <= m_clock.Steady()) {
        buffer[count++] = way.bytes.front().value;
        way.bytes.pop_front();
    }
    return count;
}

std::optional<Clock::Duration> VirtualLine::NextArrival(const Way& way)
{
    return way.bytes.empty() ? std::nullopt : Moment(way.bytes.front().at);
}

} // namespace fieldcore::testing
