#pragma once

#include "ui/controls/GraphicsBase.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"

#include <optional>

namespace fieldcore {

/// The graph control of the plan: shows one of the seven graphs and tells what stands under the
/// pointer. User-interface thread only.
///
/// | what | pointer | keys |
/// |---|---|---|
/// | cursor over a count or a dilution | move, tap | left, right, Home, End |
/// | the satellites' time | tap or drag on azimuth and elevation | the same |
/// | a satellite | move, tap | up, down |
/// | the mask | drag its ring on the sky plot | + and - |
///
/// The ground is that of the theme, since the yellow one of the controller's first screens glares
/// at night; whoever wants that sets ControllerGround(). Curves suit either.
class PlanGraphView : public CGraphicsBase
{
    Q_OBJECT

public:
    explicit PlanGraphView(QWidget* parent = nullptr);

    /// Red 255, green 255, blue 150.
    [[nodiscard]] static QColor ControllerGround();
    /// @param ground  not valid: the theme's
    void SetGround(const QColor& ground);

    /// Shows @p drawing, whose plan must live as long as it is shown and must not be computed
    /// meanwhile without a Refresh() behind it. The cursor stays where it fits.
    void SetDrawing(const PlanDrawing& drawing);
    [[nodiscard]] const PlanDrawing& Drawing() const { return m_drawing; }
    void SetGraph(PlanGraph graph);
    /// The plan has been computed anew.
    /// @param maskDeg  that it was computed with
    void Refresh(int maskDeg);

    /// Moves the satellites; timeChanged() tells if that is a change.
    /// @param minutes  after the start of the period; held within it
    void SetTime(double minutes);
    void SetFromBelow(bool isFromBelow);

    /// What the cursor tells, line by line; empty without a cursor.
    [[nodiscard]] QStringList Reading() const;
    /// Hides the cursor.
    void ClearCursor();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user drags the ring of the mask: live, at every whole degree. The ring follows at once;
    /// the tracks do when the plan has been computed and Refresh() called.
    /// @param maskDeg  0 to 90
    void maskChanged(int maskDeg);
    /// The ring is let go, or a key has moved it: after the last maskChanged().
    void maskDropped();
    void timeChanged(double minutes);
    /// Reading() is another.
    void readingChanged(const QStringList& reading);

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;
    void DrawOver(QPainter& painter, const QSizeF& size) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] PlotStyle Style() const;
    [[nodiscard]] QRectF Area() const;
    [[nodiscard]] bool IsReady() const { return m_drawing.Obstacle().isEmpty(); }
    [[nodiscard]] std::optional<SkySatellite> Chosen() const;
    [[nodiscard]] bool IsOnMask(const QPointF& point) const;
    void PointAt(const QPointF& point, bool isTap);
    void ChooseNear(const QPointF& point);
    void StepTime(int direction);
    void StepSatellite(int direction);
    void DragMask(int maskDeg);
    void Tell();

    PlanDrawing m_drawing;
    QColor m_ground;                        ///< not valid: the theme's
    std::optional<int> m_sample;            ///< under the cursor of a count or a dilution
    std::optional<SatelliteId> m_satellite; ///< under the cursor of tracks
    bool m_isDragging = false;              ///< the ring of the mask
    QStringList m_told;
};

} // namespace fieldcore
