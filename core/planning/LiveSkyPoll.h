#pragma once

#include "core/link/Command.h"
#include "core/planning/LiveSky.h"
#include "core/planning/SurveyPlanCalc.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace fieldcore {

/// Asks the receiver for its sky, a round at a time. All calls come from one thread, that of the
/// face which is asked. A round ends with the first satellite list that does not come.
class LiveSkyPoll
{
public:
    static constexpr std::chrono::seconds kInterval{2};
    /// The longest pause between two rounds, for a receiver that keeps silent.
    static constexpr std::chrono::seconds kLongestPause{16};
    /// What a receiver did not answer, and what hardly changes, is not asked for again for so long.
    static constexpr std::chrono::seconds kRarely{30};

    /// @param clock   must outlive the object
    /// @param folder  the program's, where the almanac is
    LiveSkyPoll(const Clock& clock, std::filesystem::path folder);

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

    /// What there is to show.
    struct Now
    {
        LiveSky sky;
        State state = State::NotConnected;
        bool hasAlmanac = false;
    };

    /// Reads the almanac again.
    void LoadAlmanac();
    /// One round. @return whether the receiver answered
    bool Poll(CCommand& command);
    [[nodiscard]] const Now& GetNow() const { return m_now; }

private:
    bool ReadLists(LiveSky::Reading& reading);
    void ReadUsed(LiveSky::Reading& reading);
    void Predict(LiveSky::Reading& reading);
    void ForgetReceiver();

    CCommand* m_command = nullptr; // of the round under way
    const Clock& m_clock;
    const std::filesystem::path m_folder;
    CSurveyPlanCalc m_calc; // mask and curtain are none: all above the horizon
    Now m_now;

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
