// Where things stand in the graphs, and what is on the picture.

#include "tests/ui/planning/SamplePlan.h"
#include "ui/planning/PlanPainter.h"
#include "ui/planning/SkyPlot.h"
#include "ui/planning/TimePlot.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <optional>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::SampleDrawing;
using testing::SamplePlan;

constexpr QSize kSize(480, 400);

/// Tells pixels of @p colour, up to the half tones at the edge of a line.
bool IsLike(QRgb pixel, const QColor& colour)
{
    return std::abs(qRed(pixel) - colour.red()) + std::abs(qGreen(pixel) - colour.green()) +
               std::abs(qBlue(pixel) - colour.blue()) <
           60;
}

int CountOf(const QImage& image, const QRectF& area, const QColor& colour)
{
    int count = 0;
    const QRect pixels = area.toAlignedRect().intersected(image.rect());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            count += IsLike(image.pixel(x, y), colour) ? 1 : 0;
        }
    }
    return count;
}

QImage PictureOf(const PlanDrawing& drawing, const PlotStyle& style)
{
    QImage image(kSize, QImage::Format_RGB32);
    image.fill(style.ground);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintGraph(painter, drawing, style, QRectF(QPointF(), kSize));
    return image;
}

TEST(SkyPlot, PutsDirectionsWhereTheyAre)
{
    const ObservationPlan plan = SamplePlan(31, 9, 4);
    const double slant = std::sqrt(0.5);
    // Azimuth and elevation in degrees; how far to the right and down, of the radius.
    const std::tuple<const char*, double, double, double, double> rows[] = {
        {"north is up", 0.0, 0.0, 0.0, -1.0},
        {"east is right", 90.0, 0.0, 1.0, 0.0},
        {"south is down", 180.0, 0.0, 0.0, 1.0},
        {"west is left", 270.0, 0.0, -1.0, 0.0},
        {"the zenith is the middle", 123.0, 90.0, 0.0, 0.0},
        {"60 degrees are a third from the middle", 90.0, 60.0, 1.0 / 3.0, 0.0},
        {"north-east at half height", 45.0, 45.0, slant / 2.0, -slant / 2.0},
        {"below the horizon is the rim", 90.0, -20.0, 1.0, 0.0},
    };
    PlanDrawing drawing = SampleDrawing(plan, PlanGraph::SkyPlot);
    const PlotStyle style = PlotStyle::OnPaper();
    for (const bool isFromBelow : {false, true}) {
        drawing.isFromBelow = isFromBelow;
        const SkyPlot plot(drawing, style, QRectF(QPointF(), kSize));
        for (const auto& [fault, azimuthDeg, elevationDeg, right, down] : rows) {
            SCOPED_TRACE(fault);
            const QPointF from =
                plot.PointOf({RadiansOf(azimuthDeg), RadiansOf(elevationDeg)}) - plot.Centre();
            const double side = isFromBelow ? -1.0 : 1.0;
            EXPECT_NEAR(from.x(), side * right * plot.Radius(), 1e-6); // pixels
            EXPECT_NEAR(from.y(), down * plot.Radius(), 1e-6);
            EXPECT_NEAR(plot.ElevationDegAt(plot.Centre() + from), std::max(elevationDeg, 0.0),
                        1e-6);
        }
    }
}

TEST(SkyPlot, FillsTheCurtainFromTheRim)
{
    const ObservationPlan plan = SamplePlan(0, 9, 4); // no satellite hides it
    const PlotStyle style = PlotStyle::OnPaper();
    const PlanDrawing drawing = SampleDrawing(plan, PlanGraph::SkyPlot);
    QImage image(kSize, QImage::Format_RGB32);
    image.fill(style.ground);
    const SkyPlot plot(drawing, style, QRectF(QPointF(), kSize));
    QPainter painter(&image);
    plot.Draw(painter);
    const auto isFilled = [&](double azimuthDeg, double elevationDeg) {
        const QPointF at = plot.PointOf({RadiansOf(azimuthDeg), RadiansOf(elevationDeg)});
        return image.pixel(at.toPoint()) != style.ground.rgb();
    };
    EXPECT_TRUE(isFilled(190.0, 5.0));
    EXPECT_TRUE(isFilled(190.0, 33.5));
    EXPECT_FALSE(isFilled(190.0, 37.0)) << "above the skyline";
    EXPECT_FALSE(isFilled(147.0, 5.0)) << "before it";
    EXPECT_FALSE(isFilled(213.0, 5.0)) << "behind it";
}

TEST(TimePlot, PutsTimesAndValuesWhereTheyAre)
{
    const ObservationPlan plan = SamplePlan(31, 9, 4);
    const PlotStyle style = PlotStyle::OnPaper();
    // Each with half of its scale.
    for (const auto& [graph, half] : {std::pair(PlanGraph::Count, 6.0),
                                      {PlanGraph::Pdop, 6.0},
                                      {PlanGraph::Azimuth, 180.0},
                                      {PlanGraph::Elevation, 45.0}}) {
        const PlanDrawing drawing = SampleDrawing(plan, graph);
        const TimePlot plot(drawing, style, QRectF(QPointF(), kSize));
        const QRectF& box = plot.Axes().Plot();
        EXPECT_TRUE(QRectF(QPointF(), kSize).contains(box));
        const QPointF middle = plot.PointOf(120.0, half);
        EXPECT_NEAR(middle.x(), box.center().x(), 1e-6);
        EXPECT_NEAR(middle.y(), box.center().y(), 1e-6);
        EXPECT_NEAR(plot.PointOf(0.0, 0.0).x(), box.left(), 1e-6);
        EXPECT_NEAR(plot.PointOf(0.0, 0.0).y(), box.bottom(), 1e-6);
        EXPECT_NEAR(plot.PointOf(240.0, 1000.0).y(), box.top(), 1e-6) << "clipped at the edge";
        EXPECT_NEAR(plot.Axes().MinutesAt(plot.Axes().XOf(77.0)), 77.0, 1e-6);
        EXPECT_EQ(plot.Axes().MinutesAt(-1000.0), 0.0);
        EXPECT_EQ(plot.Axes().MinutesAt(1000.0), 240.0);
    }
}

TEST(TimePlot, LeavesAGapWhereThereIsNoSolution)
{
    const ObservationPlan plan = SamplePlan(9, 9, 2); // 12 samples, every ten minutes
    const PlotStyle style = PlotStyle::OnPaper();
    const PlanDrawing drawing = SampleDrawing(plan, PlanGraph::Tdop);
    const QImage image = PictureOf(drawing, style);
    const TimeAxes axes(drawing, style, GraphArea(drawing, style, QRectF(QPointF(), kSize)));
    int gaps = 0;
    int lines = 0;
    for (int k = 1; k < plan.Division(); ++k) {
        const bool isLine =
            SampleAt(plan, PlanGraph::Tdop, k - 1) && SampleAt(plan, PlanGraph::Tdop, k);
        // Between two samples, away from the dots that stand on them.
        const QRectF between(QPointF(axes.XOf(k * 10.0 + 4.5), axes.Plot().top() + 20.0),
                             QPointF(axes.XOf(k * 10.0 + 5.5), axes.Plot().bottom() - 2.0));
        (isLine ? lines : gaps) += 1;
        EXPECT_EQ(CountOf(image, between, style.accent) > 0, isLine) << k;
    }
    EXPECT_GT(gaps, 0);
    EXPECT_GT(lines, 0);
}

TEST(TimePlot, KeepsWhatIsBeyondTheScaleInside)
{
    const ObservationPlan plan = SamplePlan(9, 9, 2);
    double highest = 0.0;
    for (int k = 0; k < plan.Division(); ++k) {
        highest = std::max(highest, SampleAt(plan, PlanGraph::Gdop, k).value_or(0.0));
    }
    ASSERT_GT(highest, 12.0);
    const PlotStyle style = PlotStyle::OnPaper();
    const PlanDrawing drawing = SampleDrawing(plan, PlanGraph::Gdop);
    const QImage image = PictureOf(drawing, style);
    const TimeAxes axes(drawing, style, GraphArea(drawing, style, QRectF(QPointF(), kSize)));
    const QRectF& plot = axes.Plot();
    // The dot at the end of the curve stands out by its own radius.
    EXPECT_EQ(
        CountOf(image, QRectF(plot.left(), 0.0, plot.width(), plot.top() - 6.0), style.accent), 0);
    EXPECT_GT(
        CountOf(image, QRectF(plot.left(), plot.top(), plot.width() + 6.0, 9.0), style.accent), 20)
        << "the arrow";
}

TEST(TimePlot, BreaksAnAzimuthThatPassesNorth)
{
    const ObservationPlan plan = SamplePlan(31, 0, 24);
    const PlotStyle style = PlotStyle::OnPaper();
    const PlanDrawing drawing = SampleDrawing(plan, PlanGraph::Azimuth);
    const TimePlot plot(drawing, style, QRectF(QPointF(), kSize));
    int passes = 0;
    for (const TrackRun& run : TrackRuns(plan)) {
        std::optional<QPointF> last;
        for (const QLineF& line : plot.LinesOf(run)) {
            EXPECT_LE(std::abs(line.dy()), plot.Axes().Plot().height() / 2.0);
            if (last && *last != line.p1()) {
                ++passes; // at one time, from one edge to the other
                EXPECT_NEAR(last->x(), line.x1(), 1e-6);
                EXPECT_NEAR(std::abs(last->y() - line.y1()), plot.Axes().Plot().height(), 1e-6);
            }
            last = line.p2();
        }
    }
    EXPECT_GT(passes, 0);
}

TEST(LabelPlacer, WritesNoLabelOnAnother)
{
    const PlotStyle style = PlotStyle::OnPaper();
    QImage image(kSize, QImage::Format_RGB32);
    QPainter painter(&image);
    LabelPlacer labels(style, QRectF(QPointF(), kSize));
    int written = 0;
    for (int k = 0; k < 20; ++k) {
        written += labels.Draw(painter, {240.0, 200.0}, QStringLiteral("32"), 12.0) ? 1 : 0;
    }
    EXPECT_EQ(written, 8);
    EXPECT_TRUE(labels.Draw(painter, {1.0, 1.0}, QStringLiteral("32"), 3.0)) << "in the corner";
    LabelPlacer none(style, QRectF(0.0, 0.0, 5.0, 5.0));
    EXPECT_FALSE(none.Draw(painter, {2.0, 2.0}, QStringLiteral("32"), 3.0)) << "out of bounds";
}

} // namespace
} // namespace fieldcore
