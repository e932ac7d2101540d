#include "ui/tilt/BubbleView.h"

#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr double kRim = kBubbleRim;
constexpr double kBubble = kBubbleRim - kBubbleReach; // radius
constexpr double kHalf = kVialWidth / 2.0;

QColor Mixed(const QColor& a, const QColor& b, double share)
{
    const auto mix = [share](int x, int y) { return static_cast<int>(x + (y - x) * share); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

} // namespace

BubbleView::BubbleView(QWidget* parent) : CGraphicsBase(parent)
{
    setMinimumSize(kVialWidth, kVialWidth);
    setAccessibleName(UiText(text::kBubbleTitle));
    setAccessibleDescription(UiText(Words()));
}

int BubbleView::Words() const
{
    switch (m_source) {
    case Source::NotReceived:
        return text::kBubbleStale;
    case Source::NoSensor:
        return text::kBubbleNoSensor;
    case Source::Reading:
        break;
    }
    return m_picture.isNotReady                                    ? text::kBubbleNotReady
           : m_picture.needsCalibration                            ? text::kBubbleNeedsCalibration
           : !m_picture.showBubble || !m_picture.isWithinTolerance ? text::kBubbleOutside
                                                                   : text::kBubbleWithin;
}

void BubbleView::Show(const BubblePicture& picture, Source source)
{
    if (picture == m_picture && source == m_source) {
        return;
    }
    m_picture = picture;
    m_source = source;
    setAccessibleDescription(UiText(Words()));
    Invalidate();
}

void BubbleView::Draw(QPainter& painter, const QSizeF& size)
{
    const double scale = std::min(size.width(), size.height()) / kVialWidth;
    painter.translate(size.width() / 2.0, size.height() / 2.0);
    painter.scale(scale, scale); // from here on the middle is 0, 0 and the vial 96 wide
    DrawVial(painter);
    if (m_picture.showBubble) {
        DrawBubble(painter);
        DrawGlass(painter);
    }
    DrawMessage(painter);
}

void BubbleView::DrawVial(QPainter& painter) const
{
    const Theme& theme = Theme::Current();
    QRadialGradient liquid(QPointF(-kRim / 3, -kRim / 3), 2 * kRim);
    liquid.setColorAt(0.0, theme.raised);
    liquid.setColorAt(1.0, Mixed(theme.raised, theme.accent, IsFresh() ? 0.3 : 0.1));
    painter.setBrush(liquid);
    painter.setPen(QPen(IsFresh() ? theme.text : theme.stale, 2.0));
    painter.drawEllipse(QPointF(), kRim, kRim);
    painter.setPen(QPen(theme.stale, 0.75));
    constexpr double kInside = kRim - 2.0; // the lines end at the rim
    painter.drawLine(QPointF(-kInside, 0), QPointF(kInside, 0));
    painter.drawLine(QPointF(0, -kInside), QPointF(0, kInside));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(), kBubble, kBubble);
}

void BubbleView::DrawBubble(QPainter& painter) const
{
    const Theme& theme = Theme::Current();
    const bool isWithin = m_picture.isWithinTolerance;
    const QColor colour = !IsFresh() ? theme.stale : isWithin ? theme.good : theme.attention;
    const QPointF middle(m_picture.x, m_picture.y);
    QRadialGradient body(middle, kBubble, middle - QPointF(5, 5));
    body.setColorAt(0.0, Mixed(colour, theme.ground, 0.25));
    body.setColorAt(1.0, colour);
    painter.setPen(QPen(Mixed(colour, theme.text, 0.4), 1.0));
    painter.setBrush(body);
    painter.drawEllipse(middle, kBubble - 0.5, kBubble - 0.5);
    // A mark in it, since colour never speaks alone.
    painter.setPen(QPen(theme.ground, 3.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (!IsFresh()) {
        painter.drawLine(middle + QPointF(-5, 0), middle + QPointF(5, 0));
    } else if (isWithin) {
        const QPointF tick[] = {middle + QPointF(-6, 0), middle + QPointF(-2, 5),
                                middle + QPointF(6, -5)};
        painter.drawPolyline(tick, 3);
    } else {
        painter.drawLine(middle + QPointF(0, -7), middle + QPointF(0, 1));
        painter.drawPoint(middle + QPointF(0, 6.5));
    }
}

void BubbleView::DrawGlass(QPainter& painter) const
{
    const Theme& theme = Theme::Current();
    if (m_picture.ringRadius > 0) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(IsFresh() ? theme.text : theme.stale, 2.0));
        painter.drawEllipse(QPointF(), m_picture.ringRadius, m_picture.ringRadius);
    }
    QPainterPath shine; // along the upper left rim
    shine.arcMoveTo(QRectF(-40, -40, 80, 80), 110);
    shine.arcTo(QRectF(-40, -40, 80, 80), 110, 50);
    QColor light(Qt::white);
    light.setAlphaF(theme.isDark ? 0.25F : 0.8F);
    painter.setPen(QPen(light, 3.0, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(shine);
}

void BubbleView::DrawMessage(QPainter& painter) const
{
    const int words = Words();
    if (words == text::kBubbleWithin || words == text::kBubbleOutside) {
        return; // the bubble says it, or the sensor moves too fast or leans too far to have one
    }
    constexpr int kPixels = 13;
    QFont bold = font();
    bold.setPixelSize(kPixels);
    bold.setWeight(QFont::Bold);
    painter.setFont(bold);
    const Theme& theme = Theme::Current();
    const QRectF all(-kHalf, -kHalf, kVialWidth, kVialWidth);
    // The cross lines would run through the words.
    const QRectF around = painter.boundingRect(all, Qt::AlignCenter, UiText(words));
    QColor ground = theme.ground;
    ground.setAlphaF(0.85F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(around.adjusted(-3, -2, 3, 2), 4, 4);
    painter.setPen(IsFresh() && m_picture.isNotReady ? theme.second : theme.text);
    painter.drawText(all, Qt::AlignCenter, UiText(words));
}

} // namespace fieldcore
