#pragma once

#include <QColor>
#include <QPixmap>
#include <QWidget>

namespace fieldcore {

/// A surface that is drawn into a buffer and shown from there: it does not flicker, and a repaint
/// of the window costs no drawing. User-interface thread only.
class CGraphicsBase : public QWidget
{
    Q_OBJECT

public:
    /// An empty picture.
    explicit CGraphicsBase(QWidget* parent = nullptr);

    /// The colour under the drawing; by default the ground of the theme.
    void SetBackground(const QColor& colour);

    /// Draws anew before the next repaint.
    void Invalidate();

protected:
    /// Draws everything. The background is there.
    /// @param painter  in logical pixels, antialiasing on
    /// @param size     of the surface, logical pixels
    virtual void Draw(QPainter& painter, const QSizeF& size) = 0;

    /// Draws over the buffer at every repaint, for a cursor: it should be quick.
    virtual void DrawOver(QPainter& painter, const QSizeF& size);

    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QPixmap m_buffer;
    QColor m_background; ///< not valid: the theme's
    bool m_isStale = true;
};

} // namespace fieldcore
