#include "ui/planning/SignalBars.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlotStyle.h"

#include <QFontMetrics>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace fieldcore {

namespace {

constexpr int kGap = 8; // between groups, and at the rim
constexpr int kStep = 20;

/// How much of its colour the bar of a signal has, from the first to the fourth.
constexpr std::array<double, 4> kWeights{1.0, 0.7, 0.5, 0.35};

PlotStyle StyleOf(const QWidget& widget)
{
    return PlotStyle::OnScreen(Theme::Current().ground, widget.font());
}

} // namespace

SignalBars::SignalBars(QWidget* parent) : CGraphicsBase(parent)
{
    setAccessibleName(UiText(text::kSkyBars));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    Show({}, false);
}

void SignalBars::Show(const std::vector<LiveSatellite>& satellites, bool isStale)
{
    m_satellites = satellites;
    // One without any signal would only take room.
    const auto hasSignal = [](const LiveSatellite& satellite) {
        return std::any_of(satellite.signals.begin(), satellite.signals.end(),
                           [](const std::optional<double>& value) { return value.has_value(); });
    };
    std::erase_if(m_satellites,
                  [&](const LiveSatellite& satellite) { return !hasSignal(satellite); });
    double best = 0.0;
    for (const LiveSatellite& satellite : m_satellites) {
        for (const std::optional<double>& value : satellite.signals) {
            best = std::max(best, value.value_or(0.0));
        }
    }
    setAccessibleDescription(
        ToQt(FormatText(text::kSkyBarsSummary, static_cast<int>(m_satellites.size()), best)));
    m_isStale = isStale;
    updateGeometry();
    Invalidate();
}

void SignalBars::Choose(const std::optional<LiveSatellite>& satellite)
{
    m_chosen = satellite;
    Invalidate();
}

int SignalBars::ScaleWidth() const
{
    const QFontMetrics metrics(StyleOf(*this).small);
    return metrics.horizontalAdvance(QString::number(kTop, 'f', 0)) + 2 * kGap;
}

int SignalBars::GroupWidth() const
{
    const QFontMetrics metrics(StyleOf(*this).small);
    return metrics.horizontalAdvance(QStringLiteral("S129")) + kGap / 2;
}

QSize SignalBars::minimumSizeHint() const
{
    const int em = QFontMetrics(font()).height();
    // A group may be narrower than its name: they stand in two rows then.
    const int groups = GroupWidth() * 2 * static_cast<int>(m_satellites.size()) / 3;
    return {ScaleWidth() + groups + kGap, em * 6};
}

QSize SignalBars::sizeHint() const
{
    const int em = QFontMetrics(font()).height();
    return {minimumSizeHint().width(), em * 9};
}

void SignalBars::Draw(QPainter& painter, const QSizeF& size)
{
    const PlotStyle style = StyleOf(*this);
    const QFontMetricsF metrics(style.small);
    const qreal across = size.width() - ScaleWidth() - kGap;
    const auto groups = static_cast<qreal>(std::max<std::size_t>(m_satellites.size(), 1));
    // Groups that could be wider than a hand would not read as bars.
    const qreal group = std::min(across / groups, 2.0 * GroupWidth());
    // Names that would touch stand in two rows.
    const int rows = group < GroupWidth() + kGap ? 2 : 1;
    const QRectF area(ScaleWidth(), metrics.height(), across,
                      size.height() - (1.0 + rows) * metrics.height() - 4.0);
    const auto heightOf = [&](double signal) {
        return area.bottom() - std::clamp(signal / kTop, 0.0, 1.0) * area.height();
    };
    painter.setFont(style.small);
    for (int value = 0; value <= static_cast<int>(kTop); value += kStep) {
        const qreal y = std::round(heightOf(value)) + 0.5;
        painter.setPen(PlotPen(value == 0 ? style.second : style.grid, 1.0));
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        painter.setPen(style.second);
        painter.drawText(
            QRectF(0.0, y - metrics.height() / 2.0, area.left() - kGap / 2.0, metrics.height()),
            Qt::AlignRight | Qt::AlignVCenter, QString::number(value));
    }
    painter.drawText(QRectF(area.left(), 0.0, area.width(), metrics.height()),
                     Qt::AlignLeft | Qt::AlignTop, UiText(text::kSkySignalUnit));
    if (m_satellites.empty()) {
        painter.setFont(style.font);
        painter.setPen(style.text);
        painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, UiText(text::kSkyNoSignals));
        return;
    }
    qreal left = area.left();
    int row = 0;
    for (const LiveSatellite& satellite : m_satellites) {
        const QColor colour = m_isStale ? Theme::Current().stale
                                        : ConstellationColour(style, satellite.constellation);
        const auto count = static_cast<qreal>(satellite.signals.size());
        const auto last = std::find_if(satellite.signals.rbegin(), satellite.signals.rend(),
                                       [](const auto& value) { return value.has_value(); });
        const auto shown = static_cast<qreal>(satellite.signals.rend() - last);
        const qreal width = std::floor((group - kGap) / std::clamp(shown, 2.0, count));
        qreal x = std::round(left + (group - width * shown) / 2.0);
        for (std::size_t i = 0; i < static_cast<std::size_t>(shown); ++i, x += width) {
            if (const std::optional<double>& value = satellite.signals[i]) {
                const qreal top = std::round(heightOf(*value));
                const QRectF bar(x, top, width - 1.0, std::round(area.bottom()) - top);
                painter.fillRect(bar, style.Faded(colour, kWeights[i]));
            }
        }
        const bool isChosen = m_chosen && m_chosen->IsSame(satellite);
        const QRectF label(left + (group - GroupWidth()) / 2.0,
                           area.bottom() + 2.0 + row * metrics.height(), GroupWidth(),
                           metrics.height());
        if (isChosen) {
            painter.fillRect(label, style.accent);
        }
        painter.setPen(isChosen ? style.ground : m_isStale ? Theme::Current().stale : style.text);
        painter.drawText(label, Qt::AlignCenter, SatelliteText(satellite));
        left += group;
        row = (row + 1) % rows;
    }
}

} // namespace fieldcore
