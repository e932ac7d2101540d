#include "ui/planning/PlanGraphView.h"

#include "core/planning/PlanSeries.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanPainter.h"
#include "ui/planning/PlanWindowList.h"
#include "ui/planning/SkyPlot.h"
#include "ui/planning/TimePlot.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLineF>
#include <QMarginsF>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace fieldcore {

namespace {

constexpr qreal kGrabZone = 44.0; // as wide as a thumb in a glove
constexpr int kHighestMaskDeg = 90;
constexpr QMarginsF kInside(8.0, 8.0, 8.0, 8.0);

} // namespace

PlanGraphView::PlanGraphView(QWidget* parent) : CGraphicsBase(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    Tell();
}

QColor PlanGraphView::ControllerGround()
{
    return {255, 255, 150};
}

void PlanGraphView::SetGround(const QColor& ground)
{
    m_ground = ground;
    SetBackground(ground);
}

PlotStyle PlanGraphView::Style() const
{
    return PlotStyle::OnScreen(m_ground.isValid() ? m_ground : Theme::Current().ground, font());
}

QRectF PlanGraphView::Area() const
{
    return GraphArea(m_drawing, Style(), rect());
}

QSize PlanGraphView::sizeHint() const
{
    const int em = QFontMetrics(font()).height();
    return {em * 24, em * 20};
}

QSize PlanGraphView::minimumSizeHint() const
{
    const int em = QFontMetrics(font()).height();
    return {em * 14, em * 5};
}

void PlanGraphView::SetDrawing(const PlanDrawing& drawing)
{
    m_drawing = drawing;
    Refresh(drawing.maskDeg);
}

void PlanGraphView::SetGraph(PlanGraph graph)
{
    m_drawing.graph = graph;
    m_isDragging = false;
    ClearCursor();
    Refresh(m_drawing.maskDeg);
}

void PlanGraphView::Refresh(int maskDeg)
{
    m_drawing.maskDeg = maskDeg;
    m_drawing.minutes = std::clamp(m_drawing.minutes, 0.0, m_drawing.LengthMin());
    if (m_sample && (!m_drawing.HasPlan() || *m_sample >= m_drawing.plan->Division())) {
        m_sample.reset();
    }
    Invalidate();
    Tell();
}

void PlanGraphView::SetTime(double minutes)
{
    const double held =
        std::clamp(std::isfinite(minutes) ? minutes : 0.0, 0.0, m_drawing.LengthMin());
    if (held != m_drawing.minutes) {
        m_drawing.minutes = held;
        Invalidate();
        Tell();
        Q_EMIT timeChanged(held);
    }
}

void PlanGraphView::SetFromBelow(bool isFromBelow)
{
    m_drawing.isFromBelow = isFromBelow;
    Invalidate();
}

std::optional<SkySatellite> PlanGraphView::Chosen() const
{
    if (!m_satellite || !IsTracks(m_drawing.graph)) {
        return std::nullopt;
    }
    const std::vector<SkySatellite> sky = m_drawing.Sky();
    const auto found = std::find_if(
        sky.begin(), sky.end(), [&](const SkySatellite& s) { return s.satellite == *m_satellite; });
    return found == sky.end() ? std::nullopt : std::optional(*found);
}

QStringList PlanGraphView::Reading() const
{
    if (!IsReady()) {
        return {};
    }
    if (!IsTracks(m_drawing.graph)) {
        return m_sample ? ReadingOfSample(m_drawing, *m_sample) : QStringList();
    }
    QStringList lines{ReadingOfTime(m_drawing, m_drawing.minutes)};
    if (const std::optional<SkySatellite> satellite = Chosen()) {
        lines += ReadingOfSatellite(m_drawing, *satellite);
    }
    return lines;
}

void PlanGraphView::ClearCursor()
{
    m_sample.reset();
    m_satellite.reset();
    Tell();
    update();
}

/// Keeps the accessible texts, and whoever listens, up to date.
void PlanGraphView::Tell()
{
    setAccessibleName(ToQt(FormatText(text::kGraphName, Text(GraphTextId(m_drawing.graph)))));
    const QStringList reading = Reading();
    const QString obstacle = m_drawing.Obstacle();
    const auto summary = [this] {
        QStringList windows;
        for (const PlanWindow& window : FindWindows(*m_drawing.plan, m_drawing.limits)) {
            windows += WindowText(*m_drawing.plan, window);
        }
        return windows.isEmpty() ? UiText(text::kSheetNoWindow)
                                 : windows.join(UiText(text::kPlanListSeparator));
    };
    setAccessibleDescription(!obstacle.isEmpty() ? obstacle
                             : reading.isEmpty() ? summary()
                                                 : reading.join(QLatin1Char(' ')));
    if (reading != m_told) {
        m_told = reading;
        Q_EMIT readingChanged(reading);
    }
}

bool PlanGraphView::IsOnMask(const QPointF& point) const
{
    if (m_drawing.graph != PlanGraph::SkyPlot || !IsReady()) {
        return false;
    }
    const PlotStyle style = Style();
    const SkyPlot plot(m_drawing, style, Area());
    const double degrees = plot.ElevationDegAt(point) - m_drawing.maskDeg;
    return std::abs(degrees) / 90.0 * plot.Radius() <= kGrabZone / 2.0;
}

void PlanGraphView::DragMask(int maskDeg)
{
    const int held = std::clamp(maskDeg, 0, kHighestMaskDeg);
    if (held != m_drawing.maskDeg) {
        m_drawing.maskDeg = held;
        Invalidate();
        Q_EMIT maskChanged(held);
    }
}

void PlanGraphView::ChooseNear(const QPointF& point)
{
    const PlotStyle style = Style();
    const QRectF area = Area();
    double nearest = kGrabZone / 2.0;
    m_satellite.reset();
    for (const SkySatellite& satellite : m_drawing.Sky()) {
        const std::optional<QPointF> place = PointOfSatellite(m_drawing, style, area, satellite);
        if (place && QLineF(*place, point).length() <= nearest) {
            nearest = QLineF(*place, point).length();
            m_satellite = satellite.satellite;
        }
    }
}

void PlanGraphView::PointAt(const QPointF& point, bool isTap)
{
    if (!IsReady()) {
        return;
    }
    const PlotStyle style = Style();
    if (m_drawing.graph == PlanGraph::SkyPlot) {
        ChooseNear(point);
    } else {
        const double minutes = TimeAxes(m_drawing, style, Area()).MinutesAt(point.x());
        if (!IsTracks(m_drawing.graph)) {
            m_sample =
                SampleNear(*m_drawing.plan, m_drawing.graph, minutes / m_drawing.IntervalMin());
        } else {
            if (isTap) {
                SetTime(std::round(minutes));
            }
            ChooseNear({TimeAxes(m_drawing, style, Area()).XOf(m_drawing.minutes), point.y()});
        }
    }
    Tell();
    update();
}

void PlanGraphView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    PointAt(event->position(), true);
    // A satellite that is hit exactly is meant, although it may stand on the ring.
    m_isDragging = !m_satellite && IsOnMask(event->position());
}

void PlanGraphView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isDragging) {
        PointAt(event->position(), event->buttons().testFlag(Qt::LeftButton));
        setCursor(!m_satellite && IsOnMask(event->position()) ? Qt::SizeAllCursor
                                                              : Qt::ArrowCursor);
        return;
    }
    const PlotStyle style = Style();
    const SkyPlot plot(m_drawing, style, Area());
    DragMask(static_cast<int>(std::lround(plot.ElevationDegAt(event->position()))));
}

void PlanGraphView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && std::exchange(m_isDragging, false)) {
        Q_EMIT maskDropped();
    }
}

void PlanGraphView::leaveEvent(QEvent* event)
{
    CGraphicsBase::leaveEvent(event);
    if (!hasFocus()) {
        ClearCursor(); // what a tap has found stays
    }
}

void PlanGraphView::StepTime(int direction)
{
    if (IsTracks(m_drawing.graph)) {
        SetTime(m_drawing.minutes + direction * m_drawing.IntervalMin());
        return;
    }
    const int last = m_drawing.plan->Division() - 1;
    // Without a cursor the first key comes in from outside.
    const int from = m_sample.value_or(direction > 0 ? -1 : last + 1);
    m_sample = std::clamp(from + direction, 0, last);
}

void PlanGraphView::StepSatellite(int direction)
{
    std::vector<SatelliteId> shown;
    for (const SkySatellite& satellite : m_drawing.Sky()) {
        if (satellite.isVisible || m_drawing.graph == PlanGraph::SkyPlot) {
            shown.push_back(satellite.satellite);
        }
    }
    if (shown.empty()) {
        m_satellite.reset();
        return;
    }
    if (direction > 0) {
        const auto next = m_satellite ? std::upper_bound(shown.begin(), shown.end(), *m_satellite)
                                      : shown.begin();
        m_satellite = next == shown.end() ? shown.front() : *next;
    } else {
        const auto next = m_satellite ? std::lower_bound(shown.begin(), shown.end(), *m_satellite)
                                      : shown.begin();
        m_satellite = next == shown.begin() ? shown.back() : *std::prev(next);
    }
}

void PlanGraphView::keyPressEvent(QKeyEvent* event)
{
    const bool isSky = m_drawing.graph == PlanGraph::SkyPlot;
    const bool isTracks = IsTracks(m_drawing.graph);
    if (!IsReady()) {
        CGraphicsBase::keyPressEvent(event);
        return;
    }
    const int all = m_drawing.plan->Division() + 1;
    switch (event->key()) {
    case Qt::Key_Left:
        StepTime(-1);
        break;
    case Qt::Key_Right:
        StepTime(1);
        break;
    case Qt::Key_Home:
        StepTime(-all);
        break;
    case Qt::Key_End:
        StepTime(all);
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (!isTracks) {
            CGraphicsBase::keyPressEvent(event);
            return;
        }
        StepSatellite(event->key() == Qt::Key_Up ? 1 : -1);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Minus:
        if (!isSky) {
            CGraphicsBase::keyPressEvent(event);
            return;
        }
        DragMask(m_drawing.maskDeg + (event->key() == Qt::Key_Plus ? 1 : -1));
        Q_EMIT maskDropped();
        break;
    default:
        CGraphicsBase::keyPressEvent(event); // Esc is the dialog's
        return;
    }
    Tell();
    update();
}

void PlanGraphView::Draw(QPainter& painter, const QSizeF& size)
{
    PaintGraph(painter, m_drawing, Style(), QRectF(QPointF(), size));
}

void PlanGraphView::DrawOver(QPainter& painter, const QSizeF& size)
{
    Q_UNUSED(size)
    const PlotStyle style = Style();
    if (hasFocus()) {
        painter.setPen(PlotPen(style.accent, 2.0));
        painter.drawRect(QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0));
    }
    const QStringList reading = Reading();
    if (reading.isEmpty()) {
        return;
    }
    const QRectF area = Area();
    std::optional<QPointF> point;
    if (IsTracks(m_drawing.graph)) {
        if (const std::optional<SkySatellite> satellite = Chosen()) {
            point = PointOfSatellite(m_drawing, style, area, *satellite);
        }
        const bool isSky = m_drawing.graph == PlanGraph::SkyPlot;
        PaintReading(painter, style,
                     isSky ? area : TimeAxes(m_drawing, style, area).Plot().marginsRemoved(kInside),
                     point, reading);
        return;
    }
    const TimePlot plot(m_drawing, style, area);
    const QRectF& inside = plot.Axes().Plot();
    const double minutes = EpochOfSample(m_drawing.graph, *m_sample) * m_drawing.IntervalMin();
    const double value =
        SampleAt(*m_drawing.plan, m_drawing.graph, *m_sample).value_or(plot.Axes().Highest() / 2.0);
    point = plot.PointOf(minutes, value);
    painter.setPen(PlotPen(style.text, 1.0));
    const qreal x = std::floor(point->x()) + 0.5;
    painter.drawLine(QPointF(x, inside.top()), QPointF(x, inside.bottom()));
    PaintReading(painter, style, inside.marginsRemoved(kInside), point, reading);
}

} // namespace fieldcore
