#pragma once

#include "core/platform/Clock.h"
#include "simulator/FileRequests.h"
#include "simulator/Frame.h"
#include "simulator/GpsTime.h"
#include "simulator/RequestParser.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"
#include "simulator/TiltSensor.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore::simulator {

/// The receiver itself: one request in, its answer out. It knows no port and no thread. Its date
/// runs from the moment of its construction and is its own: setting the controller's clock does
/// not move it. One thread.
class Receiver
{
public:
    /// @param clock  must outlive the receiver
    Receiver(const Scenario& scenario, const Clock& clock);

    /// @return the frames of the answer in their order, a lone ACK or NAK, or a line of text;
    ///         nothing if the request is not answered
    [[nodiscard]] std::vector<Bytes> Answer(const Request& request);

    /// The next frame of an answer that has begun and goes on: a list of files, a download. Any
    /// request but a damaged one ends it. Nothing if there is no more.
    [[nodiscard]] std::optional<Bytes> NextFrame() { return m_files.NextFrame(); }
    [[nodiscard]] bool GoesOn() const { return m_files.GoesOn(); }
    void StopAnswer() { m_files.StopAnswer(); }

    [[nodiscard]] const FileStore& Files() const { return m_files.Files(); }

    /// The rate that the last set-port command gave the port; the line follows a little later.
    [[nodiscard]] std::uint32_t BaudRate() const { return m_baudRate; }

    /// Data of the last accepted command of that type; empty if there was none.
    [[nodiscard]] const Bytes& Kept(std::uint8_t type) const { return m_kept[type]; }

private:
    using Data = std::span<const std::uint8_t>;
    using Frames = std::vector<Bytes>;
    struct Handler
    {
        std::uint8_t type;
        Frames (Receiver::*answer)(Data data);
    };
    static const Handler kHandlers[];

    [[nodiscard]] Clock::UtcTime Utc() const;
    [[nodiscard]] double ElapsedS() const; ///< receiver's seconds since it started
    [[nodiscard]] GpsTime Now() const;
    [[nodiscard]] Sky SkyNow() const;
    [[nodiscard]] std::vector<Almanac> HeldAlmanacs() const;
    [[nodiscard]] int BatteryPercent() const;
    [[nodiscard]] Frames Keep(std::uint8_t type, Data data);

    Frames AnswerFrame(const Request& request);
    Frames Serial(Data data);
    Frames Status(Data data);
    Frames Time(Data data);
    Frames Satellites(Data data);
    Frames Site(Data data);
    Frames Echo(Data data);
    Frames Position(Data data);
    Frames PowerSource(Data data);
    Frames InstalledOptions(Data data);
    Frames SatelliteData(Data data);
    Frames Flags(Data data);
    Frames Tilt(Data data);
    Frames Signals(Data data);
    Frames SignalRefresh(Data data);
    Frames Application(Data data);
    Frames Reset(Data data);
    Frames Abort(Data data);
    Frames SetPort(Data data);
    Frames PowerOff(Data data);
    Frames Label(Data data);

    const Scenario m_scenario;
    const Clock& m_clock;
    const Clock::Duration m_steadyAtStart;
    const Clock::UtcTime m_utcAtStart;
    TiltSensor m_tilt;
    FileRequests m_files;
    std::uint32_t m_baudRate;
    bool m_isOff = false;
    bool m_wasReset = false; // its almanacs are gone
    std::array<Bytes, 256> m_kept;
};

} // namespace fieldcore::simulator
