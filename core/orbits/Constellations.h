#pragma once

#include "core/orbits/NavigationRecord.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore {

/// What is known of a system at an instant.
struct SystemState
{
    int satellites = 0; ///< with a record
    int healthy = 0;    ///< of these, at the instant
    int records = 0;
    double firstS = 0.0; ///< oldest and newest reference time, seconds of GPS time
    double lastS = 0.0;
    double ageS = 0.0; ///< of the record that is nearest to the instant, either way
    /// Older than StaleAfterS(): satellites may stand more than half a degree beside where they are
    /// computed.
    bool isStale = false;
};

/// The age of an orbit, either way, up to which the satellites of @p system are known to stand
/// within half a degree of where they are computed, seconds. docs/planning.md says how it was
/// found.
[[nodiscard]] double StaleAfterS(GnssSystem system) noexcept;

/// What satellites of all systems say of their orbits: for each satellite the newest messages, not
/// more than one in two hours and kMostRecords of them, whatever was ever added. One thread may
/// change it; any number may read it meanwhile nobody does.
class Constellations
{
public:
    /// Of one satellite, whatever was added.
    static constexpr std::size_t kMostRecords = 16;

    /// Adds @p records. Of a satellite the newest within two hours stays, of the same age the one
    /// that was added last; an older file so takes nothing away.
    void Add(std::span<const NavigationRecord> records);

    /// Takes away the records of @p system that are older than @p gpsS, seconds of GPS time.
    void DropBefore(GnssSystem system, double gpsS);

    /// By satellite, then reference time.
    [[nodiscard]] std::span<const NavigationRecord> Records() const { return m_records; }
    [[nodiscard]] std::span<const NavigationRecord> RecordsOf(SatelliteId satellite) const;
    [[nodiscard]] std::span<const NavigationRecord> RecordsOf(GnssSystem system) const;
    /// Those of which there is a record, in order.
    [[nodiscard]] std::vector<SatelliteId> Satellites(SystemSet systems) const;

    /// Where a satellite stands by the record that is nearest in time, so the newest for all that
    /// is to come; of two that are equally near the newer. If that one says that the satellite is
    /// not to be used, none is taken in its place.
    /// @param gpsS  seconds of GPS time since 1980-01-06
    /// @return earth-fixed, metres; nothing if there is no healthy record, or it leads nowhere
    [[nodiscard]] std::optional<Ecef> Position(SatelliteId satellite, double gpsS) const;

    /// How many satellites of @p system are known, and how old what is known of them is.
    /// @param gpsS  seconds of GPS time since 1980-01-06 that the ages count to
    [[nodiscard]] SystemState StateOf(GnssSystem system, double gpsS) const;

private:
    std::vector<NavigationRecord> m_records;
};

/// Constellations::Position() of one satellite, time after time: see OrbitMotion for what costs
/// least. One thread.
class SatelliteMotion
{
public:
    /// @param known  must stay as it is meanwhile
    SatelliteMotion(const Constellations& known, SatelliteId satellite)
        : m_records(known.RecordsOf(satellite))
    {}

    /// @return not a number where nothing is known
    [[nodiscard]] Ecef At(double gpsS);
    /// The same at @p epochs, in order. Allocates nothing.
    /// @param positions  as many as epochs
    void At(std::span<const double> epochs, std::span<Ecef> positions);

private:
    std::span<const NavigationRecord> m_records;
    const NavigationRecord* m_current = nullptr; // of m_motion
    std::optional<OrbitMotion> m_motion;
};

} // namespace fieldcore
