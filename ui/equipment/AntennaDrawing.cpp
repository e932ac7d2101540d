#include "ui/equipment/AntennaDrawing.h"

#include "core/input/Parts.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlotStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr qreal kThin = 1.0;
constexpr qreal kLine = 2.0;
constexpr qreal kMeasured = 3.0;
constexpr qreal kGap = 6.0;
constexpr qreal kTallest = 460.0; // a body that is drawn larger looks like no antenna
constexpr qreal kBodyPart = 0.25; // of the height from the mark to the phase centre
constexpr qreal kDome = 26.0;     // above the phase centre, before it is rounded
constexpr qreal kRimPart = 0.64;  // of the body, where it is widest

/// Where everything stands, logical pixels.
struct Places
{
    QPointF mark;   ///< on the ground
    QPointF centre; ///< phase centre
    QPointF axis;   ///< on the axis, at the height of the measured point
    QPointF point;  ///< that is measured to
    qreal radius;   ///< of the antenna's body
    qreal left;     ///< of the line of the vertical height
    qreal right;    ///< of the line of V
};

Places PlacesIn(const QSizeF& size, const AntennaHeight& height, qreal lineHeight)
{
    const qreal middle = size.width() / 2.0;
    const qreal ground = std::min(size.height(), kTallest) - lineHeight - 2.0 * kGap;
    const qreal top = lineHeight + 2.0 * kGap;
    const qreal centre = top + (ground - top) * 0.12;
    const qreal body = (ground - centre) * kBodyPart;
    const qreal radius = std::clamp(size.width() * 0.16, 40.0, 110.0);
    Places at{};
    at.radius = radius;
    at.mark = {middle, ground};
    at.centre = {middle, centre};
    const bool isReduced = height.IsReduced();
    const bool isAside = height.method.radiusM != 0.0 && isReduced;
    // An upward V is drawn below the centre, a downward one above it.
    const qreal sink = !isReduced                      ? 0.0
                       : height.method.verticalM < 0.0 ? -kDome
                       : isAside                       ? body * kRimPart
                                                       : body;
    at.axis = at.centre + QPointF(0.0, sink);
    at.point = at.axis + QPointF(isAside ? radius : 0.0, 0.0);
    at.left = middle - radius - 28.0;
    at.right = middle + radius + 20.0;
    return at;
}

/// A line with a short bar across at both ends.
void DrawSpan(QPainter& painter, const QPointF& from, const QPointF& to)
{
    painter.drawLine(from, to);
    const QPointF along = to - from;
    const qreal length = std::hypot(along.x(), along.y());
    if (length > 0.0) {
        const QPointF across = QPointF(-along.y(), along.x()) / length * 5.0;
        painter.drawLine(from - across, from + across);
        painter.drawLine(to - across, to + across);
    }
}

/// Text on a ground of its own, so that no line runs through it; kept within @p bounds.
void Label(QPainter& painter, const PlotStyle& style, QPointF centre, const QString& text,
           const QColor& colour, const QSizeF& bounds)
{
    const QFontMetricsF metrics(painter.font());
    const QSizeF size(metrics.horizontalAdvance(text) + 6.0, metrics.height());
    centre.setX(std::clamp(centre.x(), size.width() / 2.0,
                           std::max(size.width() / 2.0, bounds.width() - size.width() / 2.0)));
    const QRectF area(centre - QPointF(size.width(), size.height()) / 2.0, size);
    painter.fillRect(area, style.ground);
    painter.setPen(colour);
    painter.drawText(area, Qt::AlignCenter, text);
}

void DrawAntenna(QPainter& painter, const PlotStyle& style, const Places& at)
{
    // The body from its dome to the base, which lies where a base is measured.
    const qreal base = at.centre.y() + (at.mark.y() - at.centre.y()) * kBodyPart;
    const qreal rim = at.centre.y() + (base - at.centre.y()) * kRimPart;
    QPainterPath body;
    body.moveTo(at.centre.x() - at.radius, rim);
    body.cubicTo(at.centre.x() - at.radius, at.centre.y() - kDome, at.centre.x() + at.radius,
                 at.centre.y() - kDome, at.centre.x() + at.radius, rim);
    body.lineTo(at.centre.x() + at.radius * 0.45, base);
    body.lineTo(at.centre.x() - at.radius * 0.45, base);
    body.closeSubpath();
    painter.setPen(PlotPen(style.text, kLine));
    painter.setBrush(style.Faded(style.accent, 0.14));
    painter.drawPath(body);
    // Pole and ground.
    painter.setPen(PlotPen(style.second, kThin, Qt::DashLine));
    painter.drawLine(at.centre, at.mark);
    painter.setPen(PlotPen(style.second, kLine));
    const qreal half = at.radius * 1.6;
    painter.drawLine(at.mark - QPointF(half, 0.0), at.mark + QPointF(half, 0.0));
    painter.setBrush(style.text);
    painter.setPen(Qt::NoPen);
    painter.drawPolygon(
        QPolygonF{at.mark, at.mark + QPointF(-7.0, 11.0), at.mark + QPointF(7.0, 11.0)});
}

} // namespace

AntennaDrawing::AntennaDrawing(QWidget* parent) : CGraphicsBase(parent)
{
    setAccessibleName(UiText(text::kAntennaDrawing));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void AntennaDrawing::Show(const AntennaHeight& height, bool isKnown)
{
    m_height = height;
    m_isKnown = isKnown;
    Invalidate();
}

QSize AntennaDrawing::sizeHint() const
{
    return minimumSizeHint(); // it takes what is left, and does not make the page scroll
}

QSize AntennaDrawing::minimumSizeHint() const
{
    return {240, 110 + 2 * fontMetrics().height()};
}

void AntennaDrawing::Draw(QPainter& painter, const QSizeF& size)
{
    const Theme& theme = Theme::Current();
    const PlotStyle style = PlotStyle::OnScreen(theme.ground, font());
    painter.setFont(style.small);
    const bool isReduced = m_height.IsReduced();
    const Places at = PlacesIn(size, m_height, QFontMetricsF(style.small).height());
    DrawAntenna(painter, style, at);

    constexpr std::uint8_t kDecimals = 3;
    const auto metres = [&](int id, int withoutValue, double value) {
        return m_isKnown ? ToQt(FormatText(id, CParts::round(value, kDecimals)))
                         : UiText(withoutValue);
    };
    const bool isBad = m_height.reduction == AntennaReduction::TooShort ||
                       m_height.reduction == AntennaReduction::Unknown;
    const QColor measured = isBad ? theme.attention : theme.accent;
    painter.setPen(PlotPen(measured, kMeasured));
    DrawSpan(painter, at.mark, at.point);
    if (isReduced) {
        painter.setPen(PlotPen(style.text, kLine));
        const QPointF aside(at.right - at.centre.x(), 0.0);
        if (at.point != at.axis) {
            DrawSpan(painter, at.axis, at.point);
        }
        painter.setPen(PlotPen(style.second, kThin, Qt::DotLine));
        painter.drawLine(at.point, at.axis + aside);
        painter.drawLine(at.centre, at.centre + aside);
        painter.setPen(PlotPen(style.text, kLine));
        DrawSpan(painter, at.axis + aside, at.centre + aside);
    }
    // The vertical height that comes out, at the left.
    const QPointF toLeft(at.left - at.centre.x(), 0.0);
    painter.setPen(PlotPen(style.second, kThin, Qt::DotLine));
    painter.drawLine(at.centre, at.centre + toLeft);
    painter.setPen(PlotPen(isBad ? theme.attention : theme.good, kLine));
    DrawSpan(painter, at.mark + toLeft, at.centre + toLeft);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.bad);
    painter.drawEllipse(at.centre, 4.0, 4.0);

    const QPointF half = (at.mark + at.point) / 2.0;
    const qreal line = QFontMetricsF(style.small).height();
    if (isReduced || m_isKnown) {
        Label(painter, style, half + QPointF(isReduced ? 0.0 : at.radius, line / 2.0),
              metres(text::kAntennaDrawnHeight, text::kAntennaHeight, m_height.measuredM), measured,
              size);
    }
    Label(painter, style, (at.mark + at.centre) / 2.0 + toLeft - QPointF(0.0, line * 1.5),
          metres(text::kAntennaDrawnResult, text::kAntennaVertical, m_height.verticalM),
          isBad ? theme.attention : theme.good, size);
    Label(painter, style, at.centre - QPointF(0.0, kDome + line / 2.0),
          UiText(text::kAntennaCentre), style.text, size);
    Label(painter, style, at.mark + QPointF(0.0, line / 2.0 + 2.0 * kGap),
          UiText(text::kAntennaMark), style.text, size);
    const auto beside = [&](int id, double metresOf, qreal y) {
        const QString words = ToQt(FormatText(id, metresOf));
        const qreal width = QFontMetricsF(style.small).horizontalAdvance(words);
        Label(painter, style, {at.right + width / 2.0 + 2.0 * kGap, y}, words, style.text, size);
    };
    if (isReduced) {
        beside(text::kAntennaDrawnOffset, m_height.method.verticalM,
               (at.axis.y() + at.centre.y()) / 2.0);
    }
    if (isReduced && at.point != at.axis) {
        beside(text::kAntennaDrawnRadius, m_height.method.radiusM, at.axis.y() + line);
    }
}

} // namespace fieldcore
