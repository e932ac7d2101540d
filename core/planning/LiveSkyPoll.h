#pragma once

#include "core/link/Command.h"
#include "core/planning/LiveSky.h"
#include "core/planning/SurveyPlanCalc.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace fieldcore {

/// Asks the receiver for its sky, a round at a time. All calls come from the thread of the command
/// channel. A round blocks it as long as its exchanges last, and ends with the first satellite list
/// that does not come; the object must not go away from inside.
class LiveSkyPoll
{
public:
    static constexpr std::chrono::seconds kInterval{2};
    /// The longest pause between two rounds, for a receiver that keeps silent: each of its rounds
    /// blocks the program for two reply time-outs.
    static constexpr std::chrono::seconds kLongestPause{16};
    /// What a receiver did not answer, and what hardly changes, is not asked for again for so long.
    static constexpr std::chrono::seconds kRarely{30};

    /// @param command  may be null; it and @p clock must outlive the object
    /// @param folder   the program's, where the almanac is
    LiveSkyPoll(CCommand* command, const Clock& clock, std::filesystem::path folder);

    enum class State
    {
        NotConnected, ///< no port is open; LiveSky keeps the last reading, which ages
        Waiting,      ///< nothing has been asked yet
        Good,
        Silent,   ///< nothing comes
        Damaged,  ///< something comes that is no satellite list
        Refused,  ///< the receiver does not know the request
        LinkLost, ///< the other end is gone
        Cancelled,
    };

    /// Reads the almanac again.
    void LoadAlmanac();
    [[nodiscard]] bool HasAlmanac() const { return m_hasAlmanac; }

    /// One round. While another exchange is under way it is left out.
    /// @return whether there is anything new to show, be it only the state
    bool Poll();
    [[nodiscard]] State GetState() const { return m_state; }
    [[nodiscard]] const LiveSky& Sky() const { return m_sky; }
    /// How long to wait for the next round: kInterval, twice as long after each that failed, up to
    /// kLongestPause.
    [[nodiscard]] std::chrono::seconds Pause() const;

private:
    [[nodiscard]] State StateOfFault() const;
    bool ReadLists(LiveSky::Reading& reading);
    void ReadUsed(LiveSky::Reading& reading);
    void Predict(LiveSky::Reading& reading);
    void ForgetReceiver();

    CCommand* const m_command;
    const Clock& m_clock;
    const std::filesystem::path m_folder;
    CSurveyPlanCalc m_calc; // mask and curtain are none: all above the horizon
    bool m_hasAlmanac = false;
    LiveSky m_sky;
    State m_state = State::Waiting;
    int m_failures = 0; // in a row
    bool m_isPolling = false;

    // What is known of the receiver that is connected.
    bool m_hasFrames = true;  // it knows the list in several frames
    bool m_hasGlonass = true; // its satellite data have GLONASS
    std::optional<Clock::Duration> m_noUsedSince;
    std::optional<Clock::Duration> m_noTimeSince;
    std::optional<Clock::Duration> m_siteAskedAt;
    std::optional<Observer> m_site;
};

/// What to tell the user about a sky: a number of the string table; 0 if all is well.
[[nodiscard]] int LiveSkyTextId(LiveSkyPoll::State state);

} // namespace fieldcore
