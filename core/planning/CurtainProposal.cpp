#include "core/planning/CurtainProposal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace fieldcore {

namespace {

using Cell = SkyRecord::Cell;

constexpr int kCircle = 360;
constexpr int kColumns = SkyRecord::kAzimuths;
constexpr int kColumnDeg = kCircle / kColumns;
constexpr int kTop = SkyRecord::kElevations;

// A skyline is told from the cells by what it costs: each open cell below it and each hidden one
// above it costs 1, and so does rising or falling, from column to column, so that a skyline bends
// no more than the cells demand. An edge costs no more than a rise of kEdgeDeg, else it could not
// be where there is a wall.
constexpr double kRiseCost = 0.2; // a degree
constexpr int kEdgeDeg = 15;
/// What costs less than this above the least is as likely: less than one cell.
constexpr double kAsLikely = 0.9;

/// What is known to within so many degrees counts so; an open sky has been seen down to so many
/// above the floor.
constexpr int kSureWidth = 4;
constexpr int kFairWidth = 8;
constexpr int kOpenWidth = 3;
/// But only between cells so near to the skyline, degrees, with a gap of no more columns.
constexpr int kNear = 8;
constexpr int kSureGap = 6;
constexpr int kFairGap = 20;

/// A value for each elevation of a skyline, 0 to 90 degrees.
using Costs = std::array<double, kTop + 1>;

/// The lowest elevation at which more than one satellite was tracked.
int FloorOf(const SkyRecord& record)
{
    for (int elevation = 0; elevation < kTop; ++elevation) {
        int open = 0;
        for (int column = 0; column < kColumns; ++column) {
            open += record.At(column, elevation) == Cell::Open ? 1 : 0;
        }
        if (open > 1) {
            return elevation;
        }
    }
    return kTop;
}

Costs CellCosts(const SkyRecord& record, int column, int floor)
{
    Costs costs{};
    for (int elevation = floor; elevation < kTop; ++elevation) {
        costs[0] += record.At(column, elevation) == Cell::Hidden ? 1.0 : 0.0;
    }
    for (std::size_t line = 1; line < costs.size(); ++line) {
        const int below = static_cast<int>(line) - 1;
        const Cell cell = below < floor ? Cell::Unknown : record.At(column, below);
        costs[line] =
            costs[line - 1] + (cell == Cell::Open ? 1.0 : 0.0) - (cell == Cell::Hidden ? 1.0 : 0.0);
    }
    return costs;
}

/// The least that a skyline costs that comes from a column with @p before and goes on at each
/// elevation. Below the floor it costs nothing to rise: nobody knows of it.
Costs Reached(const Costs& before, int floor)
{
    const double edge = *std::ranges::min_element(before) + kRiseCost * kEdgeDeg;
    const auto first = static_cast<std::size_t>(floor);
    Costs reached = before;
    reached[first] = *std::min_element(before.begin(), before.begin() + floor + 1);
    for (std::size_t line = first + 1; line < reached.size(); ++line) {
        reached[line] = std::min(reached[line], reached[line - 1] + kRiseCost);
    }
    for (std::size_t line = reached.size() - 1; line > first; --line) {
        reached[line - 1] = std::min(reached[line - 1], reached[line] + kRiseCost);
    }
    std::fill(reached.begin(), reached.begin() + floor, reached[first]);
    for (double& cost : reached) {
        cost = std::min(cost, edge);
    }
    return reached;
}

/// Where the skyline is, whole degrees.
struct Enclosed
{
    int lowest = 0; ///< it is not below
    int highest = kTop;
};

/// For each column the elevations of the skylines that cost the least.
std::vector<Enclosed> Enclose(const SkyRecord& record, int floor)
{
    const auto columns = std::size_t{kColumns};
    std::vector<Costs> cells(columns);
    for (std::size_t column = 0; column < columns; ++column) {
        cells[column] = CellCosts(record, static_cast<int>(column), floor);
    }
    // Once around from either side, after a first round that knows what lies across north.
    std::vector<Costs> fromLeft(columns);
    std::vector<Costs> fromRight(columns);
    const auto add = [](Costs a, const Costs& b) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] += b[i];
        }
        const double least = *std::ranges::min_element(a);
        for (double& cost : a) {
            cost -= least;
        }
        return a;
    };
    Costs left{};
    Costs right{};
    for (std::size_t step = 0; step < 2 * columns; ++step) {
        const std::size_t up = step % columns;
        fromLeft[up] = left;
        left = Reached(add(left, cells[up]), floor);
        const std::size_t down = columns - 1 - up;
        fromRight[down] = right;
        right = Reached(add(right, cells[down]), floor);
    }
    std::vector<Enclosed> enclosed(columns);
    for (std::size_t column = 0; column < columns; ++column) {
        const Costs costs = add(add(fromLeft[column], cells[column]), fromRight[column]);
        const auto isLikely = [](double cost) { return cost < kAsLikely; };
        const auto first = std::find_if(costs.begin(), costs.end(), isLikely);
        const auto last = std::find_if(costs.rbegin(), costs.rend(), isLikely);
        enclosed[column] = {static_cast<int>(first - costs.begin()),
                            static_cast<int>(costs.rend() - last) - 1};
    }
    return enclosed;
}

/// How wide the gap is, in columns, between the nearest cells on either side that say so: of those
/// that hold the upper limit or those that hold the lower one, the wider.
int GapAround(const SkyRecord& record, int column, const Enclosed& enclosed, int floor)
{
    const auto away = [&](int side, int from, int to, Cell wanted) {
        for (int off = 0; off < kColumns; ++off) {
            const int at = (column + side * off + kColumns) % kColumns;
            for (int elevation = std::max(from, floor); elevation < std::min(to, kTop);
                 ++elevation) {
                if (record.At(at, elevation) == wanted) {
                    return off;
                }
            }
        }
        return kColumns;
    };
    const auto gap = [&](int from, int to, Cell wanted) {
        return away(-1, from, to, wanted) + away(1, from, to, wanted);
    };
    const int above = gap(enclosed.lowest, enclosed.highest + kNear, Cell::Open);
    return enclosed.lowest > floor
               ? std::max(above, gap(enclosed.lowest - kNear, enclosed.highest, Cell::Hidden))
               : above;
}

SkylineCertainty CertaintyOf(const Enclosed& enclosed, int gap, int floor)
{
    if (enclosed.lowest <= floor) { // open, but only as far down as the receiver tracks
        return enclosed.highest <= floor + kOpenWidth && gap <= kSureGap
                   ? SkylineCertainty::Sure
                   : SkylineCertainty::Unknown;
    }
    const int width = enclosed.highest - enclosed.lowest;
    if (width <= kSureWidth && gap <= kSureGap) {
        return SkylineCertainty::Sure;
    }
    return width <= kFairWidth && gap <= kFairGap ? SkylineCertainty::Fair
                                                  : SkylineCertainty::Unknown;
}

} // namespace

int CurtainProposal::Percent(SkylineCertainty wanted) const
{
    const auto count = std::ranges::count(certainty, wanted);
    return static_cast<int>(std::lround(100.0 * static_cast<double>(count) / kCircle));
}

std::optional<CurtainProposal> ProposeCurtain(const SkyRecord& record,
                                              const ObstructionCurtain& current)
{
    const int floor = FloorOf(record);
    if (record.Observed() < kLeastObserved || floor == kTop) {
        return std::nullopt;
    }
    CurtainProposal proposal;
    proposal.observed = record.Observed();
    const std::vector<Enclosed> skyline = Enclose(record, floor);
    for (int column = 0; column < kColumns; ++column) {
        const Enclosed& enclosed = skyline[static_cast<std::size_t>(column)];
        const SkylineCertainty certainty =
            CertaintyOf(enclosed, GapAround(record, column, enclosed, floor), floor);
        for (int entry = column * kColumnDeg; entry < (column + 1) * kColumnDeg; ++entry) {
            const auto at = static_cast<std::size_t>(entry);
            int value = current[at];
            if (certainty != SkylineCertainty::Unknown &&
                (value < enclosed.lowest || value > enclosed.highest)) {
                value = enclosed.lowest > floor ? (enclosed.lowest + enclosed.highest) / 2
                                                : enclosed.highest;
            }
            proposal.certainty[at] = certainty;
            proposal.curtain[at] = static_cast<std::uint8_t>(value);
        }
    }
    return proposal.Percent(SkylineCertainty::Unknown) < 100 ? std::optional(proposal)
                                                             : std::nullopt;
}

} // namespace fieldcore
