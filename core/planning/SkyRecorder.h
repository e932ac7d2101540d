#pragma once

#include "core/link/Receiver.h"
#include "core/planning/SkyRecord.h"
#include "core/planning/SurveyPlanCalc.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

/// Notes what a connected receiver tracks, and what it misses of the satellites that the almanac
/// has over its place, into the record of that place. It asks nothing: Take() looks at what was
/// heard.
///
/// Only a receiver that is to be believed is noted: with a fix, an almanac that is not old and fits
/// what is tracked, an antenna that hears, and all that for some minutes. A satellite that has not
/// been tracked since the receiver was connected may be out of service: what was missed of it waits
/// until it is. One that is heard only faintly, through leaves or off a wall, counts as neither.
class SkyRecorder
{
public:
    /// So long all has to be well, since connecting or since it was last not.
    static constexpr std::chrono::minutes kSettling{2};
    /// So long has to be noted before a record is kept, and again before it is kept anew.
    static constexpr std::chrono::minutes kKeepAfter{5};
    /// Within this it is the same place, m.
    static constexpr double kSamePlaceM = 15.0;

    /// Why nothing is noted, the first reason that there is.
    enum class State : std::uint8_t
    {
        NotConnected,
        NoFix,
        NoAlmanac,
        OldAlmanac,   ///< IsAlmanacOld()
        OtherAlmanac, ///< it has satellites elsewhere than the receiver
        DeafAntenna,  ///< it hears hardly anything where it did, or all of it faintly
        Settling,
        Noting
    };

    /// @param clock  of the channel; must outlive the object
    explicit SkyRecorder(const Clock& clock) : m_clock(clock) {}
    /// Keeps what was noted. While nothing is taken.
    ~SkyRecorder();
    SkyRecorder(const SkyRecorder&) = delete;
    SkyRecorder& operator=(const SkyRecorder&) = delete;

    /// Where almanac and records are from now on. What comes from a connection that is there
    /// already belongs to the folder of before and is not noted. Any thread.
    /// @param folder      the program's
    /// @param connection  the number of the last one
    void Use(const std::filesystem::path& folder, unsigned connection);

    /// Takes over what is new. One thread; it may write a file.
    /// @param connection  that it was heard on: ReceiverLink::Connections()
    void Take(const Receiver& heard, unsigned connection);

    /// How it stands.
    struct Now
    {
        State state = State::NotConnected;
        std::optional<SkyRecord> record; ///< of the receiver's place; nothing before there was one
        std::vector<std::string> setAside; ///< new names of damaged records
        std::error_code fault;             ///< why a record could not be kept
    };
    /// Any thread.
    [[nodiscard]] Now GetNow() const;

private:
    struct Told // by Use()
    {
        std::filesystem::path folder;
        unsigned connection = 0;
    };
    /// Where the almanac has a GPS satellite.
    struct Expected
    {
        std::optional<SkyDirection> direction; ///< nothing: below the horizon, or not in service
        bool isTracked = false;
        bool isFaint = false;
    };
    using Sky = std::array<Expected, kMaxPrn>;

    void Begin(const Told& told);
    [[nodiscard]] State Judge(const Receiver& heard, Sky& sky);
    [[nodiscard]] bool GoTo(const Observer& place);
    [[nodiscard]] bool Fits(const SatelliteList& tracked, Sky& sky) const;
    [[nodiscard]] bool Hears(const SatelliteList& tracked, const Sky& sky) const;
    void Note(const SatelliteList& tracked, const Sky& sky);
    void Keep();
    void Publish(State state);

    const Clock& m_clock;

    // The thread that takes.
    std::filesystem::path m_folder; ///< empty: nobody has told
    unsigned m_ignored = 0;         ///< connections up to this
    unsigned m_connection = 0;
    CSurveyPlanCalc m_calc; ///< mask and curtain are none
    std::string m_almanac;  ///< which file it has loaded
    std::optional<SkyRecord> m_record;
    int m_unkept = 0; ///< rounds
    std::array<bool, kMaxPrn> m_wasTracked{};
    std::array<std::vector<SkyDirection>, kMaxPrn> m_waiting; ///< missed, of those that were not
    std::optional<Clock::Duration> m_takenAt;
    std::optional<Clock::Duration> m_goodSince;
    std::optional<Clock::Duration> m_notedAt;

    mutable std::mutex m_mutex; // guards these
    std::optional<Told> m_told;
    Now m_now;
};

/// Why nothing is noted, for the user: a number of the string table. 0 while it is.
[[nodiscard]] int SkyRecorderTextId(SkyRecorder::State state);

} // namespace fieldcore
