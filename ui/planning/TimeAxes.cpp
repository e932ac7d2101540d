#include "ui/planning/TimeAxes.h"

#include "core/planning/PlanSeries.h"
#include "ui/controls/UiText.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>

namespace fieldcore {

namespace {

constexpr std::array kStrides{1, 2, 3, 4, 6, 12};

/// The first stride that leaves @p room between labels that lie @p step apart.
int StrideFor(qreal step, qreal room)
{
    const auto* const found = std::find_if(kStrides.begin(), kStrides.end(),
                                           [&](int stride) { return stride * step >= room; });
    return found == kStrides.end() ? kStrides.back() : *found;
}

/// Hours alone, and with minutes where there is room for sure.
QString HourText(const PlanDrawing& drawing, int hour)
{
    constexpr double kShortMin = 6.0 * 60.0;
    return QString::number(hour) +
           (drawing.LengthMin() <= kShortMin ? QStringLiteral(":00") : QString());
}

/// On the middle of a pixel, where a line of one pixel is sharp.
qreal Crisp(qreal at)
{
    return std::floor(at) + 0.5;
}

} // namespace

TimeAxes::TimeAxes(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area)
    : m_drawing(drawing), m_style(style), m_area(area),
      m_highest(GraphDivision(*drawing.plan, drawing.graph) * kGraphDivisions)
{
    const QFontMetricsF metrics(style.small);
    m_line = std::ceil(metrics.height());
    const auto width = [&](const QString& text) { return metrics.horizontalAdvance(text); };
    // Half of the first hour stands beside the name of its zone.
    const qreal left = std::ceil(
        std::max(width(QStringLiteral("360°")) + 8.0,
                 width(UiText(text::kPlotUtc)) + 4.0 + width(HourText(drawing, 10)) / 2.0));
    // The name of the curve, or the PRN of a track, stands behind its end.
    const qreal right = std::ceil(width(IsTracks(drawing.graph) ? QStringLiteral("000")
                                                                : GraphText(drawing.graph))) +
                        10.0;
    m_plot = area.adjusted(left, 2.0 * m_line + 8.0, -right, -2.0 * m_line - 4.0);
    m_plot =
        QRectF(Crisp(m_plot.left()), Crisp(m_plot.top()), std::max(std::floor(m_plot.width()), 1.0),
               std::max(std::floor(m_plot.height()), 1.0));
}

qreal TimeAxes::XOf(double minutes) const
{
    const double length = m_drawing.LengthMin();
    return m_plot.left() + (length > 0.0 ? minutes / length : 0.0) * m_plot.width();
}

qreal TimeAxes::YOf(double value) const
{
    return m_plot.bottom() - value / m_highest * m_plot.height();
}

double TimeAxes::MinutesAt(qreal x) const
{
    const double length = m_drawing.LengthMin();
    return std::clamp((x - m_plot.left()) / m_plot.width() * length, 0.0, length);
}

void TimeAxes::DrawValues(QPainter& painter) const
{
    const qreal step = m_plot.height() / kGraphDivisions;
    const double division = GraphDivision(*m_drawing.plan, m_drawing.graph);
    const bool isWhole = division == std::floor(division);
    const int stride = std::max(StrideFor(step, m_line * 1.2), isWhole ? 1 : 2);
    const bool isAngle = IsTracks(m_drawing.graph);
    painter.setFont(m_style.small);
    for (int k = 0; k <= kGraphDivisions; ++k) {
        const double value = k * division;
        const qreal y = Crisp(YOf(value));
        painter.setPen(PlotPen(m_style.grid, 1.0));
        painter.drawLine(QPointF(m_plot.left(), y), QPointF(m_plot.right(), y));
        if (k % stride != 0) {
            continue;
        }
        const QString label =
            isAngle ? QString::number(value) + QChar(0x00B0) : QString::number(value);
        painter.setPen(m_style.second);
        painter.drawText(
            QRectF(m_area.left(), y - m_line / 2.0, m_plot.left() - m_area.left() - 6.0, m_line),
            Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, label);
    }
}

void TimeAxes::DrawHours(QPainter& painter) const
{
    const QFontMetricsF metrics(m_style.small);
    const int first = m_drawing.plan->Computed().startHour;
    const int hours = static_cast<int>(std::lround(m_drawing.LengthMin() / 60.0));
    const qreal room = metrics.horizontalAdvance(HourText(m_drawing, 10)) + 10.0;
    const int stride = StrideFor(m_plot.width() / std::max(hours, 1), room);
    const qreal jst = m_plot.bottom() + 4.0 + m_line / 2.0;
    const qreal utc = jst + m_line;
    painter.setFont(m_style.small);
    for (int k = 0; k <= hours; ++k) {
        const qreal x = Crisp(XOf(k * 60.0));
        painter.setPen(PlotPen(m_style.grid, 1.0));
        painter.drawLine(QPointF(x, m_plot.top()), QPointF(x, m_plot.bottom()));
        if (k % stride == 0) {
            painter.setPen(m_style.text);
            DrawCentred(painter, {x, jst}, HourText(m_drawing, first + k));
            painter.setPen(m_style.second);
            DrawCentred(painter, {x, utc}, HourText(m_drawing, (first + k + 15) % 24));
        }
    }
    const auto zone = [&](qreal y, int id) {
        painter.drawText(QRectF(m_area.left(), y - m_line / 2.0, m_area.width(), m_line),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, UiText(id));
    };
    painter.setPen(m_style.text);
    zone(jst, text::kPlotJst);
    painter.setPen(m_style.second);
    zone(utc, text::kPlotUtc);
}

void TimeAxes::DrawWindows(QPainter& painter) const
{
    const PlanPeriod& period = m_drawing.plan->Computed();
    const QFontMetricsF metrics(m_style.small);
    const qreal top = m_plot.top() - m_line - 4.0;
    const std::vector<PlanWindow> windows = FindWindows(*m_drawing.plan, m_drawing.limits);
    std::vector<QRectF> taken;
    for (const PlanWindow& window : windows) {
        const QRectF band(QPointF(XOf(window.first * m_drawing.IntervalMin()), top),
                          QPointF(XOf(window.last * m_drawing.IntervalMin()), top + m_line));
        painter.fillRect(band, m_style.Faded(m_style.good, 0.22));
        painter.fillRect(QRectF(band.left(), band.bottom() - 3.0, band.width(), 3.0), m_style.good);
        taken.push_back(band);
    }
    painter.setFont(m_style.small);
    painter.setPen(m_style.text);
    for (std::size_t k = 0; k < windows.size(); ++k) {
        const QString whole = UiText(text::kPlotWindow)
                                  .arg(QString::fromStdString(period.ClockText(windows[k].first)),
                                       QString::fromStdString(period.ClockText(windows[k].last)));
        // The times of a short window may stand out of it, but not on another window or its times;
        // where they do not fit, whole hours go without their minutes.
        for (const QString& times : {whole, QString(whole).remove(QStringLiteral(":00"))}) {
            const qreal width = metrics.horizontalAdvance(times) + 4.0;
            QRectF place(0.0, 0.0, width, m_line - 3.0);
            place.moveCenter({taken[k].center().x(), top + (m_line - 3.0) / 2.0});
            place.moveLeft(std::clamp(place.left(), m_plot.left(),
                                      std::max(m_plot.left(), m_area.right() - width)));
            bool isFree = true;
            for (std::size_t other = 0; other < taken.size(); ++other) {
                isFree = isFree && (other == k || !taken[other].intersects(place));
            }
            if (isFree) {
                painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, times);
                taken[k] |= place;
                break;
            }
        }
    }
    DrawHeading(painter, !windows.empty());
}

void TimeAxes::DrawHeading(QPainter& painter, bool hasWindows) const
{
    const QRectF heading(m_area.left(), m_area.top(), m_plot.right() - m_area.left(), m_line);
    painter.setFont(m_style.font);
    painter.setPen(m_style.text);
    painter.drawText(heading, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                     GraphText(m_drawing.graph));
    painter.setFont(m_style.small); // what the band beneath is
    const QString windows = UiText(hasWindows ? text::kPlotWindows : text::kPlotNoWindows);
    painter.drawText(heading, Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, windows);
    if (hasWindows) {
        const qreal width = QFontMetricsF(m_style.small).horizontalAdvance(windows);
        painter.fillRect(
            QRectF(heading.right() - width - 26.0, heading.center().y() - 1.0, 20.0, 3.0),
            m_style.good);
    }
}

void TimeAxes::Draw(QPainter& painter) const
{
    DrawValues(painter);
    DrawHours(painter);
    DrawWindows(painter);
    painter.setPen(PlotPen(m_style.second, 1.0));
    painter.drawLine(m_plot.bottomLeft(), m_plot.bottomRight());
    painter.drawLine(m_plot.bottomLeft(), m_plot.topLeft());
}

} // namespace fieldcore
