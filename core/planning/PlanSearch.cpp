#include "core/planning/PlanSearch.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/CalendarTime.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace fieldcore {

namespace {

using namespace std::chrono_literals;

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr int kJapanAheadH = 9;
/// Blocks of epochs that one step looks at: a day of ten minutes.
constexpr std::size_t kBlocksOfChunk = 18;

SearchHours Fitted(SearchHours hours)
{
    hours.days = std::clamp(hours.days, 1, SearchHours::kMostDays);
    hours.startHour = std::clamp(hours.startHour, 0, 23);
    hours.hours = std::clamp(hours.hours, 1, 24);
    hours.interval = std::clamp<std::chrono::minutes>(hours.interval, 1min, 60min);
    return hours;
}

std::vector<SearchSite> Fitted(std::vector<SearchSite> sites)
{
    sites.resize(std::min(sites.size(), PlanSearch::kMostSites));
    return sites;
}

bool IsWholeDay(const SearchHours& hours)
{
    return hours.hours == 24;
}

/// The epochs of a day's hours, both ends included.
int EpochsOf(const SearchHours& hours)
{
    return static_cast<int>(hours.hours * 60min / hours.interval) + 1;
}

std::size_t EpochsOfAll(const SearchHours& hours)
{
    // Of whole days the end of each is the start of the next.
    return static_cast<std::size_t>(IsWholeDay(hours) ? hours.days * (EpochsOf(hours) - 1) + 1
                                                      : hours.days * EpochsOf(hours));
}

} // namespace

PlanSearch::PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours,
                       const CSurveyPlanCalc& calc)
    : PlanSearch(std::move(sites), hours, {}, [&] {
          std::vector<Slot> slots;
          for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
              const CAlmanacSatellite& satellite = calc.GetSatellite(index);
              if (satellite.IsValid() != 0 && satellite.IsHealthy() != 0) {
                  slots.emplace_back(satellite.GetOrbit());
              }
          }
          return slots;
      }())
{}

PlanSearch::PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours,
                       Constellations known, std::span<const SatelliteId> satellites)
    : PlanSearch(std::move(sites), hours, std::move(known),
                 std::vector<Slot>(satellites.begin(), satellites.end()))
{}

PlanSearch::PlanSearch(std::vector<SearchSite> sites, const SearchHours& hours,
                       Constellations known, std::vector<Slot> slots)
    : m_sites(Fitted(std::move(sites))), m_hours(Fitted(hours)), m_known(std::move(known)),
      m_slots(std::move(slots)), m_gpsS(EpochsOfAll(m_hours)),
      m_grid(m_slots.size(), m_gpsS.size()), m_counts((m_sites.size() + 1) * m_gpsS.size()),
      m_pdops(m_counts.size()), m_positions(m_gpsS.size()),
      m_visible(m_grid.Words() * kBlockEpochs), m_common(m_visible.size())
{
    m_slots.resize(m_grid.SlotCount());
    m_frames.reserve(m_sites.size());
    for (const SearchSite& site : m_sites) {
        m_frames.emplace_back(site.observer);
    }
    // An almanac alone is planned as ObservationPlan plans it.
    const GpsEpoch start = ToEpoch(PlanPeriod{m_hours.first, m_hours.startHour, 1}.Start());
    std::vector<GpsEpoch> epochs(m_gpsS.size());
    for (std::size_t k = 0; k < m_gpsS.size(); ++k) {
        const std::chrono::sys_seconds utc = UtcAt(static_cast<int>(k));
        m_gpsS[k] = GpsSecondsOfUtc(utc);
        epochs[k] = {start.week,
                     start.sowS + std::chrono::duration<double>(utc - UtcAt(0)).count()};
    }
    m_grid.Begin(epochs);
}

std::chrono::sys_seconds PlanSearch::UtcAt(int epoch) const
{
    const int ofDay = EpochsOf(m_hours);
    const int day = IsWholeDay(m_hours) ? 0 : epoch / ofDay;
    return std::chrono::sys_days(m_hours.first) + std::chrono::days(day) +
           std::chrono::hours(m_hours.startHour - kJapanAheadH) +
           (epoch - day * ofDay) * m_hours.interval;
}

int PlanSearch::DayOf(int epoch) const
{
    const int ofDay = IsWholeDay(m_hours) ? EpochsOf(m_hours) - 1 : EpochsOf(m_hours);
    return std::min(epoch / ofDay, m_hours.days - 1);
}

std::size_t PlanSearch::Chunks() const
{
    constexpr std::size_t kEpochs = kBlocksOfChunk * kBlockEpochs;
    return (m_gpsS.size() + kEpochs - 1) / kEpochs;
}

bool PlanSearch::Step()
{
    if (m_done < Steps()) {
        if (m_done < m_slots.size()) {
            Place(m_done);
        } else {
            ViewChunk(m_done - m_slots.size());
        }
        ++m_done;
    }
    return m_done < Steps();
}

void PlanSearch::Place(std::size_t slot)
{
    if (const auto* const orbit = std::get_if<AlmanacOrbit>(&m_slots[slot])) {
        m_grid.Set(slot, *orbit);
        return;
    }
    SatelliteMotion(m_known, std::get<SatelliteId>(m_slots[slot])).At(m_gpsS, m_positions);
    m_grid.Set(slot, m_positions);
}

void PlanSearch::ViewChunk(std::size_t chunk)
{
    const std::size_t first = chunk * kBlocksOfChunk;
    for (std::size_t block = first; block < first + kBlocksOfChunk; ++block) {
        if (block * kBlockEpochs < m_gpsS.size()) {
            ViewBlock(block);
        }
    }
}

/// Block by block for all sites, so that the positions are fetched from memory once.
void PlanSearch::ViewBlock(std::size_t block)
{
    const std::size_t first = block * kBlockEpochs;
    const std::size_t epochs = std::min(kBlockEpochs, m_gpsS.size() - first);
    const std::size_t words = m_grid.Words();
    std::array<std::uint8_t, kBlockEpochs> counts{};
    std::array<DopValues, kBlockEpochs> dops;
    std::array<double, kBlockEpochs> highest{};
    std::fill(m_common.begin(), m_common.end(), ~std::uint64_t{0});
    for (std::size_t site = 0; site < m_sites.size(); ++site) {
        m_grid.ViewBlock(m_frames[site], m_sites[site].limits, block, {m_visible, counts, dops});
        const std::size_t at = site * m_gpsS.size() + first;
        for (std::size_t k = 0; k < epochs; ++k) {
            m_counts[at + k] = counts[k];
            m_pdops[at + k] = std::isnan(dops[k].pdop) ? kInfinite : dops[k].pdop;
            highest[k] = std::max(highest[k], m_pdops[at + k]);
        }
        for (std::size_t i = 0; i < epochs * words; ++i) {
            m_common[i] &= m_visible[i];
        }
    }
    const std::size_t at = Together() * m_gpsS.size() + first;
    for (std::size_t k = 0; k < epochs; ++k) {
        int count = 0;
        for (std::size_t word = 0; word < words && !m_sites.empty(); ++word) {
            count += std::popcount(m_common[k * words + word]);
        }
        m_counts[at + k] = static_cast<std::uint8_t>(count);
        m_pdops[at + k] = highest[k];
    }
}

std::span<const std::uint8_t> PlanSearch::Counts(std::size_t site) const
{
    return std::span(m_counts).subspan(site * m_gpsS.size(), m_gpsS.size());
}

std::span<const double> PlanSearch::Pdops(std::size_t site) const
{
    return std::span(m_pdops).subspan(site * m_gpsS.size(), m_gpsS.size());
}

std::vector<SearchWindow> PlanSearch::BestOfDays(std::size_t site, const WindowLimits& limits) const
{
    const std::span<const std::uint8_t> counts = Counts(site);
    const std::span<const double> pdops = Pdops(site);
    const auto isBetter = [](const PlanWindow& a, const PlanWindow& b) {
        return a.highestPdop != b.highestPdop ? a.highestPdop < b.highestPdop
                                              : a.fewestSatellites > b.fewestSatellites;
    };
    const int length =
        static_cast<int>((limits.minLength + m_hours.interval - 1min) / m_hours.interval);
    std::vector<std::optional<SearchWindow>> ofDays(static_cast<std::size_t>(m_hours.days));
    const int ofDay = IsWholeDay(m_hours) ? EpochCount() : EpochsOf(m_hours);
    for (int start = 0; start < EpochCount(); start += ofDay) { // what goes on without a break
        const auto from = static_cast<std::size_t>(start);
        const auto many = static_cast<std::size_t>(ofDay);
        for (const PlanWindow& good : FindWindows(
                 counts.subspan(from, many), pdops.subspan(from, many), m_hours.interval, limits)) {
            for (int first = start + good.first; first + length <= start + good.last; ++first) {
                PlanWindow window{first, first + length, 255, 0.0};
                for (auto k = static_cast<std::size_t>(window.first);
                     k <= static_cast<std::size_t>(window.last); ++k) {
                    window.fewestSatellites = std::min<int>(window.fewestSatellites, counts[k]);
                    window.highestPdop = std::max(window.highestPdop, pdops[k]);
                }
                auto& best = ofDays[static_cast<std::size_t>(DayOf(first))];
                if (!best || isBetter(window, best->window)) {
                    best = SearchWindow{window, start + good.first, start + good.last};
                }
            }
        }
    }
    std::vector<SearchWindow> windows;
    for (const std::optional<SearchWindow>& best : ofDays) {
        if (best) {
            windows.push_back(*best);
        }
    }
    std::stable_sort(
        windows.begin(), windows.end(),
        [&](const SearchWindow& a, const SearchWindow& b) { return isBetter(a.window, b.window); });
    return windows;
}

} // namespace fieldcore
