#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPen>
#include <QRectF>

#include <array>
#include <vector>

namespace fieldcore {

/// How a plot looks on its ground. Painters work in logical pixels of 1/96 inch on screen and paper
/// alike; whoever paints on another raster scales the painter. User-interface thread only.
struct PlotStyle
{
    QColor ground;
    QColor text;
    QColor second; ///< axes, small print
    QColor grid;   ///< light lines
    QColor shade;  ///< what is beyond a limit, or hidden
    QColor accent;
    QColor good;      ///< a good window
    QColor attention; ///< a limit
    std::array<QColor, 7> curves;
    QFont font;  ///< values and labels; its size is in pixels
    QFont small; ///< axes, 13 to 16 of the other

    /// In the colours of the theme that suits @p ground: the one in use if it is that theme's
    /// ground, else the one that reads better on it.
    [[nodiscard]] static PlotStyle OnScreen(const QColor& ground, const QFont& font);
    /// Black on white, 9 pt.
    [[nodiscard]] static PlotStyle OnPaper();

    /// @param index  0 and up; the colours repeat
    [[nodiscard]] const QColor& Curve(int index) const;
    /// @param part  0: the ground itself, 1: all of @p colour. Opaque, so that a printer need not
    /// know transparency.
    [[nodiscard]] QColor Faded(const QColor& colour, double part) const;
};

/// A line of whole @p width. Flat at its ends unless it is a curve.
[[nodiscard]] QPen PlotPen(const QColor& colour, qreal width, Qt::PenStyle style = Qt::SolidLine);

/// Draws @p text centred on @p centre.
/// @return the rectangle that it takes
QRectF DrawCentred(QPainter& painter, const QPointF& centre, const QString& text);

/// Finds labels their places, so that no two lie on each other. What comes first has first choice.
class LabelPlacer
{
public:
    /// @param bounds  labels stay within
    LabelPlacer(const PlotStyle& style, const QRectF& bounds);

    /// Keeps labels away from @p area.
    void Reserve(const QRectF& area);
    /// Writes @p text beside @p point, where there is room among eight places around it.
    /// @param away  distance from the point, logical pixels
    /// @return false: there is no room, nothing is drawn
    bool Draw(QPainter& painter, const QPointF& point, const QString& text, qreal away);

private:
    [[nodiscard]] bool IsFree(const QRectF& area) const;

    const PlotStyle& m_style;
    QRectF m_bounds;
    std::vector<QRectF> m_taken;
};

} // namespace fieldcore
