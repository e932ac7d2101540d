#pragma once

#include "core/platform/PosixSerialDevice.h"

#include <atomic>
#include <string_view>

namespace fieldcore::testing {

/// A real serial device whose n-th call fails.
class FailingDevice final : public SerialDevice
{
public:
    /// @param failing  which call fails, from 1
    /// @param calls    counts the calls; @param failed receives the name of the one that failed
    FailingDevice(int failing, std::atomic<int>& calls, std::atomic<const char*>& failed)
        : m_failing(failing), m_calls(calls), m_failed(failed)
    {}

    bool Open(const std::string& path) override { return !Fails("Open") && m_device.Open(path); }
    bool Close() override
    {
        const bool fails = Fails("Close");
        return m_device.Close() && !fails; // a port that fails to close is gone all the same
    }
    bool IsOpen() const override { return m_device.IsOpen(); }
    bool SetQueueSizes(std::size_t receive, std::size_t transmit) override
    {
        return !Fails("SetQueueSizes") && m_device.SetQueueSizes(receive, transmit);
    }
    bool ReadSettings(LineSettings& settings) override
    {
        return !Fails("ReadSettings") && m_device.ReadSettings(settings);
    }
    bool ApplySettings(const LineSettings& settings) override
    {
        return !Fails("ApplySettings") && m_device.ApplySettings(settings);
    }
    bool ReadTimeouts(PortTimeouts& timeouts) override
    {
        return !Fails("ReadTimeouts") && m_device.ReadTimeouts(timeouts);
    }
    bool ApplyTimeouts(const PortTimeouts& timeouts) override
    {
        return !Fails("ApplyTimeouts") && m_device.ApplyTimeouts(timeouts);
    }
    bool SetEventMask(EventMask mask) override
    {
        return !Fails("SetEventMask") && m_device.SetEventMask(mask);
    }
    Event WaitEvent() override { return Fails("WaitEvent") ? Event::Failed : m_device.WaitEvent(); }
    void Wake() override { m_device.Wake(); }
    std::optional<std::size_t> Read(std::span<std::uint8_t> buffer) override
    {
        return Fails("Read") ? std::nullopt : m_device.Read(buffer);
    }
    bool HasRoom(std::chrono::milliseconds limit) override { return m_device.HasRoom(limit); }
    std::size_t Write(std::span<const std::uint8_t> bytes) override
    {
        return Fails("Write") ? 0 : m_device.Write(bytes);
    }
    bool Purge(Queue queue) override { return !Fails("Purge") && m_device.Purge(queue); }
    bool SetBreak() override { return !Fails("SetBreak") && m_device.SetBreak(); }
    bool ClearBreak() override { return !Fails("ClearBreak") && m_device.ClearBreak(); }
    bool EscapeFunction(Escape function) override
    {
        return !Fails("EscapeFunction") && m_device.EscapeFunction(function);
    }
    bool ReadModemStatus(ModemStatus& status) override
    {
        return !Fails("ReadModemStatus") && m_device.ReadModemStatus(status);
    }
    std::string LastFault() const override { return m_device.LastFault(); }
    int LastFaultCode() const override { return m_device.LastFaultCode(); }

private:
    bool Fails(const char* name)
    {
        if (++m_calls != m_failing) {
            return false;
        }
        m_failed = name;
        return true;
    }

    PosixSerialDevice m_device;
    const int m_failing;
    std::atomic<int>& m_calls;
    std::atomic<const char*>& m_failed;
};

} // namespace fieldcore::testing
