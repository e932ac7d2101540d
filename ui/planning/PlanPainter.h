#pragma once

#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>

#include <optional>

namespace fieldcore {

/// The part of @p area that the graph itself takes: all but the caption beneath.
[[nodiscard]] QRectF GraphArea(const PlanDrawing& drawing, const PlotStyle& style,
                               const QRectF& area);

/// Draws any graph of a plan with its caption, or why there is none. Does not clear the ground. As
/// cheap as it must be to follow a slider: see docs/performance.md. User-interface thread only.
void PaintGraph(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style,
                const QRectF& area);

/// The graph without the caption. It must have no Obstacle().
void PaintBareGraph(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style,
                    const QRectF& area);

/// Where a satellite stands in a graph of tracks at the drawing's time.
/// @param area  of the graph, GraphArea()
/// @return nothing if it is hidden, unless on the sky plot
[[nodiscard]] std::optional<QPointF> PointOfSatellite(const PlanDrawing& drawing,
                                                      const PlotStyle& style, const QRectF& area,
                                                      const SkySatellite& satellite);

/// Marks the place of the cursor, and writes what it tells into a corner of @p area.
/// @param point  nothing: there is no place to mark
void PaintReading(QPainter& painter, const PlotStyle& style, const QRectF& area,
                  const std::optional<QPointF>& point, const QStringList& reading);

} // namespace fieldcore
