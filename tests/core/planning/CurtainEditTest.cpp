#include "core/planning/CurtainEdit.h"

#include <limits>
#include <numeric>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

int Sum(const CurtainEdit& edit)
{
    return std::accumulate(edit.Curtain().begin(), edit.Curtain().end(), 0);
}

TEST(CurtainEdit, DrawsAStraightLineBetweenTwoPoints)
{
    // From and to azimuth and elevation; an entry of the way and what is expected there; the sum of
    // all entries: that no other is touched.
    using Row = std::tuple<const char*, double, double, double, double, int, int, int>;
    const Row rows[] = {
        {"rising clockwise", 10.0, 0.0, 20.0, 20.0, 15, 10, 110},
        {"rising the other way", 20.0, 0.0, 10.0, 20.0, 15, 10, 110},
        {"across north clockwise", 355.0, 10.0, 5.0, 10.0, 0, 10, 110},
        {"across north back", 5.0, 0.0, 355.0, 20.0, 0, 10, 110},
        {"straight up", 90.9, 10.0, 90.1, 30.0, 90, 30, 30},
        {"opposite: clockwise", 0.0, 1.0, 180.0, 1.0, 90, 1, 181},
        {"an azimuth that was counted on", 725.0, 5.0, 726.0, 5.0, 5, 5, 10},
        {"a hair before north is the last entry's", -0.001, 7.0, -0.001, 7.0, 359, 7, 7},
        {"above the zenith", 40.0, 90.0, 40.0, 140.0, 40, 90, 90},
        {"below the horizon", 40.0, 30.0, 40.0, -4.0, 40, 0, 0},
        {"no number", 40.0, 30.0, std::numeric_limits<double>::quiet_NaN(), 50.0, 40, 30, 30},
    };
    for (const auto& [fault, fromAz, fromEl, toAz, toEl, at, expected, sum] : rows) {
        SCOPED_TRACE(fault);
        CurtainEdit edit;
        edit.BeginStroke(fromAz, fromEl);
        edit.StrokeTo(toAz, toEl);
        edit.EndStroke();
        EXPECT_EQ(edit.At(at), expected);
        EXPECT_EQ(Sum(edit), sum);
    }
}

TEST(CurtainEdit, SetsARangeAcrossNorth)
{
    CurtainEdit edit;
    edit.SetRange(358, 1, 20);
    EXPECT_EQ(Sum(edit), 80);
    EXPECT_EQ(edit.At(-1), 20);
    edit.SetRange(10, 10, 95);
    EXPECT_EQ(edit.At(370), 90) << "one entry, not the whole circle";
    EXPECT_EQ(Sum(edit), 170);
    edit.SetRange(11, 10, 1);
    EXPECT_EQ(Sum(edit), 360) << "all the way round";
}

TEST(CurtainEdit, TakesWholeChangesBackAndMakesThemAgain)
{
    CurtainEdit edit;
    edit.BeginStroke(0.0, 10.0);
    for (int azimuth = 1; azimuth < 50; ++azimuth) {
        edit.StrokeTo(azimuth, 10.0);
    }
    edit.EndStroke();
    edit.SetRange(100, 109, 30);
    edit.SetRange(100, 109, 30); // changes nothing: not to be taken back
    edit.Clear();
    ASSERT_EQ(Sum(edit), 0);
    edit.Undo();
    EXPECT_EQ(Sum(edit), 800);
    edit.Undo();
    EXPECT_EQ(Sum(edit), 500);
    edit.Undo();
    EXPECT_EQ(Sum(edit), 0) << "the stroke goes as a whole";
    EXPECT_FALSE(edit.CanUndo());
    edit.Redo();
    edit.Redo();
    EXPECT_EQ(Sum(edit), 800);
    edit.SetRange(200, 200, 1);
    EXPECT_FALSE(edit.CanRedo()) << "what was given up would come back into another curtain";
    edit.BeginStroke(201.0, 5.0);
    edit.Undo(); // with the finger still down
    EXPECT_EQ(Sum(edit), 801);
    EXPECT_FALSE(edit.IsStroking());
}

TEST(CurtainEdit, ForgetsTheOldestChangesOnly)
{
    CurtainEdit edit;
    const int changes = static_cast<int>(CurtainEdit::kMostUndos) + 50;
    for (int change = 0; change < changes; ++change) {
        edit.SetRange(change, change, 1 + change / 360);
    }
    int taken = 0;
    for (; edit.CanUndo(); ++taken) {
        edit.Undo();
    }
    EXPECT_EQ(taken, static_cast<int>(CurtainEdit::kMostUndos));
    EXPECT_EQ(Sum(edit), 50);
    ObstructionCurtain above{};
    above[3] = 200;
    edit.Replace(above);
    EXPECT_EQ(edit.At(3), 90);
}

} // namespace
} // namespace fieldcore
