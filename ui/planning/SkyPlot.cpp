#include "ui/planning/SkyPlot.h"

#include "core/planning/Degrees.h"
#include "core/planning/PlanSeries.h"
#include "ui/controls/UiText.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fieldcore {

namespace {

constexpr double kZenithDeg = 90.0;
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
    : m_drawing(drawing), m_style(style), m_area(area)
{
    const QFontMetricsF metrics(style.font);
    const qreal beside = metrics.horizontalAdvance(UiText(text::kPlotNorthEast)) + 8.0;
    const qreal above = metrics.height() + 4.0;
    m_radius = std::max(
        std::floor(std::min(area.width() / 2.0 - beside, area.height() / 2.0 - above)), 1.0);
    m_centre = {std::round(area.center().x()), std::round(area.center().y())};
}

QPointF SkyPlot::At(double azimuthDeg, double elevationDeg) const
{
    const double distance =
        (kZenithDeg - std::clamp(elevationDeg, 0.0, kZenithDeg)) / kZenithDeg * m_radius;
    const double azimuth = RadiansOf(azimuthDeg);
    const double east = (m_drawing.isFromBelow ? -1.0 : 1.0) * std::sin(azimuth);
    return m_centre + QPointF(east * distance, -std::cos(azimuth) * distance);
}

QPointF SkyPlot::PointOf(const SkyDirection& direction) const
{
    return At(DegreesOf(direction.azimuthRad), DegreesOf(direction.elevationRad));
}

double SkyPlot::ElevationDegAt(const QPointF& point) const
{
    const QPointF from = point - m_centre;
    return kZenithDeg - std::hypot(from.x(), from.y()) / m_radius * kZenithDeg;
}

void SkyPlot::DrawCurtain(QPainter& painter) const
{
    const ObstructionCurtain& curtain = m_drawing.plan->Calc().GetCurtain();
    if (!HasObstruction(curtain)) {
        return;
    }
    QPainterPath skyline; // each entry holds for a whole degree of azimuth
    for (std::size_t k = 0; k < curtain.size(); ++k) {
        const auto azimuth = static_cast<double>(k);
        const QPointF from = At(azimuth, curtain[k]);
        k == 0 ? skyline.moveTo(from) : skyline.lineTo(from);
        skyline.lineTo(At(azimuth + 1.0, curtain[k]));
    }
    skyline.closeSubpath();
    QPainterPath hidden;
    hidden.addEllipse(m_centre, m_radius, m_radius);
    hidden.addPath(skyline); // what lies within both is filled by neither
    hidden.setFillRule(Qt::OddEvenFill);
    painter.fillPath(hidden, m_style.Faded(m_style.second, 0.35));
}

void SkyPlot::DrawRings(QPainter& painter) const
{
    constexpr int kRingStepDeg = 30;
    painter.setBrush(Qt::NoBrush);
    for (int direction = 0; direction < 4; ++direction) {
        painter.setPen(PlotPen(m_style.grid, 1.0));
        painter.drawLine(At(direction * 45.0, 0.0), At(direction * 45.0 + 180.0, 0.0));
    }
    painter.setFont(m_style.small);
    for (int elevation = 0; elevation < 90; elevation += kRingStepDeg) {
        const qreal radius = m_radius * (kZenithDeg - elevation) / kZenithDeg;
        painter.setPen(
            PlotPen(elevation == 0 ? m_style.second : m_style.grid, elevation == 0 ? 1.5 : 1.0));
        painter.drawEllipse(m_centre, radius, radius);
    }
    if (m_drawing.maskDeg > 0) {
        const qreal radius = m_radius * (kZenithDeg - m_drawing.maskDeg) / kZenithDeg;
        painter.setPen(PlotPen(m_style.attention, 1.5, Qt::CustomDashLine));
        painter.drawEllipse(m_centre, radius, radius);
    }
    constexpr int kDirections = 8;
    const QFontMetricsF metrics(m_style.font);
    painter.setFont(m_style.font);
    for (int k = 0; k < kDirections; ++k) {
        const QString name = UiText(text::kPlotNorth + k);
        const QPointF rim = At(k * 45.0, 0.0);
        const QPointF out = (rim - m_centre) / m_radius;
        painter.setPen(k % 2 == 0 ? m_style.text : m_style.second);
        DrawCentred(painter,
                    rim + QPointF(out.x() * (metrics.horizontalAdvance(name) / 2.0 + 4.0),
                                  out.y() * (metrics.height() / 2.0 + 2.0)),
                    name);
    }
}

void SkyPlot::DrawTracks(QPainter& painter, const std::vector<TrackRun>& runs) const
{
    const double interval = m_drawing.IntervalMin();
    for (const TrackRun& run : runs) {
        for (int epoch = run.first; epoch < run.last; ++epoch) {
            const auto step = m_drawing.plan->TrackAt(run.prnIndex, epoch);
            const double bright = Brightness((epoch + 0.5) * interval - m_drawing.minutes);
            QPen pen = PlotPen(m_style.Faded(m_style.Curve(run.prnIndex), bright), kTrackWidth);
            pen.setCapStyle(Qt::RoundCap);
            painter.setPen(pen);
            painter.drawLine(PointOf(step->from), PointOf(step->to));
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_style.Curve(run.prnIndex));
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
        const QColor& colour = m_style.Curve(satellite.prn - 1);
        painter.setPen(PlotPen(satellite.isVisible ? m_style.text : m_style.second, 1.5));
        painter.setBrush(satellite.isVisible ? colour : m_style.ground);
        painter.drawEllipse(point, kSatellite, kSatellite);
        painter.setBrush(Qt::NoBrush);
        labels.Reserve(QRectF(point.x() - kSatellite, point.y() - kSatellite, 2.0 * kSatellite,
                              2.0 * kSatellite));
    }
    for (const SkySatellite& satellite : sky) {
        labels.Draw(painter, PointOf(satellite.direction), QString::number(satellite.prn),
                    kSatellite + 1.0);
    }
}

void SkyPlot::DrawScale(QPainter& painter, LabelPlacer& labels) const
{
    const auto draw = [&](double azimuthDeg, int elevationDeg) {
        labels.Draw(painter, At(azimuthDeg, elevationDeg),
                    ToQt(FormatText(text::kPlotDegrees, static_cast<double>(elevationDeg))), 0.0);
    };
    draw(22.5, 30); // between the names of the directions
    draw(22.5, 60);
    if (m_drawing.maskDeg > 0) {
        draw(kMaskLabelAzimuthDeg, m_drawing.maskDeg);
    }
}

void SkyPlot::Draw(QPainter& painter) const
{
    DrawCurtain(painter);
    DrawRings(painter);
    const std::vector<TrackRun> runs = TrackRuns(*m_drawing.plan);
    DrawTracks(painter, runs);
    // In the order of weight: who comes late may find no room.
    LabelPlacer labels(m_style, QRectF(m_centre.x() - m_radius, m_centre.y() - m_radius,
                                       2.0 * m_radius, 2.0 * m_radius));
    DrawSatellites(painter, labels);
    DrawScale(painter, labels);
    for (const TrackRun& run : runs) {
        labels.Draw(painter, PointOf(*m_drawing.plan->DirectionAt(run.prnIndex, run.last)),
                    QString::number(run.prnIndex + 1), 2.0);
    }
    if (runs.empty()) {
        painter.setFont(m_style.font);
        painter.setPen(m_style.text);
        painter.drawText(
            QRectF(m_centre.x() - m_radius, m_centre.y(), 2.0 * m_radius, m_radius / 2.0),
            Qt::AlignCenter | Qt::TextWordWrap, UiText(text::kPlotNoTracks));
    }
    if (m_drawing.isFromBelow) {
        painter.setFont(m_style.small);
        painter.setPen(m_style.second);
        painter.drawText(m_area, Qt::AlignLeft | Qt::AlignBottom, UiText(text::kPlotFromBelow));
    }
}

} // namespace fieldcore
