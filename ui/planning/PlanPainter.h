#pragma once

#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QRectF>

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

} // namespace fieldcore
