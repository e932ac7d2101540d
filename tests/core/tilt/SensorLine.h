#pragma once

#include "core/link/Command.h"
#include "core/link/Questions.h"
#include "core/platform/FastClock.h"
#include "core/settings/HostReg.h"
#include "core/tilt/BubbleConfig.h"
#include "core/tilt/TiltSettings.h"
#include "simulator/Simulator.h"
#include "tests/core/link/FileServer.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// What a sensor would say, put into bytes here and not by library or simulator.
struct SensorWords
{
    unsigned status = 0x41;      ///< measuring, present
    unsigned calibration = 0x19; ///< completed, valid, calibrated
    double t1Rad = 0.0;
    double t2Rad = 0.0;
    double tiltRad = 0.0;
    unsigned validityH = 720;
    unsigned percent = 0;
    bool answers = true; ///< queries
    bool takes = true;   ///< commands: ACK, else NAK

    [[nodiscard]] Bytes Answer(std::span<const std::uint8_t> request) const
    {
        if (request.size() < 5 || request[2] != 0xC8) {
            return {kAck};
        }
        if (request[4] != 1) {
            return {takes ? kAck : kNak};
        }
        if (!answers) {
            return {};
        }
        Bytes data{1, request[5]};
        if (request[5] == 0) {
            Put(data, status, 1);
            Put(data, calibration, 1);
            for (const double angle : {t1Rad, t2Rad, tiltRad}) {
                Put(data, std::bit_cast<std::uint64_t>(angle), 8);
            }
            Put(data, 2400, 2); // week
            Put(data, 3600, 4); // and its second: an hour after the calibration
        } else {
            Put(data, validityH, 2);
            Put(data, 2400, 2);
            Put(data, 0, 4);
            Put(data, percent, 1);
        }
        return Frame(0xC8, data);
    }

    static void Put(Bytes& to, std::uint64_t value, int width)
    {
        for (int i = width - 1; i >= 0; --i) {
            to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    }
};

/// A channel to a simulated receiver, or to a sensor whose words a test chooses; time runs fast.
/// Settings are in a folder of its own, and what a program keeps of the bubble is as for a new
/// user.
class SensorLine
{
public:
    /// @param speed  of its time; a reading is soon too old where that runs fast
    explicit SensorLine(double speed = 100.0) : clock(speed)
    {
        eBubbleConfig::LoadBubbleData(reg);
        eBubbleConfig::SetBubbleExpiry(720);
        TiltSettings::LastRun() = {};
        command.SetLineObserver(
            [this](Direction direction, LineUnit, std::span<const std::uint8_t> frame) {
                if (direction == Direction::Sent) {
                    const std::lock_guard lock(m_mutex);
                    m_sent.emplace_back(frame.begin(), frame.end());
                }
            });
    }
    ~SensorLine()
    {
        const Questions::Quiet quiet(command);
        command.ClosePort();
    }
    SensorLine(const SensorLine&) = delete;
    SensorLine& operator=(const SensorLine&) = delete;

    void Start(const simulator::Scenario& scenario,
               std::chrono::milliseconds timeout = std::chrono::seconds(200))
    {
        command.ClosePort();
        simulator = std::make_unique<simulator::Simulator>(scenario, clock);
        std::string error;
        ASSERT_TRUE(simulator->Start(error)) << error;
        PortSettings settings;
        settings.replyTimeout = timeout;
        ASSERT_EQ(command.OpenPort(simulator->PortPath(), settings), 1) << command.LastError();
        command.Background().SetReplyTimeout(timeout);
        ForgetSent();
    }
    /// The sensor says what Say() was given last.
    void StartSensor(std::chrono::milliseconds timeout = std::chrono::seconds(200))
    {
        Start(simulator::Scenario(), timeout);
        simulator->SetScripted([this](std::span<const std::uint8_t> request) {
            const std::lock_guard lock(m_mutex);
            return m_words.Answer(request);
        });
    }
    void Say(const SensorWords& words)
    {
        const std::lock_guard lock(m_mutex);
        m_words = words;
    }
    /// How many requests with that type and that beginning were sent.
    [[nodiscard]] int Sent(std::uint8_t type, std::initializer_list<std::uint8_t> data = {}) const
    {
        const std::vector<Bytes> sent = SentFrames();
        return static_cast<int>(std::count_if(sent.begin(), sent.end(), [&](const Bytes& frame) {
            return frame.size() >= 6 + data.size() && frame[2] == type &&
                   std::equal(data.begin(), data.end(), frame.begin() + 4);
        }));
    }

    void ForgetSent()
    {
        const std::lock_guard lock(m_mutex);
        m_sent.clear();
    }
    /// Frames to the receiver, whole.
    [[nodiscard]] std::vector<Bytes> SentFrames() const
    {
        const std::lock_guard lock(m_mutex);
        return m_sent;
    }
    [[nodiscard]] std::size_t SentCount() const { return SentFrames().size(); }

    TemporaryFolder folder;
    SettingsRoots roots{FoldersBelow(folder.Path())};
    HostReg reg{roots};
    FastClock clock;
    std::unique_ptr<simulator::Simulator> simulator;
    CCommand command{{.clock = &clock, .roots = &roots}};

private:
    mutable std::mutex m_mutex; // guards these
    SensorWords m_words;
    std::vector<Bytes> m_sent;
};

} // namespace fieldcore::testing
