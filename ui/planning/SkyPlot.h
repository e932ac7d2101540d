#pragma once

#include "core/planning/PlanSeries.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>

#include <vector>

namespace fieldcore {

/// The sky over the site as a disc: the zenith in the middle, the horizon as its rim, north up and
/// east to the right, or to the left if it is seen from below. The distance from the middle is
/// proportional to 90 degrees less the elevation. User-interface thread only.
class SkyPlot
{
public:
    /// @param drawing  must outlive the object, as must @p style
    /// @param area     of all of it, logical pixels
    SkyPlot(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area);

    [[nodiscard]] QPointF Centre() const { return m_centre; }
    /// Of the rim, logical pixels.
    [[nodiscard]] qreal Radius() const { return m_radius; }
    /// Where a direction stands. Below the horizon is the rim.
    [[nodiscard]] QPointF PointOf(const SkyDirection& direction) const;
    /// The elevation of all that stands as far from the middle as @p point, degrees; negative
    /// outside the rim.
    [[nodiscard]] double ElevationDegAt(const QPointF& point) const;

    /// Where the ring of the mask has its number.
    static constexpr double kMaskLabelAzimuthDeg = 112.5;

    /// What is drawn does not clear its ground.
    void Draw(QPainter& painter) const;

private:
    [[nodiscard]] QPointF At(double azimuthDeg, double elevationDeg) const;
    void DrawCurtain(QPainter& painter) const;
    void DrawRings(QPainter& painter) const;
    void DrawTracks(QPainter& painter, const std::vector<TrackRun>& runs) const;
    void DrawScale(QPainter& painter, LabelPlacer& labels) const;
    void DrawSatellites(QPainter& painter, LabelPlacer& labels) const;

    const PlanDrawing& m_drawing;
    const PlotStyle& m_style;
    QRectF m_area;
    QPointF m_centre;
    qreal m_radius;
};

} // namespace fieldcore
