#include "ui/planning/SkyPlot.h"

#include "core/planning/PlanSeries.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr qreal kTrackWidth = 2.0;
constexpr qreal kDot = 3.0;
constexpr qreal kSatellite = 6.0;

/// How bright a track is @p minutes away from the slider's time: whole there, faint after two
/// hours, but never gone.
double Brightness(double minutes)
{
    constexpr double kFaint = 0.35;
    constexpr double kReachMin = 120.0;
    return std::max(kFaint, 1.0 - std::abs(minutes) / kReachMin * (1.0 - kFaint));
}

} // namespace

SkyPlot::SkyPlot(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area)
    : m_drawing(drawing), m_style(style), m_area(area), m_disc(style, area, drawing.isFromBelow)
{}

QColor SkyPlot::ColourOf(SatelliteId satellite) const
{
    return TrackColour(m_style, m_drawing.plan->IsGpsAlone(), satellite);
}

void SkyPlot::DrawTracks(QPainter& painter, const std::vector<TrackRun>& runs) const
{
    const double interval = m_drawing.IntervalMin();
    for (const TrackRun& run : runs) {
        const QColor colour =
            ColourOf(m_drawing.plan->Satellites()[static_cast<std::size_t>(run.prnIndex)]);
        for (int epoch = run.first; epoch < run.last; ++epoch) {
            const auto step = m_drawing.plan->TrackAt(run.prnIndex, epoch);
            const double bright = Brightness((epoch + 0.5) * interval - m_drawing.minutes);
            QPen pen = PlotPen(m_style.Faded(colour, bright), kTrackWidth);
            pen.setCapStyle(Qt::SquareCap); // a round one takes much longer to draw
            painter.setPen(pen);
            painter.drawLine(PointOf(step->from), PointOf(step->to));
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(PointOf(*m_drawing.plan->DirectionAt(run.prnIndex, run.first)), kDot,
                            kDot);
        painter.setBrush(Qt::NoBrush);
    }
}

void SkyPlot::DrawSatellites(QPainter& painter, LabelPlacer& labels) const
{
    const std::vector<SkySatellite> sky = m_drawing.Sky();
    for (const SkySatellite& satellite : sky) {
        const QPointF point = PointOf(satellite.direction);
        DrawSystemSign(painter, satellite.satellite.system, point, kSatellite,
                       satellite.isVisible ? m_style.text : m_style.second,
                       satellite.isVisible ? ColourOf(satellite.satellite) : m_style.ground);
        labels.Reserve(QRectF(point.x() - kSatellite, point.y() - kSatellite, 2.0 * kSatellite,
                              2.0 * kSatellite));
    }
    for (const SkySatellite& satellite : sky) {
        labels.Draw(painter, PointOf(satellite.direction),
                    SatelliteLabel(m_drawing, satellite.satellite), kSatellite + 1.0);
    }
}

void SkyPlot::Draw(QPainter& painter) const
{
    m_disc.DrawCurtain(painter, m_drawing.plan->Calc().GetCurtain());
    LabelPlacer labels(m_style, m_disc.Bounds());
    m_disc.DrawRings(painter, m_drawing.maskDeg, &labels);
    const std::vector<TrackRun> runs = TrackRuns(*m_drawing.plan);
    DrawTracks(painter, runs);
    // In the order of weight: who comes late may find no room.
    DrawSatellites(painter, labels);
    m_disc.DrawScale(painter, labels, m_drawing.maskDeg);
    for (const TrackRun& run : runs) {
        labels.Draw(
            painter, PointOf(*m_drawing.plan->DirectionAt(run.prnIndex, run.last)),
            SatelliteLabel(m_drawing,
                           m_drawing.plan->Satellites()[static_cast<std::size_t>(run.prnIndex)]),
            2.0);
    }
    if (runs.empty()) {
        painter.setFont(m_style.font);
        painter.setPen(m_style.text);
        painter.drawText(
            QRectF(Centre().x() - Radius(), Centre().y(), 2.0 * Radius(), Radius() / 2.0),
            Qt::AlignCenter | Qt::TextWordWrap, UiText(text::kPlotNoTracks));
    }
    if (m_drawing.isFromBelow) {
        painter.setFont(m_style.small);
        painter.setPen(m_style.second);
        painter.drawText(m_area, Qt::AlignLeft | Qt::AlignBottom, UiText(text::kPlotFromBelow));
    }
}

} // namespace fieldcore
