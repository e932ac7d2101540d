#pragma once

#include "core/planning/PlanSeries.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"
#include "ui/planning/SkyDisc.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>

#include <vector>

namespace fieldcore {

/// The tracks of a plan on the SkyDisc of its site. User-interface thread only.
class SkyPlot
{
public:
    /// @param drawing  must outlive the object, as must @p style
    /// @param area     of all of it, logical pixels
    SkyPlot(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area);

    [[nodiscard]] QPointF Centre() const { return m_disc.Centre(); }
    /// Of the rim, logical pixels.
    [[nodiscard]] qreal Radius() const { return m_disc.Radius(); }
    /// Where a direction stands. Below the horizon is the rim.
    [[nodiscard]] QPointF PointOf(const SkyDirection& direction) const
    {
        return m_disc.PointOf(direction);
    }
    /// The elevation of all that stands as far from the middle as @p point, degrees; negative
    /// outside the rim.
    [[nodiscard]] double ElevationDegAt(const QPointF& point) const
    {
        return m_disc.ElevationDegAt(point);
    }

    /// Where the ring of the mask has its number.
    static constexpr double kMaskLabelAzimuthDeg = SkyDisc::kMaskLabelAzimuthDeg;

    /// What is drawn does not clear its ground.
    void Draw(QPainter& painter) const;

private:
    void DrawTracks(QPainter& painter, const std::vector<TrackRun>& runs) const;
    [[nodiscard]] QColor ColourOf(SatelliteId satellite) const;
    void DrawSatellites(QPainter& painter, LabelPlacer& labels) const;

    const PlanDrawing& m_drawing;
    const PlotStyle& m_style;
    QRectF m_area;
    SkyDisc m_disc;
};

} // namespace fieldcore
