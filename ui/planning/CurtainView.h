#pragma once

#include "core/planning/CurtainEdit.h"
#include "core/planning/CurtainProposal.h"
#include "ui/controls/GraphicsBase.h"

#include <QPointF>
#include <QRectF>

#include <optional>

namespace fieldcore {

/// Draws a curtain with a finger, on the sky seen from above or unrolled along the horizon.
/// User-interface thread only.
///
/// | what | pointer | keys |
/// |---|---|---|
/// | elevations along the way | press and drag | Shift with left or right |
/// | one degree of azimuth | tap | up and down, page up and page down for ten |
/// | the cursor | press | left and right, with Ctrl by ten, Home and End |
///
/// Around, north is up and east to the right, and the distance from the middle is proportional to
/// 90 degrees less the elevation. Unrolled, azimuths go from north over east to north, and the
/// horizon is the lower edge.
class CurtainView : public CGraphicsBase
{
    Q_OBJECT

public:
    enum class Form
    {
        Round,
        Unrolled,
    };

    /// @param edit  what is drawn; must outlive the view
    explicit CurtainView(CurtainEdit& edit, QWidget* parent = nullptr);

    /// Drawn over the curtain, dashed where it is sure and dotted where it is rough.
    void SetProposal(const std::optional<CurtainProposal>& proposal);
    [[nodiscard]] const std::optional<CurtainProposal>& Proposal() const { return m_proposal; }
    void SetForm(Form form);
    /// The entry under the cursor, 0 to 359 degrees.
    [[nodiscard]] int CursorDeg() const { return m_cursorDeg; }

    /// Where a direction stands, logical pixels.
    [[nodiscard]] QPointF PointOf(double azimuthDeg, double elevationDeg) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The curtain or the cursor is another.
    void Changed();

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;
    void DrawOver(QPainter& painter, const QSizeF& size) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Direction
    {
        double azimuthDeg;
        double elevationDeg;
    };
    [[nodiscard]] Direction DirectionAt(const QPointF& point) const;
    /// What of the view is sky: the square around the disc, or the strip.
    [[nodiscard]] QRectF Sky() const;
    void DrawGrid(QPainter& painter) const;
    void DrawProposal(QPainter& painter, SkylineCertainty certainty, const QPen& pen) const;
    void Follow(const QPointF& point, bool begins);
    void MoveCursor(int byDeg, bool draws);
    void Tell();

    CurtainEdit& m_edit;
    Form m_form = Form::Round;
    int m_cursorDeg = 0;
    std::optional<CurtainProposal> m_proposal;
};

} // namespace fieldcore
