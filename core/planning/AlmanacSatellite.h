#pragma once

#include "core/planning/AlmanacOrbit.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/LocalFrame.h"
#include "core/planning/SkyLimits.h"

#include <span>

namespace fieldcore {

/// One satellite of the plan: its almanac record, and where it stands in the sky of an observer at
/// a time. Results stay until the next computation.
class CAlmanacSatellite
{
public:
    /// @param prn  1 to 32
    explicit CAlmanacSatellite(int prn = 1) : m_prn(prn) {}
    virtual ~CAlmanacSatellite() = default;
    CAlmanacSatellite(const CAlmanacSatellite&) = default;
    CAlmanacSatellite& operator=(const CAlmanacSatellite&) = default;

    /// Takes a record as it stands in the file; its PRN is not compared.
    void SetRecord(std::span<const std::uint8_t, kAlmanacRecordSize> record);
    void ClearRecord();
    /// @return the record, zeros when there is none
    [[nodiscard]] const AlmanacBytes& GetRecord() const { return m_record; }
    [[nodiscard]] const AlmanacOrbit& GetOrbit() const { return m_orbit; }

    /// Its number; whether it has a record.
    [[nodiscard]] int GetPrn() const { return m_prn; }
    [[nodiscard]] int IsLoaded() const { return m_loaded; }
    /// A satellite that is switched off is left out of the plan.
    void SetUse(int use) { m_use = use != 0 ? 1 : 0; }
    [[nodiscard]] int GetUse() const { return m_use; }
    /// Loaded and in use.
    [[nodiscard]] int IsValid() const { return m_loaded & m_use; }
    [[nodiscard]] int IsHealthy() const { return m_healthy ? 1 : 0; }

    /// Where and when it is seen from.
    void SetObserver(const Observer& observer) { m_frame = LocalFrame(observer); }
    void SetObserver(const LocalFrame& frame) { m_frame = frame; }
    void SetTime(GpsEpoch epoch) { m_epoch = epoch; }
    [[nodiscard]] GpsEpoch GetTime() const { return m_epoch; }

    /// Works out where the satellite stands.
    /// @return whether it is above the horizon, or on it. An unhealthy one is not, nor is one whose
    /// elements are no orbit; their angles stay as they were.
    bool Compute();
    /// Computes and tests against @p limits; IsVisible() keeps the answer. A satellite that is not
    /// valid is not computed.
    bool TestVisibility(const SkyLimits& limits);
    [[nodiscard]] int IsVisible() const { return m_visible; }

    /// @return 0 to 2 pi, clockwise from north
    [[nodiscard]] double GetAzimuth() const { return NormalisedAzimuth(m_direction.azimuthRad); }
    [[nodiscard]] double GetElevation() const { return m_direction.elevationRad; } ///< rad
    [[nodiscard]] const Ecef& GetPosition() const { return m_position; }

private:
    bool Locate(EastNorthUp& local, double& range);
    bool ComputeExactly();

    int m_loaded = 0;
    int m_use = 1;
    int m_visible = 0;
    int m_prn;
    SkyDirection m_direction;
    LocalFrame m_frame;
    Ecef m_position;
    GpsEpoch m_epoch;
    AlmanacBytes m_record{};
    AlmanacOrbit m_orbit;
    bool m_healthy = false;
};

} // namespace fieldcore
