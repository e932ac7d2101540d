#pragma once

#include "core/orbits/SatelliteId.h"
#include "core/planning/LiveSky.h"
#include "ui/planning/PlotStyle.h"

#include <QPainter>
#include <QString>

namespace fieldcore {

// How satellites look, in the live sky's plot, bars and list and in plans of several systems.
// User-interface thread only.

[[nodiscard]] QColor ConstellationColour(const PlotStyle& style, Constellation constellation);
[[nodiscard]] QString ConstellationText(Constellation constellation);
/// "G5", "R18", "S129".
[[nodiscard]] QString SatelliteText(const LiveSatellite& satellite);

/// What the live sky counts as others are Galileo, BeiDou and QZSS here, each with its own.
[[nodiscard]] QColor SystemColour(const PlotStyle& style, GnssSystem system);
/// Of GPS alone each satellite has a colour of its own.
[[nodiscard]] QColor TrackColour(const PlotStyle& style, bool isGpsAlone, SatelliteId satellite);
[[nodiscard]] QString SystemText(GnssSystem system);
/// The same sign in any colours.
void DrawSystemSign(QPainter& painter, GnssSystem system, const QPointF& centre, qreal half,
                    const QColor& edge, const QColor& fill);

/// Draws the sign of a satellite: the shape tells the system, as does the colour; it is filled or
/// hollow as LiveSatellite::IsSolid() says.
/// @param half     of its size, logical pixels
/// @param isStale  grey
void DrawSatelliteSign(QPainter& painter, const PlotStyle& style, const LiveSatellite& satellite,
                       const QPointF& centre, qreal half, bool isStale);

} // namespace fieldcore
