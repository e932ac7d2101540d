#pragma once

#include "core/planning/PlanSeries.h"
#include "ui/planning/TimeAxes.h"

#include <QLineF>
#include <QPointF>
#include <QVector>

#include <optional>

namespace fieldcore {

/// A graph of the plan over time: the count, a dilution, or the azimuths or elevations of all
/// satellites. Draws onto screen, picture and paper alike. User-interface thread only.
class TimePlot
{
public:
    /// @param drawing  any graph but the sky plot; must outlive the object, as must @p style
    /// @param area     of all of it, logical pixels
    TimePlot(const PlanDrawing& drawing, const PlotStyle& style, const QRectF& area);

    [[nodiscard]] const TimeAxes& Axes() const { return m_axes; }

    /// Where a value stands: what is beyond the scale stands at its edge.
    [[nodiscard]] QPointF PointOf(double minutes, double value) const;
    /// Where a satellite in @p direction stands in a graph of tracks.
    [[nodiscard]] QPointF PointOfDirection(double minutes, const SkyDirection& direction) const;
    /// Where a satellite stands at an epoch; nothing unless it is usable then.
    [[nodiscard]] std::optional<QPointF> PointOfSatellite(int prnIndex, int epoch) const;

    /// A satellite's line; an azimuth that passes north is broken there.
    [[nodiscard]] QVector<QLineF> LinesOf(const TrackRun& run) const;

    /// What is drawn does not clear its ground.
    void Draw(QPainter& painter) const;

private:
    void DrawCount(QPainter& painter) const;
    void DrawDilution(QPainter& painter) const;
    void DrawGap(QPainter& painter, double fromMin, double toMin) const;
    void DrawTracks(QPainter& painter) const;
    void Shade(QPainter& painter, double from, double to) const;
    void DrawLimit(QPainter& painter, double value, const QString& text, bool isUpper) const;
    void DrawBeyond(QPainter& painter, double fromMin, double toMin, double highest) const;
    void DrawHead(QPainter& painter, const QPointF& end) const;
    [[nodiscard]] double ValueOf(const SkyDirection& direction) const;
    [[nodiscard]] double IntervalMin() const { return m_drawing.IntervalMin(); }

    const PlanDrawing& m_drawing;
    const PlotStyle& m_style;
    TimeAxes m_axes;
};

} // namespace fieldcore
