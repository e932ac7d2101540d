#include "ui/planning/PlanPainter.h"

#include "ui/planning/SkyPlot.h"
#include "ui/planning/TimePlot.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

qreal LineHeight(const PlotStyle& style)
{
    return std::ceil(QFontMetricsF(style.small).height());
}

/// The parts of the caption in as few lines as @p width allows; a part is never torn. None where
/// they would take much of the picture.
/// @param height  of the picture
QStringList CaptionLines(const PlanDrawing& drawing, const PlotStyle& style, qreal width,
                         qreal height)
{
    constexpr double kMost = 0.25;
    const QString between = QStringLiteral("  ");
    const QFontMetricsF metrics(style.small);
    QStringList lines;
    for (const QString& part : PlanCaption(drawing)) {
        if (!lines.isEmpty() && metrics.horizontalAdvance(lines.back() + between + part) <= width) {
            lines.back() += between + part;
        } else {
            // Only the name of a site can be longer than a line.
            lines += metrics.elidedText(part, Qt::ElideRight, width);
        }
    }
    const double share = static_cast<double>(lines.size()) * LineHeight(style) / height;
    return share > kMost ? QStringList() : lines;
}

} // namespace

QRectF GraphArea(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area)
{
    constexpr qreal kMargin = 8.0;
    const QRectF inner = area.adjusted(kMargin, kMargin / 2.0, -kMargin, -kMargin / 2.0);
    if (!drawing.HasPlan()) {
        return inner;
    }
    const auto lines = CaptionLines(drawing, style, inner.width(), area.height()).size();
    return inner.adjusted(0.0, 0.0, 0.0, -static_cast<qreal>(lines) * LineHeight(style) - 4.0);
}

void PaintBareGraph(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style,
                    const QRectF& area)
{
    if (drawing.graph == PlanGraph::SkyPlot) {
        SkyPlot(drawing, style, area).Draw(painter);
    } else {
        TimePlot(drawing, style, area).Draw(painter);
    }
}

void PaintGraph(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style,
                const QRectF& area)
{
    const QString obstacle = drawing.Obstacle();
    if (!obstacle.isEmpty()) {
        painter.setFont(style.font);
        painter.setPen(style.text);
        painter.drawText(area.adjusted(16.0, 16.0, -16.0, -16.0),
                         Qt::AlignCenter | Qt::TextWordWrap, obstacle);
        return;
    }
    const QRectF graph = GraphArea(drawing, style, area);
    PaintBareGraph(painter, drawing, style, graph);
    painter.setFont(style.small);
    painter.setPen(style.second);
    QRectF line(graph.left(), graph.bottom() + 4.0, graph.width(), LineHeight(style));
    for (const QString& words : CaptionLines(drawing, style, graph.width(), area.height())) {
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, words);
        line.translate(0.0, line.height());
    }
}

std::optional<QPointF> PointOfSatellite(const PlanDrawing& drawing, const PlotStyle& style,
                                        const QRectF& area, const SkySatellite& satellite)
{
    if (drawing.graph == PlanGraph::SkyPlot) {
        return SkyPlot(drawing, style, area).PointOf(satellite.direction);
    }
    if (!satellite.isVisible) {
        return std::nullopt;
    }
    return TimePlot(drawing, style, area).PointOfDirection(drawing.minutes, satellite.direction);
}

void PaintReading(QPainter& painter, const PlotStyle& style, const QRectF& area,
                  const std::optional<QPointF>& point, const QStringList& reading)
{
    constexpr qreal kMark = 9.0;
    painter.setBrush(Qt::NoBrush);
    if (point) {
        painter.setPen(PlotPen(style.text, 2.0));
        painter.drawEllipse(*point, kMark, kMark);
    }
    const QFontMetricsF metrics(style.small);
    const QString text = reading.join(QLatin1Char('\n'));
    QRectF box = metrics.boundingRect(QRectF(0.0, 0.0, area.width(), area.height()),
                                      Qt::AlignLeft | Qt::AlignTop, text);
    box.adjust(0.0, 0.0, 16.0, 10.0);
    box.moveTopLeft(area.topLeft());
    if (!point || point->x() < area.center().x()) {
        box.moveRight(area.right()); // never on what it speaks of
    }
    painter.setPen(PlotPen(style.second, 1.0));
    painter.setBrush(style.ground);
    painter.drawRoundedRect(box, 4.0, 4.0);
    painter.setBrush(Qt::NoBrush);
    painter.setFont(style.small);
    painter.setPen(style.text);
    painter.drawText(box.adjusted(8.0, 4.0, -8.0, -4.0), Qt::AlignLeft | Qt::TextDontClip, text);
}

} // namespace fieldcore
