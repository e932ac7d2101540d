#include "ui/planning/LiveSkyView.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLineF>
#include <QMouseEvent>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr qreal kSign = 6.0;
constexpr qreal kCross = 10.0; // its arms show from behind a satellite
constexpr qreal kRing = 10.0;  // around the chosen one
constexpr qreal kReach = 32.0; // of a finger in a glove
constexpr qreal kMargin = 4.0;

} // namespace

LiveSkyView::LiveSkyView(QWidget* parent) : CGraphicsBase(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(UiText(text::kSkyPlotName));
    Show({});
}

QSize LiveSkyView::sizeHint() const
{
    const int em = QFontMetrics(font()).height();
    return {em * 18, em * 14};
}

QSize LiveSkyView::minimumSizeHint() const
{
    const int em = QFontMetrics(font()).height();
    return {em * 10, em * 10};
}

PlotStyle LiveSkyView::Style() const
{
    return PlotStyle::OnScreen(Theme::Current().ground, font());
}

void LiveSkyView::Show(const Picture& picture)
{
    m_picture = picture;
    if (Chosen() < 0) {
        m_chosen.reset();
    }
    const auto count = [&](auto is) {
        return static_cast<int>(std::ranges::count_if(m_picture.satellites, is));
    };
    setAccessibleDescription(m_picture.notice.isEmpty()
                                 ? ToQt(FormatText(text::kSkyCounts, count(&LiveSatellite::IsSolid),
                                                   count(&LiveSatellite::isTracked),
                                                   static_cast<int>(m_picture.satellites.size())))
                                 : m_picture.notice);
    Invalidate();
}

void LiveSkyView::SetFromBelow(bool isFromBelow)
{
    m_isFromBelow = isFromBelow;
    Invalidate();
}

int LiveSkyView::Chosen() const
{
    if (!m_chosen) {
        return -1;
    }
    const auto found =
        std::find_if(m_picture.satellites.begin(), m_picture.satellites.end(),
                     [this](const LiveSatellite& other) { return other.IsSame(*m_chosen); });
    return found == m_picture.satellites.end()
               ? -1
               : static_cast<int>(found - m_picture.satellites.begin());
}

void LiveSkyView::Choose(int row)
{
    m_chosen.reset();
    if (row >= 0 && row < static_cast<int>(m_picture.satellites.size())) {
        m_chosen = m_picture.satellites[static_cast<std::size_t>(row)];
    }
    update();
}

void LiveSkyView::Pick(int row)
{
    Choose(row);
    Q_EMIT Picked(row);
}

QPointF LiveSkyView::PointOf(int row) const
{
    const PlotStyle style = Style();
    const SkyDisc disc(style, QRectF(rect()).adjusted(kMargin, kMargin, -kMargin, -kMargin),
                       m_isFromBelow);
    return disc.PointOf(m_picture.satellites[static_cast<std::size_t>(row)].direction);
}

void LiveSkyView::mousePressEvent(QMouseEvent* event)
{
    int nearest = -1;
    qreal least = kReach;
    for (int row = 0; row < static_cast<int>(m_picture.satellites.size()); ++row) {
        const qreal distance = QLineF(PointOf(row), event->position()).length();
        if (distance < least) {
            least = distance;
            nearest = row;
        }
    }
    Pick(nearest);
}

void LiveSkyView::keyPressEvent(QKeyEvent* event)
{
    const int count = static_cast<int>(m_picture.satellites.size());
    const bool forward = event->key() == Qt::Key_Right || event->key() == Qt::Key_Down;
    const bool back = event->key() == Qt::Key_Left || event->key() == Qt::Key_Up;
    if (count == 0 || (!forward && !back)) {
        CGraphicsBase::keyPressEvent(event);
        return;
    }
    const int chosen = Chosen();
    if (chosen < 0) {
        Pick(forward ? 0 : count - 1);
    } else {
        Pick((chosen + (forward ? 1 : count - 1)) % count);
    }
}

void LiveSkyView::Draw(QPainter& painter, const QSizeF& size)
{
    const PlotStyle style = Style();
    const QRectF area(QPointF(0.0, 0.0), size);
    const SkyDisc disc(style, area.adjusted(kMargin, kMargin, -kMargin, -kMargin), m_isFromBelow);
    LabelPlacer labels(style, area);
    disc.DrawRings(painter, 0, &labels);
    painter.setPen(PlotPen(m_picture.isStale ? Theme::Current().stale : style.second, 1.5));
    for (const PredictedSatellite& predicted : m_picture.predicted) {
        const QPointF point = disc.PointOf(predicted.direction);
        painter.drawLine(point - QPointF(kCross, 0.0), point + QPointF(kCross, 0.0));
        painter.drawLine(point - QPointF(0.0, kCross), point + QPointF(0.0, kCross));
    }
    for (const LiveSatellite& satellite : m_picture.satellites) {
        const QPointF point = disc.PointOf(satellite.direction);
        DrawSatelliteSign(painter, style, satellite, point, kSign, m_picture.isStale);
        labels.Reserve(QRectF(point.x() - kSign, point.y() - kSign, 2.0 * kSign, 2.0 * kSign));
    }
    PlotStyle labelStyle = style;
    if (m_picture.isStale) {
        labelStyle.text = Theme::Current().stale;
    }
    for (const LiveSatellite& satellite : m_picture.satellites) {
        labels.Draw(painter, disc.PointOf(satellite.direction), SatelliteText(satellite),
                    kRing + 1.0);
    }
    disc.DrawScale(painter, labels, 0);
    painter.setFont(style.font);
    painter.setPen(style.text);
    if (!m_picture.notice.isEmpty()) {
        // On a ground of its own: the rings would run through the words.
        const QRectF room = disc.Bounds().adjusted(kSign, kSign, -kSign, -kSign);
        constexpr int kFlags = Qt::AlignCenter | Qt::TextWordWrap;
        const QRectF words = painter.boundingRect(room, kFlags, m_picture.notice);
        painter.fillRect(words.adjusted(-kSign, -kSign, kSign, kSign), style.ground);
        painter.drawText(room, kFlags, m_picture.notice);
    }
    if (m_isFromBelow) {
        painter.setFont(style.small);
        painter.setPen(style.second);
        painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom, UiText(text::kSkyFromBelow));
    }
}

void LiveSkyView::DrawOver(QPainter& painter, const QSizeF& size)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(PlotPen(Theme::Current().accent, 2.5));
    if (const int row = Chosen(); row >= 0) {
        painter.drawEllipse(PointOf(row), kRing, kRing);
    }
    if (hasFocus()) {
        painter.drawRect(QRectF(QPointF(0.0, 0.0), size).adjusted(1.5, 1.5, -1.5, -1.5));
    }
}

} // namespace fieldcore
