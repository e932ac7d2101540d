#include "ui/equipment/StatusHistoryView.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <ratio>
#include <vector>

namespace fieldcore {

namespace {

constexpr double kMinutes = 60.0;
constexpr int kStepMin = 15;    // between vertical lines
constexpr double kGapMin = 0.5; // without a sample the line breaks
constexpr int kDivisions = 4;

} // namespace

struct StatusHistoryView::Band
{
    QRectF area; ///< of the curve
    QString name;
    QColor colour;
    double highest = 0.0;
    bool isSteps = false;
    std::optional<double> (*read)(const StatusHistory::Sample&);
    Clock::Duration now{};

    [[nodiscard]] double MinutesBefore(const StatusHistory::Sample& sample) const
    {
        return std::chrono::duration<double, std::ratio<60>>(now - sample.at).count();
    }
    [[nodiscard]] QPointF PointOf(double minutesBefore, double value) const
    {
        return {area.right() - minutesBefore / kMinutes * area.width(),
                area.bottom() - std::clamp(value / highest, 0.0, 1.0) * area.height()};
    }
};

StatusHistoryView::StatusHistoryView(QWidget* parent) : CGraphicsBase(parent)
{
    setAccessibleName(UiText(text::kStatusHistoryTitle));
    Describe();
}

void StatusHistoryView::Show(const StatusHistory& history, Clock::Duration now)
{
    const bool isSame = m_history.Samples() == history.Samples();
    // Half a pixel: an hour is some hundred pixels wide.
    const double moved =
        std::chrono::duration<double, std::ratio<60>>(now - m_now).count() * width() / kMinutes;
    if (isSame && (history.Samples().empty() || std::abs(moved) < 0.5)) {
        return;
    }
    if (!isSame) {
        m_history = history;
        Describe();
    }
    m_now = now;
    Invalidate();
}

void StatusHistoryView::Describe()
{
    std::vector<int> satellites;
    std::vector<double> pdops;
    for (const StatusHistory::Sample& sample : m_history.Samples()) {
        if (sample.satellites && sample.pdop) {
            satellites.push_back(*sample.satellites);
            pdops.push_back(*sample.pdop);
        }
    }
    if (pdops.empty()) {
        setAccessibleDescription(UiText(text::kStatusHistoryEmpty));
        return;
    }
    const auto& samples = m_history.Samples();
    const auto span = samples.back().at - samples.front().at;
    const auto [fewest, most] = std::ranges::minmax(satellites);
    const auto [lowest, highest] = std::ranges::minmax(pdops);
    setAccessibleDescription(ToQt(FormatText(text::kStatusHistorySummary,
                                             static_cast<int>(span / std::chrono::minutes(1)),
                                             fewest, most, lowest, highest)));
}

void StatusHistoryView::Draw(QPainter& painter, const QSizeF& size)
{
    const Theme& theme = Theme::Current();
    const QFont small = SmallFont(font());
    painter.setFont(small);
    const QFontMetricsF metrics(small);
    const qreal line = std::ceil(metrics.height()) + 2.0; // ink may stand out of it
    const qreal left = std::ceil(metrics.horizontalAdvance(QStringLiteral("00"))) + 12.0;
    const qreal width = size.width() - left - 12.0;
    const qreal height = (size.height() - 3.75 * line - 8.0) / 2.0;
    if (m_history.Samples().empty()) {
        painter.setPen(theme.second);
        painter.drawText(QRectF(QPointF(0, 0), size), Qt::AlignCenter,
                         UiText(text::kStatusHistoryEmpty));
        return;
    }
    double mostSatellites = 0.0;
    double mostPdop = 0.0;
    for (const StatusHistory::Sample& sample : m_history.Samples()) {
        mostSatellites =
            std::max(mostSatellites, static_cast<double>(sample.satellites.value_or(0)));
        mostPdop = std::max(mostPdop, sample.pdop.value_or(0.0));
    }
    const Band bands[] = {
        {{left, line, width, height},
         UiText(text::kStatusUsed),
         theme.Curve(0),
         std::max(12.0, std::ceil(mostSatellites / kDivisions) * kDivisions),
         true,
         [](const StatusHistory::Sample& s) {
             return s.satellites ? std::optional<double>(*s.satellites) : std::nullopt;
         },
         m_now},
        {{left, 2.75 * line + height, width, height},
         UiText(text::kGraphPdop),
         theme.Curve(3),
         mostPdop > 4.0 ? 8.0 : 4.0, // what is worse stands at the edge
         false,
         [](const StatusHistory::Sample& s) { return s.pdop; },
         m_now},
    };
    for (const Band& band : bands) {
        DrawBand(painter, band);
        DrawCurve(painter, band);
    }
    painter.setPen(theme.second);
    for (int minute = 0; minute <= static_cast<int>(kMinutes); minute += kStepMin) {
        const QString label =
            minute == 0 ? UiText(text::kStatusNow) : QStringLiteral("-%1").arg(minute);
        const qreal labelWidth = metrics.horizontalAdvance(label);
        const qreal x = std::clamp(bands[1].PointOf(minute, 0.0).x() - labelWidth / 2.0, 0.0,
                                   size.width() - labelWidth);
        painter.drawText(QPointF(x, bands[1].area.bottom() + 4.0 + metrics.ascent()), label);
    }
}

void StatusHistoryView::DrawBand(QPainter& painter, const Band& band) const
{
    const Theme& theme = Theme::Current();
    const QFontMetricsF metrics(painter.font());
    QColor grid = theme.second;
    grid.setAlphaF(0.25F);
    for (int k = 0; k <= kDivisions; ++k) {
        const double value = band.highest * k / kDivisions;
        const qreal y = std::floor(band.PointOf(0.0, value).y()) + 0.5;
        painter.setPen(QPen(grid, 1.0));
        painter.drawLine(QPointF(band.area.left(), y), QPointF(band.area.right(), y));
        if (k % 2 == 0) {
            painter.setPen(theme.second);
            painter.drawText(
                QRectF(0.0, y - metrics.height() / 2.0, band.area.left() - 6.0, metrics.height()),
                Qt::AlignRight | Qt::AlignVCenter, QString::number(value));
        }
    }
    for (int minute = 0; minute <= static_cast<int>(kMinutes); minute += kStepMin) {
        const qreal x = std::floor(band.PointOf(minute, 0.0).x()) + 0.5;
        painter.setPen(QPen(grid, 1.0));
        painter.drawLine(QPointF(x, band.area.top()), QPointF(x, band.area.bottom()));
    }
    constexpr qreal kSwatch = 12.0; // its colour alone would be too weak for letters
    const QRectF head(band.area.left(), band.area.top() - metrics.height(), band.area.width(),
                      metrics.height());
    painter.fillRect(QRectF(head.left(), head.center().y() - 1.5, kSwatch, 3.0), band.colour);
    painter.setPen(theme.text);
    painter.drawText(head.adjusted(kSwatch + 4.0, 0.0, 0.0, 0.0), Qt::AlignLeft | Qt::AlignVCenter,
                     band.name);
}

void StatusHistoryView::DrawCurve(QPainter& painter, const Band& band) const
{
    QPainterPath path;
    std::optional<QPointF> last;
    double lastBefore = 0.0;
    double newest = 0.0;
    for (const StatusHistory::Sample& sample : m_history.Samples()) {
        const double before = band.MinutesBefore(sample);
        const std::optional<double> value = band.read(sample);
        if (before > kMinutes || !value) {
            last.reset();
            continue;
        }
        const QPointF point = band.PointOf(std::max(before, 0.0), *value);
        if (!last || lastBefore - before > kGapMin) {
            path.moveTo(point);
            path.lineTo(point + QPointF(0.5, 0.0)); // seen even if it stands alone
        } else {
            if (band.isSteps) {
                path.lineTo(QPointF(point.x(), last->y()));
            }
            path.lineTo(point);
        }
        last = point;
        lastBefore = before;
        newest = *value;
    }
    painter.setPen(QPen(band.colour, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    if (last) {
        painter.setPen(Theme::Current().text);
        const QString value = QString::number(newest, 'f', band.isSteps ? 0 : 1);
        painter.drawText(QRectF(band.area.left(), band.area.top() - 24.0, band.area.width(), 24.0),
                         Qt::AlignRight | Qt::AlignBottom, value);
    }
}

} // namespace fieldcore
