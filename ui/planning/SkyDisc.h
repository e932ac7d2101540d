#pragma once

#include "core/planning/LocalFrame.h"
#include "core/planning/SkyLimits.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace fieldcore {

/// The sky over a site as a disc: the zenith in the middle, the horizon as its rim, north up and
/// east to the right, or to the left if it is seen from below. The distance from the middle is
/// proportional to 90 degrees less the elevation. User-interface thread only.
class SkyDisc
{
public:
    /// @param style        must outlive the object
    /// @param area         of the disc and the names around it, logical pixels
    /// @param isFromBelow  as a map that lies on the ground shows it: east to the left
    SkyDisc(const PlotStyle& style, const QRectF& area, bool isFromBelow);

    [[nodiscard]] QPointF Centre() const { return m_centre; }
    /// Of the rim, logical pixels.
    [[nodiscard]] qreal Radius() const { return m_radius; }
    /// The square around the rim.
    [[nodiscard]] QRectF Bounds() const;
    /// Where a direction stands. Below the horizon is the rim.
    [[nodiscard]] QPointF At(double azimuthDeg, double elevationDeg) const;
    [[nodiscard]] QPointF PointOf(const SkyDirection& direction) const;
    /// The elevation of all that stands as far from the middle as @p point, degrees; negative
    /// outside the rim.
    [[nodiscard]] double ElevationDegAt(const QPointF& point) const;

    /// Where the ring of the mask has its number.
    static constexpr double kMaskLabelAzimuthDeg = 112.5;

    // What is drawn does not clear its ground.

    /// What the curtain hides, as a skyline from the rim; nothing if it hides nothing.
    void DrawCurtain(QPainter& painter, const ObstructionCurtain& curtain) const;
    /// The rings, the directions and their names.
    /// @param maskDeg  of the dashed ring; 0: there is none
    /// @param labels   to be kept away from the names; may be null
    void DrawRings(QPainter& painter, int maskDeg, LabelPlacer* labels = nullptr) const;
    /// The numbers of the rings, where there is room.
    void DrawScale(QPainter& painter, LabelPlacer& labels, int maskDeg) const;

private:
    const PlotStyle& m_style;
    bool m_isFromBelow;
    QPointF m_centre;
    qreal m_radius;
};

} // namespace fieldcore
