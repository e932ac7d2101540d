#pragma once

#include "core/orbits/Constellations.h"
#include "core/planning/PlanGrid.h"
#include "core/planning/PlanWindows.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace fieldcore {

/// A site of a search with what hides its sky.
struct SearchSite
{
    std::wstring name;
    Observer observer;
    SkyLimits limits;
    bool hasCurtain = false; ///< more than a mask hides the sky
};

/// The same hours of some days, Japan Standard Time.
struct SearchHours
{
    static constexpr int kMostDays = 31;

    /// The first day; others follow it without a gap.
    std::chrono::year_month_day first{std::chrono::year(1980), std::chrono::January,
                                      std::chrono::day(7)};
    int days = 14;     ///< 1 to kMostDays; others count as the nearest of these
    int startHour = 0; ///< 0 to 23
    int hours = 24;    ///< 1 to 24; may pass midnight. All 24: the days go on into each other
    std::chrono::minutes interval{10}; ///< a divisor of an hour
};

/// A time that is good to observe, as long as was asked for.
struct SearchWindow
{
    PlanWindow window; ///< epochs of the search
    int goodFirst = 0; ///< epochs of the longer time around it that keeps to the limits, too
    int goodLast = 0;
};

/// Searches days for the hours in which sites can observe, each of them and all at once. Step()
/// until it is done; what is found can then be asked for with any limits. One thread at a time.
class PlanSearch
{
public:
    /// More are left out.
    static constexpr std::size_t kMostSites = 500;

    /// With the GPS satellites of the almanac of @p calc that count.
    /// @param sites  kMostSites at most; more are left out
    PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours,
               const CSurveyPlanCalc& calc);
    /// With @p satellites, of which @p known knows, 255 at most; more are left out.
    PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours, Constellations known,
               std::span<const SatelliteId> satellites);

    /// Does a part of the work, some milliseconds: a satellite's way over all days, which serves
    /// every site, or the sky of all sites over some hours. Allocates nothing.
    /// @return whether there is more to do
    bool Step();
    [[nodiscard]] std::size_t Steps() const { return m_slots.size() + Chunks(); }
    [[nodiscard]] std::size_t StepsDone() const { return m_done; }

    /// Those that are searched, as they were given.
    [[nodiscard]] std::span<const SearchSite> Sites() const { return m_sites; }
    /// Behind the sites: all of them together.
    [[nodiscard]] std::size_t Together() const { return m_sites.size(); }

    /// Epochs of all days, in order of time; epoch 0 is the first of the first day.
    [[nodiscard]] int EpochCount() const { return static_cast<int>(m_gpsS.size()); }
    /// From an epoch to the next one of the same day.
    [[nodiscard]] std::chrono::minutes Interval() const { return m_hours.interval; }
    /// @param epoch  0 to EpochCount() - 1
    [[nodiscard]] std::chrono::sys_seconds UtcAt(int epoch) const;
    /// The day of the search, 0 on, to whose hours an epoch belongs.
    [[nodiscard]] int DayOf(int epoch) const;

    // Of a site, or of Together(), epoch by epoch; after the last step.

    /// Usable satellites; together: those that every site can use.
    [[nodiscard]] std::span<const std::uint8_t> Counts(std::size_t site) const;
    /// Together: the highest of the sites. Infinite where there is no solution.
    [[nodiscard]] std::span<const double> Pdops(std::size_t site) const;
    /// The best time of @p limits.minLength of each day that has one; best is the one with the
    /// lowest highest PDOP, of these the one with the most satellites, of these the first. The best
    /// day first.
    [[nodiscard]] std::vector<SearchWindow> BestOfDays(std::size_t site,
                                                       const WindowLimits& limits) const;

private:
    using Slot = std::variant<AlmanacOrbit, SatelliteId>;

    PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours, Constellations known,
               std::vector<Slot> slots);
    [[nodiscard]] std::size_t Chunks() const;
    void Place(std::size_t slot);
    void ViewChunk(std::size_t chunk);
    void ViewBlock(std::size_t block);

    std::vector<SearchSite> m_sites;
    std::vector<LocalFrame> m_frames;
    SearchHours m_hours;
    Constellations m_known;
    std::vector<Slot> m_slots;
    std::vector<double> m_gpsS; // of each epoch
    PlanGrid m_grid;
    std::size_t m_done = 0;
    // Of each site, and of all together behind them.
    std::vector<std::uint8_t> m_counts;
    std::vector<double> m_pdops;
    // For one satellite, and for one block of epochs.
    std::vector<Ecef> m_positions;
    std::vector<std::uint64_t> m_visible, m_common;
};

} // namespace fieldcore
