#pragma once

#include "core/planning/LocalFrame.h"
#include "core/platform/Clock.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

/// What a receiver has tracked at one place, and what it has missed, by where in the sky that was.
/// Directions are noted kNoteInterval apart, each in its cell of two degrees of azimuth and one of
/// elevation. A cell counts up to 255; both its counts are halved then, so that what has changed at
/// the place shows after some hours.
class SkyRecord
{
public:
    static constexpr std::chrono::seconds kNoteInterval{30};
    static constexpr int kAzimuths = 180; ///< columns of cells, from north on
    static constexpr int kElevations = 90;

    /// What is known of a cell.
    enum class Cell : std::uint8_t
    {
        Unknown,
        Open,  ///< satellites were tracked in it more often than missed
        Hidden ///< the other way round, or as often
    };

    SkyRecord() = default;
    /// @param place  its height is not kept
    explicit SkyRecord(const Observer& place);

    /// A round of notes begins. @param now  kept to the second
    void BeginNotes(Clock::UtcTime now);
    /// A direction below the horizon, or one that is none, is not noted.
    void NoteTracked(const SkyDirection& direction) { Note(direction, &Counts::tracked); }
    void NoteMissed(const SkyDirection& direction) { Note(direction, &Counts::missed); }

    /// @param azimuth    0 to kAzimuths - 1
    /// @param elevation  whole degrees, 0 to kElevations - 1
    [[nodiscard]] Cell At(int azimuth, int elevation) const;
    /// Of the cell that @p direction is in; Unknown for one that is noted nowhere.
    [[nodiscard]] Cell At(const SkyDirection& direction) const;

    [[nodiscard]] const Observer& Place() const { return m_place; }
    /// How long was observed in all.
    [[nodiscard]] std::chrono::seconds Observed() const { return m_rounds * kNoteInterval; }
    /// When the last round was.
    [[nodiscard]] Clock::UtcTime LastNoted() const;

    /// As it stands in a file: a mark, a version, place, times and cells, and a sum of all that.
    [[nodiscard]] std::vector<std::uint8_t> Bytes() const;
    /// @return nothing if @p bytes are no such file, or damaged
    [[nodiscard]] static std::optional<SkyRecord> FromBytes(std::span<const std::uint8_t> bytes);

    friend bool operator==(const SkyRecord& a, const SkyRecord& b)
    {
        return a.Bytes() == b.Bytes();
    }

private:
    struct Counts
    {
        std::uint8_t tracked = 0;
        std::uint8_t missed = 0;
    };
    [[nodiscard]] static std::optional<std::size_t> IndexOf(const SkyDirection& direction);
    void Note(const SkyDirection& direction, std::uint8_t Counts::*count);

    Observer m_place{0.0, 0.0, 0.0};
    std::uint32_t m_rounds = 0;
    std::int64_t m_lastNoted = 0; // seconds since 1970
    std::array<Counts, std::size_t{kAzimuths} * kElevations> m_cells{};
};

/// How far apart two places are, m, whatever their heights. For places near each other.
[[nodiscard]] double DistanceM(const Observer& a, const Observer& b);

// The records of all places: a file each in "SkyRecords" of the program's folder. A file that is
// damaged is renamed, so that it can still be looked at.

[[nodiscard]] std::filesystem::path SkyRecordsPath(const std::filesystem::path& folder);

struct SkyRecords
{
    std::vector<SkyRecord> records;    ///< the one that was noted last first
    std::vector<std::string> setAside; ///< the new names of damaged files, without their folder
};
/// @param folder  the program's
[[nodiscard]] SkyRecords LoadSkyRecords(const std::filesystem::path& folder);

/// So many places are kept; the ones noted longest ago go first.
inline constexpr std::size_t kMostSkyRecords = 16;

/// Replaces the file of its place as a whole, and removes those beyond kMostSkyRecords.
/// @return what went wrong; the old file is then still there
[[nodiscard]] std::error_code SaveSkyRecord(const std::filesystem::path& folder,
                                            const SkyRecord& record);

} // namespace fieldcore
