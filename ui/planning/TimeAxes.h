#pragma once

#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QRectF>

namespace fieldcore {

/// The frame of a graph over time: where a time and a value stand, and all that does not depend on
/// the curve. Hours run along the bottom, in Japan Standard Time with UTC beneath; good windows
/// stand as a band at the top. User-interface thread only.
class TimeAxes
{
public:
    /// @param drawing  with a plan; must outlive the object, as must @p style
    /// @param area     of the whole graph with its labels, logical pixels
    TimeAxes(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area);

    /// Where the curves are.
    [[nodiscard]] const QRectF& Plot() const { return m_plot; }
    /// The value at the upper edge: 12 divisions.
    [[nodiscard]] double Highest() const { return m_highest; }

    /// @param minutes  after the start of the period
    [[nodiscard]] qreal XOf(double minutes) const;
    /// @param value  satellites, dilution or degrees; what is above Highest() stands above Plot()
    [[nodiscard]] qreal YOf(double value) const;
    /// The inverse of XOf(), held within the period.
    [[nodiscard]] double MinutesAt(qreal x) const;

    /// Ground, grid, axes and the band of windows.
    void Draw(QPainter& painter) const;

private:
    void DrawValues(QPainter& painter) const;
    void DrawHours(QPainter& painter) const;
    void DrawWindows(QPainter& painter) const;
    void DrawHeading(QPainter& painter, bool hasWindows) const;

    const PlanDrawing& m_drawing;
    const PlotStyle& m_style;
    QRectF m_area;
    QRectF m_plot;
    double m_highest;
    qreal m_line; // height of a row of labels
};

} // namespace fieldcore
