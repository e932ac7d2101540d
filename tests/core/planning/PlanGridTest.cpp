#include "core/planning/PlanGrid.h"

#include "tests/core/planning/IndependentSky.h"
#include "tests/core/planning/SampleSky.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr std::size_t kSlots = 130;
constexpr std::size_t kEpochs = 61; // not whole blocks

struct Seen
{
    explicit Seen(const PlanGrid& grid)
        : visible(grid.EpochCount() * grid.Words()), count(grid.EpochCount()),
          dop(grid.EpochCount()), directions(grid.SlotCount(), grid.EpochCount())
    {}
    [[nodiscard]] GridView Into() { return {visible, count, dop, &directions}; }
    [[nodiscard]] bool Is(std::size_t slot, std::size_t epoch) const
    {
        return (visible[epoch * (kSlots / 64 + 1) + slot / 64] >> slot % 64 & 1U) != 0;
    }

    std::vector<std::uint64_t> visible;
    std::vector<std::uint8_t> count;
    std::vector<DopValues> dop;
    SkyDirections directions;
};

TEST(PlanGrid, ShowsAsManySatellitesAndEpochsAsItHasRoomFor)
{
    std::vector<GpsEpoch> epochs;
    for (std::size_t k = 0; k < kEpochs; ++k) {
        epochs.push_back({testing::kSampleWeek, 600.0 * static_cast<double>(k)});
    }
    // Each satellite on its orbit, and again where its positions say; from the tenth epoch on
    // these are missing.
    constexpr std::size_t kGiven = 99;
    constexpr std::size_t kMissing = 10;
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    PlanGrid grid(kSlots, kEpochs);
    grid.Begin(epochs);
    for (int prn = 1; prn <= 30; ++prn) {
        const auto slot = static_cast<std::size_t>(prn);
        const AlmanacOrbit orbit(testing::SampleSatellite(prn));
        grid.Set(slot, orbit);
        std::vector<Ecef> positions;
        positions.reserve(std::size(epochs));
        for (const GpsEpoch& epoch : epochs) {
            positions.push_back(positions.size() < kMissing ? orbit.Position(epoch).value_or(Ecef{})
                                                            : Ecef{kNaN, kNaN, kNaN});
        }
        grid.Set(kGiven + slot, positions);
    }
    const Observer site;
    const SkyLimits limits(0.2, ObstructionCurtain{});
    Seen seen(grid);
    grid.View(LocalFrame(site), limits, seen.Into());
    int visible = 0;
    for (std::size_t k = 0; k < kEpochs; ++k) {
        int count = 0;
        for (std::size_t slot = 0; slot < kSlots; ++slot) {
            const int prn = static_cast<int>(slot > kGiven ? slot - kGiven : slot);
            bool isSeen = prn >= 1 && prn <= 30 && (slot < kGiven || k < kMissing);
            if (isSeen) {
                const AlmanacRecord record = testing::SampleSatellite(prn);
                const auto place = testing::PlaceOf(record, epochs[k].sowS - record.toaS, site);
                isSeen = limits.Pass({place.azimuthRad, place.elevationRad});
                const SkyDirection ours = seen.directions.At(slot, k);
                ASSERT_TRUE(!isSeen || std::abs(ours.azimuthRad - place.azimuthRad) < 1e-9);
                ASSERT_TRUE(!isSeen || std::abs(ours.elevationRad - place.elevationRad) < 1e-9);
            }
            ASSERT_EQ(seen.Is(slot, k), isSeen) << slot;
            count += isSeen ? 1 : 0;
        }
        ASSERT_EQ(seen.count[k], count) << k;
        visible += count;
    }
    EXPECT_GT(visible, 300);

    // Fewer epochs next time, and nothing of the time before.
    grid.Begin(std::span(epochs).first(3));
    grid.Set(7, AlmanacOrbit(testing::SampleSatellite(7)));
    Seen next(grid);
    ASSERT_EQ(next.count.size(), 3U);
    grid.View(LocalFrame(site), limits, next.Into());
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(next.count[k], seen.Is(7, k) ? 1 : 0);
        EXPECT_EQ(next.dop[k].gdop, kNoDop.gdop);
    }
}

} // namespace
} // namespace fieldcore
