#include "ui/planning/TimeAxes.h"

#include "core/planning/PlanSeries.h"
#include "ui/controls/UiText.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

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

/// On the middle of a pixel, where a line of one pixel is sharp.
qreal Crisp(qreal at)
{
    return std::floor(at) + 0.5;
}

} // namespace

TimeAxes::TimeAxes(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area)
    : m_drawing(drawing), m_style(style), m_area(area),
      m_highest(GraphDivision(drawing.graph) * kGraphDivisions)
{
    const QFontMetricsF metrics(style.small);
    m_line = std::ceil(metrics.height());
    const qreal left = std::ceil(std::max(metrics.horizontalAdvance(QStringLiteral("360°")),
                                          metrics.horizontalAdvance(UiText(text::kPlotJst)))) +
                       8.0;
    const qreal right = std::ceil(metrics.horizontalAdvance(QStringLiteral("000"))) + 8.0;
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
    const int stride = StrideFor(step, m_line * 1.2);
    const bool isAngle = IsTracks(m_drawing.graph);
    painter.setFont(m_style.small);
    for (int k = 0; k <= kGraphDivisions; ++k) {
        const double value = k * GraphDivision(m_drawing.graph);
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
    const bool isShort = hours <= 6;
    const qreal room =
        metrics.horizontalAdvance(isShort ? QStringLiteral("00:00") : QStringLiteral("00")) + 10.0;
    const int stride = StrideFor(m_plot.width() / std::max(hours, 1), room);
    const auto label = [&](int hour) {
        return QString::number(hour) + (isShort ? QStringLiteral(":00") : QString());
    };
    const qreal jst = m_plot.bottom() + 4.0 + m_line / 2.0;
    const qreal utc = jst + m_line;
    painter.setFont(m_style.small);
    for (int k = 0; k <= hours; ++k) {
        const qreal x = Crisp(XOf(k * 60.0));
        painter.setPen(PlotPen(m_style.grid, 1.0));
        painter.drawLine(QPointF(x, m_plot.top()), QPointF(x, m_plot.bottom()));
        if (k % stride == 0) {
            painter.setPen(m_style.text);
            DrawCentred(painter, {x, jst}, label(first + k));
            painter.setPen(m_style.second);
            DrawCentred(painter, {x, utc}, label((first + k + 15) % 24));
        }
    }
    const auto zone = [&](qreal y, int id) {
        // The label of the first hour is centred under the axis and needs half of its width.
        const qreal width = m_plot.left() - m_area.left() - (isShort ? 18.0 : 10.0);
        painter.drawText(QRectF(m_area.left(), y - m_line / 2.0, width, m_line),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, UiText(id));
    };
    painter.setPen(m_style.text);
    zone(jst, text::kPlotJst);
    painter.setPen(m_style.second);
    zone(utc, text::kPlotUtc);
}

void TimeAxes::DrawWindows(QPainter& painter) const
{
    const std::vector<PlanWindow> windows = FindWindows(*m_drawing.plan, m_drawing.limits);
    const double interval = m_drawing.IntervalMin();
    const QFontMetricsF metrics(m_style.small);
    const qreal top = m_plot.top() - m_line - 4.0;
    qreal written = m_area.left(); // right end of the last text
    painter.setFont(m_style.small);
    for (const PlanWindow& window : windows) {
        const QRectF band(QPointF(XOf(window.first * interval), top),
                          QPointF(XOf(window.last * interval), top + m_line));
        painter.fillRect(band, m_style.Faded(m_style.good, 0.22));
        painter.fillRect(QRectF(band.left(), band.bottom() - 3.0, band.width(), 3.0), m_style.good);
        const PlanPeriod& period = m_drawing.plan->Computed();
        const std::string from = period.ClockText(window.first);
        const std::string to = period.ClockText(window.last);
        const QString times =
            ToQt(FormatText(text::kPlotWindow, std::wstring(from.begin(), from.end()).c_str(),
                            std::wstring(to.begin(), to.end()).c_str()));
        const qreal width = metrics.horizontalAdvance(times) + 6.0;
        QRectF place(0.0, 0.0, width, m_line - 3.0);
        place.moveCenter({band.center().x(), band.top() + (m_line - 3.0) / 2.0});
        place.moveLeft(std::clamp(place.left(), m_area.left(),
                                  std::max(m_area.left(), m_area.right() - width)));
        // A short window's times may stand beside it, but not on those of another.
        if (place.left() >= written) {
            painter.setPen(m_style.text);
            painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, times);
            written = place.right();
        }
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
    painter.setFont(m_style.font);
    painter.setPen(m_style.text);
    painter.drawText(QRectF(m_area.left(), m_area.top(), m_area.width(), m_line),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                     GraphText(m_drawing.graph));
}

} // namespace fieldcore
