#include "ui/planning/SkyDisc.h"

#include "core/platform/Degrees.h"
#include "ui/controls/UiText.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fieldcore {

namespace {

constexpr double kZenithDeg = 90.0;

} // namespace

SkyDisc::SkyDisc(const PlotStyle& style, const QRectF& area, bool isFromBelow)
    : m_style(style), m_isFromBelow(isFromBelow)
{
    const QFontMetricsF metrics(style.font);
    const qreal beside = metrics.horizontalAdvance(UiText(text::kPlotNorthEast)) + 8.0;
    const qreal above = metrics.height() + 4.0;
    m_radius = std::max(
        std::floor(std::min(area.width() / 2.0 - beside, area.height() / 2.0 - above)), 1.0);
    m_centre = {std::round(area.center().x()), std::round(area.center().y())};
}

QRectF SkyDisc::Bounds() const
{
    return {m_centre.x() - m_radius, m_centre.y() - m_radius, 2.0 * m_radius, 2.0 * m_radius};
}

QPointF SkyDisc::At(double azimuthDeg, double elevationDeg) const
{
    const double distance =
        (kZenithDeg - std::clamp(elevationDeg, 0.0, kZenithDeg)) / kZenithDeg * m_radius;
    const double azimuth = RadiansOf(azimuthDeg);
    const double east = (m_isFromBelow ? -1.0 : 1.0) * std::sin(azimuth);
    return m_centre + QPointF(east * distance, -std::cos(azimuth) * distance);
}

QPointF SkyDisc::PointOf(const SkyDirection& direction) const
{
    return At(DegreesOf(direction.azimuthRad), DegreesOf(direction.elevationRad));
}

double SkyDisc::ElevationDegAt(const QPointF& point) const
{
    const QPointF from = point - m_centre;
    return kZenithDeg - std::hypot(from.x(), from.y()) / m_radius * kZenithDeg;
}

void SkyDisc::DrawCurtain(QPainter& painter, const ObstructionCurtain& curtain) const
{
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

void SkyDisc::DrawRings(QPainter& painter, int maskDeg, LabelPlacer* labels) const
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
    if (maskDeg > 0) {
        const qreal radius = m_radius * (kZenithDeg - maskDeg) / kZenithDeg;
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
        const QRectF taken =
            DrawCentred(painter,
                        rim + QPointF(out.x() * (metrics.horizontalAdvance(name) / 2.0 + 4.0),
                                      out.y() * (metrics.height() / 2.0 + 2.0)),
                        name);
        if (labels != nullptr) {
            labels->Reserve(taken);
        }
    }
}

void SkyDisc::DrawScale(QPainter& painter, LabelPlacer& labels, int maskDeg) const
{
    const auto draw = [&](double azimuthDeg, int elevationDeg) {
        labels.Draw(painter, At(azimuthDeg, elevationDeg),
                    ToQt(FormatText(text::kPlotDegrees, static_cast<double>(elevationDeg))), 0.0);
    };
    draw(22.5, 30); // between the names of the directions
    draw(22.5, 60);
    if (maskDeg > 0) {
        draw(kMaskLabelAzimuthDeg, maskDeg);
    }
}

} // namespace fieldcore
