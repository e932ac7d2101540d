#include "ui/planning/TimePlot.h"

#include "core/platform/Degrees.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr qreal kCurveWidth = 2.0;

/// A way from one azimuth to the next that is longer than this leads through north.
constexpr double kHalfCircleDeg = 180.0;

} // namespace

TimePlot::TimePlot(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area)
    : m_drawing(drawing), m_style(style), m_axes(drawing, style, area)
{}

QPointF TimePlot::PointOf(double minutes, double value) const
{
    return {m_axes.XOf(minutes), m_axes.YOf(std::clamp(value, 0.0, m_axes.Highest()))};
}

double TimePlot::ValueOf(const SkyDirection& direction) const
{
    return DegreesOf(m_drawing.graph == PlanGraph::Azimuth ? direction.azimuthRad
                                                           : direction.elevationRad);
}

QPointF TimePlot::PointOfDirection(double minutes, const SkyDirection& direction) const
{
    return PointOf(minutes, ValueOf(direction));
}

std::optional<QPointF> TimePlot::PointOfSatellite(int prnIndex, int epoch) const
{
    const std::optional<SkyDirection> direction = m_drawing.plan->DirectionAt(prnIndex, epoch);
    return direction ? std::optional(PointOf(epoch * IntervalMin(), ValueOf(*direction)))
                     : std::nullopt;
}

void TimePlot::Shade(QPainter& painter, double from, double to) const
{
    const QRectF& plot = m_axes.Plot();
    const qreal top = m_axes.YOf(std::min(to, m_axes.Highest()));
    const qreal bottom = m_axes.YOf(std::max(from, 0.0));
    if (top < bottom) {
        painter.fillRect(QRectF(plot.left(), top, plot.width(), bottom - top), m_style.shade);
    }
}

/// The line of a limit with its name.
void TimePlot::DrawLimit(QPainter& painter, double value, const QString& text, bool isUpper) const
{
    if (value <= 0.0 || value >= m_axes.Highest()) {
        return;
    }
    const QRectF& plot = m_axes.Plot();
    const qreal y = std::floor(m_axes.YOf(value)) + 0.5;
    painter.setPen(PlotPen(m_style.attention, 1.0, Qt::CustomDashLine));
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    painter.setFont(m_style.small);
    painter.setPen(m_style.text); // it stands in the shade
    const qreal height = QFontMetricsF(m_style.small).height();
    painter.drawText(QRectF(plot.left() + 6.0, isUpper ? y - height : y, plot.width(), height),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
}

/// An arrow at the upper edge: the curve goes on up to @p highest.
void TimePlot::DrawBeyond(QPainter& painter, double fromMin, double toMin, double highest) const
{
    const QPointF tip((m_axes.XOf(fromMin) + m_axes.XOf(toMin)) / 2.0, m_axes.Plot().top() - 1.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_style.accent);
    painter.drawPolygon(QPolygonF{tip, tip + QPointF(-6.0, 9.0), tip + QPointF(6.0, 9.0)});
    painter.setBrush(Qt::NoBrush);
    painter.setFont(m_style.small);
    painter.setPen(m_style.text);
    const int decimals = m_drawing.graph == PlanGraph::Count ? 0 : 1;
    const QString value = QString::number(highest, 'f', decimals);
    const QFontMetricsF metrics(m_style.small);
    const qreal aside = 9.0 + metrics.horizontalAdvance(value) / 2.0;
    const bool isAtEnd = tip.x() + 2.0 * aside > m_axes.Plot().right();
    DrawCentred(painter, tip + QPointF(isAtEnd ? -aside : aside, metrics.height() / 2.0), value);
}

/// The name of the curve at its end.
void TimePlot::DrawHead(QPainter& painter, const QPointF& end) const
{
    painter.setBrush(m_style.accent);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(end, 4.0, 4.0);
    painter.setBrush(Qt::NoBrush);
    painter.setFont(m_style.small);
    painter.setPen(m_style.accent);
    const QFontMetricsF metrics(m_style.small);
    const QString name = GraphText(m_drawing.graph);
    painter.drawText(QRectF(end.x() + 7.0, end.y() - metrics.height() / 2.0,
                            metrics.horizontalAdvance(name), metrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, name);
}

void TimePlot::DrawCount(QPainter& painter) const
{
    Shade(painter, 0.0, m_drawing.limits.minSatellites);
    DrawLimit(painter, m_drawing.limits.minSatellites,
              ToQt(FormatText(text::kPlotLowerLimit, m_drawing.limits.minSatellites)), false);
    const int division = m_drawing.plan->Division();
    QPolygonF steps;
    for (int k = 0; k < division; ++k) {
        const double count = m_drawing.plan->CountAt(k);
        steps << PointOf(k * IntervalMin(), count) << PointOf((k + 1) * IntervalMin(), count);
    }
    painter.setPen(PlotPen(m_style.accent, kCurveWidth + 0.5));
    painter.drawPolyline(steps);
    for (int k = 0; k < division; ++k) {
        const int first = k;
        double highest = 0.0;
        for (; k < division && m_drawing.plan->CountAt(k) > m_axes.Highest(); ++k) {
            highest = std::max(highest, m_drawing.plan->CountAt(k));
        }
        if (k > first) {
            DrawBeyond(painter, first * IntervalMin(), k * IntervalMin(), highest);
        }
    }
    DrawHead(painter, steps.back());
}

/// A part without a solution.
void TimePlot::DrawGap(QPainter& painter, double fromMin, double toMin) const
{
    const QRectF& plot = m_axes.Plot();
    const QRectF gap(QPointF(m_axes.XOf(fromMin), plot.top()),
                     QPointF(m_axes.XOf(toMin), plot.bottom()));
    painter.fillRect(gap, m_style.Faded(m_style.attention, 0.16));
    painter.setFont(m_style.small);
    painter.setPen(m_style.text);
    const QString name = UiText(text::kPlotTooFewSatellites);
    if (QFontMetricsF(m_style.small).horizontalAdvance(name) < gap.width()) {
        DrawCentred(painter, gap.center(), name);
        return;
    }
    painter.save(); // in a narrow gap from the bottom up
    painter.translate(gap.center());
    painter.rotate(-90.0);
    DrawCentred(painter, {}, name);
    painter.restore();
}

void TimePlot::DrawDilution(QPainter& painter) const
{
    const PlanGraph graph = m_drawing.graph;
    const double limit = m_drawing.limits.maxPdop;
    if (graph == PlanGraph::Pdop) {
        Shade(painter, limit, m_axes.Highest());
    }
    const int division = m_drawing.plan->Division();
    const auto minutesOf = [&](int k) { return EpochOfSample(graph, k) * IntervalMin(); };
    const auto sampleAt = [&](int k) { return SampleAt(*m_drawing.plan, graph, k); };
    for (int k = 0; k < division; ++k) {
        const int first = k;
        while (k < division && !sampleAt(k)) {
            ++k;
        }
        if (k > first) { // up to the neighbours that have a solution, or the edge of the plot
            DrawGap(painter, first == 0 ? 0.0 : minutesOf(first - 1),
                    k == division ? m_drawing.LengthMin() : minutesOf(k));
        }
    }
    if (graph == PlanGraph::Pdop) {
        DrawLimit(painter, limit, ToQt(FormatText(text::kPlotUpperLimit, limit)), true);
    }
    std::optional<QPointF> end;
    for (int k = 0; k < division; ++k) {
        QPolygonF line;
        for (; k < division && sampleAt(k); ++k) {
            line << PointOf(minutesOf(k), *sampleAt(k));
        }
        if (line.isEmpty()) {
            continue;
        }
        painter.setPen(PlotPen(m_style.accent, kCurveWidth));
        painter.drawPolyline(line);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_style.accent);
        painter.drawEllipse(line.front(), 3.0, 3.0); // seen even if it stands alone
        painter.setBrush(Qt::NoBrush);
        end = line.back();
    }
    for (int k = 0; k < division; ++k) {
        const int first = k;
        double highest = 0.0;
        for (; k < division && sampleAt(k).value_or(0.0) > m_axes.Highest(); ++k) {
            highest = std::max(highest, *sampleAt(k));
        }
        if (k > first) {
            DrawBeyond(painter, minutesOf(first), minutesOf(k - 1), highest);
        }
    }
    if (end) {
        DrawHead(painter, *end);
    }
}

/// Line by line: as one path, which may cross itself, they would take four times as long to draw.
QVector<QLineF> TimePlot::LinesOf(const TrackRun& run) const
{
    const double all = m_axes.Highest();
    QVector<QLineF> lines;
    QPointF last = *PointOfSatellite(run.prnIndex, run.first);
    for (int epoch = run.first + 1; epoch <= run.last; ++epoch) {
        const double from = ValueOf(*m_drawing.plan->DirectionAt(run.prnIndex, epoch - 1));
        const double to = ValueOf(*m_drawing.plan->DirectionAt(run.prnIndex, epoch));
        if (m_drawing.graph == PlanGraph::Azimuth && std::abs(to - from) > kHalfCircleDeg) {
            // Out at one edge, in at the other at the same time.
            const bool isUp = to < from;
            const double rest = isUp ? all - from : from;
            const double way = all - std::abs(to - from);
            const double crossing = (epoch - 1 + (way > 0.0 ? rest / way : 0.0)) * IntervalMin();
            lines += QLineF(last, PointOf(crossing, isUp ? all : 0.0));
            last = PointOf(crossing, isUp ? 0.0 : all);
        }
        const QPointF next = *PointOfSatellite(run.prnIndex, epoch);
        lines += QLineF(last, next);
        last = next;
    }
    return lines;
}

void TimePlot::DrawTracks(QPainter& painter) const
{
    const QRectF& plot = m_axes.Plot();
    const qreal margin = QFontMetricsF(m_style.small).horizontalAdvance(QStringLiteral("000"));
    LabelPlacer labels(m_style, plot.adjusted(0.0, -8.0, margin + 8.0, 0.0));
    const std::vector<TrackRun> runs = TrackRuns(*m_drawing.plan);
    if (runs.empty()) {
        painter.setFont(m_style.font);
        painter.setPen(m_style.text);
        painter.drawText(plot, Qt::AlignCenter | Qt::TextWordWrap, UiText(text::kPlotNoTracks));
        return;
    }
    painter.setPen(PlotPen(m_style.accent, 1.0, Qt::CustomDashLine));
    const qreal now = std::floor(m_axes.XOf(m_drawing.minutes)) + 0.5;
    painter.drawLine(QPointF(now, plot.top()), QPointF(now, plot.bottom()));
    const auto satelliteOf = [&](const TrackRun& run) {
        return m_drawing.plan->Satellites()[static_cast<std::size_t>(run.prnIndex)];
    };
    const auto colourOf = [&](const TrackRun& run) {
        return TrackColour(m_style, m_drawing.plan->IsGpsAlone(), satelliteOf(run));
    };
    for (const TrackRun& run : runs) {
        painter.setPen(PlotPen(colourOf(run), kCurveWidth));
        painter.drawLines(LinesOf(run));
    }
    for (const TrackRun& run : runs) {
        const QPointF head = *PointOfSatellite(run.prnIndex, run.last);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colourOf(run));
        painter.drawEllipse(*PointOfSatellite(run.prnIndex, run.first), 3.0, 3.0);
        painter.setBrush(Qt::NoBrush);
        labels.Draw(painter, head, SatelliteLabel(m_drawing, satelliteOf(run)), 3.0);
    }
}

void TimePlot::Draw(QPainter& painter) const
{
    m_axes.Draw(painter);
    if (IsTracks(m_drawing.graph)) {
        DrawTracks(painter);
    } else if (m_drawing.graph == PlanGraph::Count) {
        DrawCount(painter);
    } else {
        DrawDilution(painter);
    }
}

} // namespace fieldcore
