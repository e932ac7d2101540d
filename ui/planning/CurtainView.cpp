#include "ui/planning/CurtainView.h"

#include "core/platform/Degrees.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlotStyle.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kCircle = 360;
constexpr double kZenith = 90.0;

} // namespace

CurtainView::CurtainView(CurtainEdit& edit, QWidget* parent) : CGraphicsBase(parent), m_edit(edit)
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(UiText(text::kPlanCurtain));
}

QSize CurtainView::sizeHint() const
{
    return {456, 400};
}

QSize CurtainView::minimumSizeHint() const
{
    return {240, 240};
}

void CurtainView::SetProposal(const std::optional<CurtainProposal>& proposal)
{
    m_proposal = proposal;
    Invalidate();
}

void CurtainView::SetForm(Form form)
{
    m_edit.EndStroke();
    m_form = form;
    Tell();
}

void CurtainView::Tell()
{
    setAccessibleDescription(
        ToQt(FormatText(text::kCurtainReading, m_cursorDeg, m_edit.At(m_cursorDeg))));
    Invalidate();
    Q_EMIT Changed();
}

QRectF CurtainView::Sky() const
{
    const qreal line = fontMetrics().height();
    const QRectF area(0.0, 0.0, width(), height());
    if (m_form == Form::Unrolled) {
        return area.adjusted(3.0 * line, line, -line, -1.5 * line);
    }
    const qreal edge = std::max(std::min(area.width(), area.height()) - 3.0 * line, 1.0);
    return {area.center().x() - edge / 2.0, area.center().y() - edge / 2.0, edge, edge};
}

QPointF CurtainView::PointOf(double azimuthDeg, double elevationDeg) const
{
    const QRectF sky = Sky();
    if (m_form == Form::Unrolled) {
        return {sky.left() + sky.width() * azimuthDeg / kCircle,
                sky.bottom() - sky.height() * elevationDeg / kZenith};
    }
    const double away = sky.width() / 2.0 * (1.0 - elevationDeg / kZenith);
    const double angle = RadiansOf(azimuthDeg);
    return sky.center() + QPointF(away * std::sin(angle), -away * std::cos(angle));
}

CurtainView::Direction CurtainView::DirectionAt(const QPointF& point) const
{
    const QRectF sky = Sky();
    if (m_form == Form::Unrolled) {
        constexpr double kLast = kCircle - 0.5; // beyond the edge is not the other end
        return {std::clamp((point.x() - sky.left()) / sky.width() * kCircle, 0.0, kLast),
                (sky.bottom() - point.y()) / sky.height() * kZenith};
    }
    const QPointF from = point - sky.center();
    const double azimuth = DegreesOf(std::atan2(from.x(), -from.y()));
    const double away = std::hypot(from.x(), from.y());
    return {azimuth, kZenith * (1.0 - away / (sky.width() / 2.0))};
}

void CurtainView::Draw(QPainter& painter, const QSizeF& size)
{
    Q_UNUSED(size)
    const PlotStyle style = PlotStyle::OnScreen(Theme::Current().ground, font());
    const QRectF sky = Sky();
    QPainterPath curtain;
    const bool isRound = m_form == Form::Round;
    for (int entry = 0; entry < kCircle; ++entry) {
        const int elevation = m_edit.At(entry);
        for (const double edge : {0.0, 1.0}) {
            const QPointF point = PointOf(entry + edge, elevation);
            if (entry == 0 && edge == 0.0) {
                curtain.moveTo(point);
            } else {
                curtain.lineTo(point);
            }
        }
    }
    if (isRound) {
        curtain.closeSubpath();
        QPainterPath disc;
        disc.addEllipse(sky);
        curtain = disc.subtracted(curtain);
    } else {
        curtain.lineTo(sky.bottomRight());
        curtain.lineTo(sky.bottomLeft());
        curtain.closeSubpath();
    }
    painter.fillPath(curtain, style.Faded(style.second, 0.4));
    painter.strokePath(curtain, PlotPen(style.second, 1.0));
    DrawGrid(painter);
    if (m_proposal) {
        QPen pen = PlotPen(style.accent, 3.0);
        pen.setDashPattern({3.0, 2.0});
        DrawProposal(painter, SkylineCertainty::Sure, pen);
        pen.setWidthF(2.0);
        pen.setDashPattern({1.0, 2.5});
        DrawProposal(painter, SkylineCertainty::Fair, pen);
    }
}

void CurtainView::DrawProposal(QPainter& painter, SkylineCertainty certainty, const QPen& pen) const
{
    QPainterPath path;
    bool isOn = false;
    for (int entry = 0; entry < kCircle; ++entry) {
        const auto at = static_cast<std::size_t>(entry);
        if (m_proposal->certainty[at] != certainty) {
            isOn = false;
            continue;
        }
        for (const double edge : {0.0, 1.0}) {
            const QPointF point = PointOf(entry + edge, m_proposal->curtain[at]);
            if (isOn) {
                path.lineTo(point);
            } else {
                path.moveTo(point);
            }
            isOn = true;
        }
    }
    painter.strokePath(path, pen);
}

void CurtainView::DrawGrid(QPainter& painter) const
{
    const PlotStyle style = PlotStyle::OnScreen(Theme::Current().ground, font());
    const QRectF sky = Sky();
    constexpr int kRing = 30;
    constexpr int kEighth = kCircle / 8;
    painter.setBrush(Qt::NoBrush);
    for (int elevation = 0; elevation <= 90; elevation += kRing) {
        painter.setPen(PlotPen(elevation == 0 ? style.second : style.grid, 1.0));
        const QPointF left = PointOf(0.0, elevation);
        const QString text = ToQt(FormatText(text::kPlotDegrees, static_cast<double>(elevation)));
        if (m_form == Form::Unrolled) {
            painter.drawLine(left, PointOf(kCircle, elevation));
            painter.setPen(style.second);
            painter.drawText(QRectF(0.0, left.y() - 20.0, sky.left() - 6.0, 40.0),
                             Qt::AlignRight | Qt::AlignVCenter, text);
        } else if (elevation < 90) {
            painter.drawEllipse(sky.center(), sky.center().y() - left.y(),
                                sky.center().y() - left.y());
            painter.setPen(style.second);
            if (elevation > 0) {
                DrawCentred(painter, PointOf(kEighth / 2.0, elevation), text);
            }
        }
    }
    const qreal line = fontMetrics().height();
    const int last = m_form == Form::Unrolled ? 8 : 7;
    for (int eighth = 0; eighth <= last; ++eighth) {
        const double azimuth = eighth * kEighth;
        painter.setPen(PlotPen(style.grid, 1.0));
        painter.drawLine(PointOf(azimuth, 0.0), PointOf(azimuth, kZenith));
        painter.setPen(style.text);
        const QPointF rim = PointOf(azimuth, 0.0);
        const QPointF out = rim - PointOf(azimuth, 10.0);
        const qreal length = std::max(std::hypot(out.x(), out.y()), 1e-6);
        const qreal away = m_form == Form::Unrolled ? 0.9 * line : line;
        DrawCentred(painter, rim + out / length * away, UiText(text::kPlotNorth + eighth % 8));
    }
}

void CurtainView::DrawOver(QPainter& painter, const QSizeF& size)
{
    Q_UNUSED(size)
    const PlotStyle style = PlotStyle::OnScreen(Theme::Current().ground, font());
    const double middle = m_cursorDeg + 0.5;
    painter.setPen(PlotPen(style.accent, hasFocus() ? 3.0 : 2.0));
    painter.drawLine(PointOf(middle, 0.0), PointOf(middle, kZenith));
    painter.setBrush(style.accent);
    painter.drawEllipse(PointOf(middle, m_edit.At(m_cursorDeg)), 6.0, 6.0);
}

void CurtainView::Follow(const QPointF& point, bool begins)
{
    const Direction direction = DirectionAt(point);
    if (begins) {
        m_edit.BeginStroke(direction.azimuthDeg, direction.elevationDeg);
    } else {
        m_edit.StrokeTo(direction.azimuthDeg, direction.elevationDeg);
    }
    const int azimuth = static_cast<int>(std::floor(direction.azimuthDeg));
    m_cursorDeg = (azimuth + kCircle) % kCircle;
    Tell();
}

void CurtainView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        Follow(event->position(), true);
    }
}

void CurtainView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_edit.IsStroking() && event->buttons().testFlag(Qt::LeftButton)) {
        Follow(event->position(), false);
    }
}

void CurtainView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_edit.EndStroke();
        Tell();
    }
}

void CurtainView::focusOutEvent(QFocusEvent* event)
{
    CGraphicsBase::focusOutEvent(event);
    m_edit.EndStroke();
    Tell();
}

void CurtainView::MoveCursor(int byDeg, bool draws)
{
    const int elevation = m_edit.At(m_cursorDeg);
    const int from = m_cursorDeg;
    m_cursorDeg = ((m_cursorDeg + byDeg) % kCircle + kCircle) % kCircle;
    if (draws) {
        m_edit.SetRange(byDeg > 0 ? from : m_cursorDeg, byDeg > 0 ? m_cursorDeg : from, elevation);
    }
}

void CurtainView::keyPressEvent(QKeyEvent* event)
{
    constexpr int kStep = 10;
    const bool draws = event->modifiers().testFlag(Qt::ShiftModifier);
    const int step = event->modifiers().testFlag(Qt::ControlModifier) ? kStep : 1;
    const auto raise = [this](int byDeg) {
        m_edit.SetRange(m_cursorDeg, m_cursorDeg, m_edit.At(m_cursorDeg) + byDeg);
    };
    switch (event->key()) {
    case Qt::Key_Left:
        MoveCursor(-step, draws);
        break;
    case Qt::Key_Right:
        MoveCursor(step, draws);
        break;
    case Qt::Key_Up:
        raise(step);
        break;
    case Qt::Key_Down:
        raise(-step);
        break;
    case Qt::Key_PageUp:
        raise(kStep);
        break;
    case Qt::Key_PageDown:
        raise(-kStep);
        break;
    case Qt::Key_Home:
        m_cursorDeg = 0;
        break;
    case Qt::Key_End:
        m_cursorDeg = kCircle - 1;
        break;
    default:
        CGraphicsBase::keyPressEvent(event);
        return;
    }
    Tell();
}

} // namespace fieldcore
