#pragma once

#include "core/planning/AlmanacSatellite.h"
#include "core/planning/AlmanacSource.h"
#include "core/planning/Dop.h"
#include "core/planning/GPSTime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace fieldcore {

class CCommand;

/// The sky of one observer at one time: 32 satellites, an elevation mask and an obstruction
/// curtain. ObservationPlan computes whole periods with what stands here.
class CSurveyPlanCalc
{
public:
    static constexpr int kSatellites = kMaxPrn;

    CSurveyPlanCalc();

    // The almanac file of the program's folder, see AlmanacStore, which also tells what went wrong.

    /// Receives the almanac into the temporary file.
    /// @param size  of that file, bytes; 0 if it could not be made
    /// @return whether a record was written
    static bool DownloadAlmanac(CCommand& command, std::size_t& size);
    /// Puts the temporary file in the almanac's place.
    /// @param size  as DownloadAlmanac() gave it
    /// @return false: with four satellites or fewer it is thrown away
    static bool CommitAlmanac(std::size_t size);
    /// Loads the almanac.
    bool LoadAlmanac();
    /// AlmanacTime() of this.
    [[nodiscard]] CGPSTime GetAlmanacTime() const;

    /// Forgets all records and takes those of @p content, an almanac file: a record whose PRN is
    /// not 1 to 32 is skipped, a later one for a PRN replaces an earlier one, and a cut record at
    /// the end does not count.
    /// @return whether any record was taken
    bool LoadAlmanac(std::span<const std::uint8_t> content);
    /// The same from a file; a file that cannot be read holds no records.
    bool LoadAlmanac(const std::filesystem::path& file);
    /// Where the almanac comes from, as far as its file or its content tell.
    [[nodiscard]] const AlmanacSource& Source() const { return m_source; }

    void SetCurtain(const ObstructionCurtain& curtain);
    [[nodiscard]] const ObstructionCurtain& GetCurtain() const { return m_curtain; }
    void SetObserver(const Observer& observer) { m_frame = LocalFrame(observer); }
    /// Radians, north and east positive, and metres above the ellipsoid.
    void SetObserver(double latitudeRad, double longitudeRad, double heightM)
    {
        SetObserver({latitudeRad, longitudeRad, heightM});
    }
    [[nodiscard]] const Observer& GetObserver() const { return m_frame.GetObserver(); }
    [[nodiscard]] const LocalFrame& GetFrame() const { return m_frame; }
    void SetTime(int week, double sowS) { m_epoch = {week, sowS}; }
    [[nodiscard]] GpsEpoch GetTime() const { return m_epoch; }
    /// @param maskRad  elevation mask, radians
    void SetElMask(double maskRad);
    [[nodiscard]] double GetElMask() const { return m_maskRad; }
    [[nodiscard]] const SkyLimits& GetLimits() const { return m_limits; }

    // One satellite, by PRN index 0 to 31. Another index is no satellite: 0, and nothing is set.

    [[nodiscard]] int IsValid(int index) const;
    void SetUse(int index, int use);
    /// Computes where the satellite stands for observer and time, whether it is valid, usable or
    /// neither; IsVisible() stays as it was.
    /// @return whether it is healthy and not below the horizon; where it stands is in
    /// GetSatellite()
    bool ComputeSatellite(int index);
    /// Computes the satellite for observer and time and tests whether it is usable.
    int TestVisibility(int index);
    /// Of the last TestVisibility().
    [[nodiscard]] int IsVisible(int index) const;
    /// @param index  0 to 31
    [[nodiscard]] const CAlmanacSatellite& GetSatellite(int index) const;

    /// Tests all satellites.
    /// @return how many are visible
    std::uint8_t CountVisible();
    /// Tests all satellites.
    /// @return kNoDop with fewer than four of them; what a geometry without a solution gives is not
    /// finite, and undefined beyond that
    DopValues ComputeDop();

private:
    [[nodiscard]] static bool IsIndex(int index) { return index >= 0 && index < kSatellites; }
    /// The satellite with observer and time.
    [[nodiscard]] CAlmanacSatellite& Prepared(int index);

    ObstructionCurtain m_curtain{};
    LocalFrame m_frame;
    GpsEpoch m_epoch{1213, 345600.0};
    double m_maskRad = 0.0;
    SkyLimits m_limits;
    std::array<CAlmanacSatellite, kSatellites> m_satellites;
    AlmanacSource m_source;
};

} // namespace fieldcore
