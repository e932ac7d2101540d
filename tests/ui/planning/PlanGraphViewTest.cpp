#include "ui/planning/PlanGraphView.h"

#include "core/planning/PlanSeries.h"
#include "core/resources/StringTable.h"
#include "tests/ui/planning/SamplePlan.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanPainter.h"
#include "ui/planning/SkyPlot.h"
#include "ui/planning/TimePlot.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::SampleDrawing;
using testing::SamplePlan;

class PlanGraphViewTest : public ::testing::Test
{
protected:
    void Show(PlanGraph graph)
    {
        view.resize(480, 400);
        view.SetDrawing(SampleDrawing(plan, graph));
        view.show();
        style = PlotStyle::OnScreen(Qt::white, view.font());
        area = GraphArea(view.Drawing(), style, view.rect());
    }
    [[nodiscard]] SkyPlot Sky() const { return {view.Drawing(), style, area}; }
    void Key(Qt::Key key) { QTest::keyClick(&view, key); }
    [[nodiscard]] QString Line(int at) const { return view.Reading().value(at); }

    ObservationPlan plan = SamplePlan(31, 9, 4); // 8 samples, every 30 minutes
    PlanGraphView view;
    PlotStyle style;
    QRectF area;
};

TEST_F(PlanGraphViewTest, TellsTheSampleUnderThePointer)
{
    for (const PlanGraph graph : {PlanGraph::Count, PlanGraph::Pdop, PlanGraph::Tdop}) {
        Show(graph);
        const TimeAxes axes(view.Drawing(), style, area);
        for (const int k : {0, 3, 7}) {
            const double minutes = EpochOfSample(graph, k) * 30.0;
            QTest::mouseMove(&view, QPoint(qRound(axes.XOf(minutes)) + 2, 150));
            const QString clock =
                QString::fromStdString(plan.Computed().ClockText(EpochOfSample(graph, k)));
            const double value = graph == PlanGraph::Count ? plan.CountAt(k) : plan.DopAt(graph, k);
            EXPECT_TRUE(Line(0).startsWith(clock)) << qPrintable(Line(0));
            EXPECT_TRUE(Line(1).endsWith(
                QLatin1Char(' ') + QString::number(value, 'f', graph == PlanGraph::Count ? 0 : 2)))
                << qPrintable(Line(1));
        }
    }
}

TEST_F(PlanGraphViewTest, TellsThatThereIsNoSolution)
{
    plan = SamplePlan(3, 9, 4);
    Show(PlanGraph::Gdop);
    Key(Qt::Key_Right);
    EXPECT_EQ(Line(1), UiText(text::kPlotTooFewSatellites));
}

TEST_F(PlanGraphViewTest, LeadsTheCursorByKeys)
{
    Show(PlanGraph::Count);
    const QSignalSpy told(&view, &PlanGraphView::readingChanged);
    EXPECT_TRUE(view.Reading().isEmpty());
    Key(Qt::Key_Right);
    EXPECT_TRUE(Line(0).startsWith(QStringLiteral("09:00"))) << "the first key shows the first";
    Key(Qt::Key_Right);
    EXPECT_TRUE(Line(0).startsWith(QStringLiteral("09:30")));
    Key(Qt::Key_End);
    Key(Qt::Key_Right);
    EXPECT_TRUE(Line(0).startsWith(QStringLiteral("12:30"))) << "the last step begins there";
    EXPECT_EQ(told.count(), 3) << "at the end nothing changes";
    EXPECT_TRUE(view.accessibleDescription().contains(Line(1)));
    view.SetGraph(PlanGraph::Pdop);
    EXPECT_TRUE(view.Reading().isEmpty());
}

TEST_F(PlanGraphViewTest, ForgetsACursorBeyondAShorterPlan)
{
    Show(PlanGraph::Count);
    plan.Period() = {plan.Period().date, 9, 5};
    plan.Compute();
    view.Refresh(15);
    view.SetTime(300.0);
    Key(Qt::Key_End);
    EXPECT_TRUE(Line(0).startsWith(QStringLiteral("13:30")));
    plan.Period().hours = 4;
    plan.Compute();
    view.Refresh(15);
    EXPECT_TRUE(view.Reading().isEmpty());
    EXPECT_EQ(view.Drawing().minutes, 240.0);
}

TEST_F(PlanGraphViewTest, TellsTheSatelliteThatIsTapped)
{
    Show(PlanGraph::SkyPlot);
    const std::vector<SkySatellite> sky = view.Drawing().Sky();
    ASSERT_FALSE(sky.empty());
    for (const SkySatellite& satellite : sky) {
        QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier,
                          Sky().PointOf(satellite.direction).toPoint());
        EXPECT_EQ(view.Reading().mid(1), ReadingOfSatellite(view.Drawing(), satellite));
    }
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
    EXPECT_EQ(view.Reading().size(), 1) << "the time alone";
    Key(Qt::Key_Up);
    EXPECT_EQ(Line(1).section(QLatin1Char(' '), 0, 1), PrnText(sky.front().satellite.number));
    Key(Qt::Key_Down);
    EXPECT_EQ(Line(1).section(QLatin1Char(' '), 0, 1), PrnText(sky.back().satellite.number))
        << "round";
}

TEST_F(PlanGraphViewTest, MovesTheSatellitesInTime)
{
    Show(PlanGraph::Elevation);
    const QSignalSpy changed(&view, &PlanGraphView::timeChanged);
    const TimeAxes axes(view.Drawing(), style, area);
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(qRound(axes.XOf(120.0)), 200));
    EXPECT_NEAR(view.Drawing().minutes, 120.0, 1.0); // a pixel is less than a minute
    Key(Qt::Key_Right);
    EXPECT_NEAR(view.Drawing().minutes, 150.0, 1.0);
    Key(Qt::Key_End);
    Key(Qt::Key_End);
    EXPECT_EQ(view.Drawing().minutes, 240.0);
    EXPECT_EQ(changed.count(), 3);
    view.SetTime(std::nan(""));
    EXPECT_EQ(view.Drawing().minutes, 0.0);
}

TEST_F(PlanGraphViewTest, DragsTheMaskLive)
{
    plan.Calc().SetCurtain({});
    for (int index = 0; index < kMaxPrn; ++index) {
        plan.Calc().SetUse(index, index == 5 ? 1 : 0); // nothing else to hit
    }
    plan.Compute();
    Show(PlanGraph::SkyPlot);
    const auto at = [&](double elevationDeg) {
        return Sky().PointOf({RadiansOf(70.0), RadiansOf(elevationDeg)}).toPoint();
    };
    QSignalSpy changed(&view, &PlanGraphView::maskChanged);
    QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, at(18.0)); // beside it, within 22 px
    QTest::mouseMove(&view, at(25.0));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_NEAR(changed.back()[0].toInt(), 25, 1); // half a pixel is a third of a degree
    QTest::mouseMove(&view, at(-30.0));
    EXPECT_EQ(changed.back()[0].toInt(), 0) << "outside the rim";
    EXPECT_EQ(view.Drawing().maskDeg, 0);
    QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, at(-30.0));
    QTest::mouseMove(&view, at(30.0));
    EXPECT_EQ(view.Drawing().maskDeg, 0) << "let go";
    Key(Qt::Key_Plus);
    EXPECT_EQ(changed.back()[0].toInt(), 1);
    Key(Qt::Key_Minus);
    Key(Qt::Key_Minus);
    EXPECT_EQ(view.Drawing().maskDeg, 0) << "held at 0";
    const auto before = changed.count();
    QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, at(60.0)); // far from it
    QTest::mouseMove(&view, at(50.0));
    EXPECT_EQ(changed.count(), before);
}

TEST_F(PlanGraphViewTest, LeavesOtherKeysToItsDialog)
{
    Show(PlanGraph::Count);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Plus, Qt::Key_Up}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
}

} // namespace
} // namespace fieldcore
