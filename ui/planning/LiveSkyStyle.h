#pragma once

#include "core/planning/LiveSky.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QString>

namespace fieldcore {

// How satellites of the live sky look, the same in plot, bars and list. User-interface thread only.

[[nodiscard]] QColor ConstellationColour(const PlotStyle& style, Constellation constellation);
[[nodiscard]] QString ConstellationText(Constellation constellation);
/// "G5", "R18", "S129".
[[nodiscard]] QString SatelliteText(const LiveSatellite& satellite);

/// Draws the sign of a satellite: the shape tells the system, as does the colour; it is filled or
/// hollow as LiveSatellite::IsSolid() says.
/// @param half     of its size, logical pixels
/// @param isStale  grey
void DrawSatelliteSign(QPainter& painter, const PlotStyle& style, const LiveSatellite& satellite,
                       const QPointF& centre, qreal half, bool isStale);

} // namespace fieldcore
