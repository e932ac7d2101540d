#include "ui/planning/LiveSkyStyle.h"

#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

#include <QPolygonF>

namespace fieldcore {

namespace {

/// Which of the curves' colours a system has.
int CurveOf(Constellation constellation)
{
    switch (constellation) {
    case Constellation::Gps:
        return 0; // blue
    case Constellation::Glonass:
        return 1; // the warm one of the theme
    case Constellation::Sbas:
        return 2; // green
    case Constellation::Other:
        return 3; // purple
    case Constellation::Unknown:
        break;
    }
    return 6; // black or white
}

int CurveOf(GnssSystem system)
{
    switch (system) {
    case GnssSystem::Gps:
        return CurveOf(Constellation::Gps);
    case GnssSystem::Glonass:
        return CurveOf(Constellation::Glonass);
    case GnssSystem::Galileo:
        return CurveOf(Constellation::Other);
    case GnssSystem::BeiDou:
        return 5;
    case GnssSystem::Qzss:
        return 4;
    case GnssSystem::Sbas:
        break;
    }
    return CurveOf(Constellation::Sbas);
}

/// The corners of a sign around the origin, one unit in each direction; none: a circle.
QPolygonF Corners(Constellation constellation)
{
    switch (constellation) {
    case Constellation::Gps:
        break;
    case Constellation::Glonass:
        return {{-0.9, -0.9}, {0.9, -0.9}, {0.9, 0.9}, {-0.9, 0.9}};
    case Constellation::Sbas:
        return {{0.0, -1.2}, {1.15, 0.85}, {-1.15, 0.85}};
    case Constellation::Other:
        return {{0.0, -1.25}, {1.25, 0.0}, {0.0, 1.25}, {-1.25, 0.0}};
    case Constellation::Unknown:
        return {{0.0, 1.2}, {1.15, -0.85}, {-1.15, -0.85}};
    }
    return {};
}

QPolygonF Corners(GnssSystem system)
{
    switch (system) {
    case GnssSystem::Gps:
        break;
    case GnssSystem::Glonass:
        return Corners(Constellation::Glonass);
    case GnssSystem::Galileo:
        return Corners(Constellation::Other);
    case GnssSystem::BeiDou: // lying on its side
        return {{-1.2, 0.0}, {-0.6, -1.0}, {0.6, -1.0}, {1.2, 0.0}, {0.6, 1.0}, {-0.6, 1.0}};
    case GnssSystem::Qzss: // a cross
        return {{-0.4, -1.2}, {0.4, -1.2}, {0.4, -0.4}, {1.2, -0.4}, {1.2, 0.4},   {0.4, 0.4},
                {0.4, 1.2},   {-0.4, 1.2}, {-0.4, 0.4}, {-1.2, 0.4}, {-1.2, -0.4}, {-0.4, -0.4}};
    case GnssSystem::Sbas:
        return Corners(Constellation::Sbas);
    }
    return {};
}

/// @param corners  none: a circle
void DrawSign(QPainter& painter, const QPolygonF& corners, const QPointF& centre, qreal half)
{
    if (corners.isEmpty()) {
        painter.drawEllipse(centre, half, half);
        return;
    }
    QPolygonF sign;
    for (const QPointF& corner : corners) {
        sign.append(centre + corner * half);
    }
    painter.drawPolygon(sign);
}

} // namespace

QColor ConstellationColour(const PlotStyle& style, Constellation constellation)
{
    return style.Curve(CurveOf(constellation));
}

QString ConstellationText(Constellation constellation)
{
    return UiText(text::kSkyGps + static_cast<int>(constellation));
}

QString SatelliteText(const LiveSatellite& satellite)
{
    const int id = text::kSkyLabelGps + static_cast<int>(satellite.constellation);
    return ToQt(FormatText(id, satellite.number));
}

void DrawSatelliteSign(QPainter& painter, const PlotStyle& style, const LiveSatellite& satellite,
                       const QPointF& centre, qreal half, bool isStale)
{
    const QColor colour =
        isStale ? Theme::Current().stale : ConstellationColour(style, satellite.constellation);
    painter.setPen(PlotPen(colour, 2.0));
    painter.setBrush(satellite.IsSolid() ? colour : style.ground);
    DrawSign(painter, Corners(satellite.constellation), centre, half);
    painter.setBrush(Qt::NoBrush);
}

QColor SystemColour(const PlotStyle& style, GnssSystem system)
{
    return style.Curve(CurveOf(system));
}

QColor TrackColour(const PlotStyle& style, bool isGpsAlone, SatelliteId satellite)
{
    return isGpsAlone ? style.Curve(satellite.number - 1) : SystemColour(style, satellite.system);
}

QString SystemText(GnssSystem system)
{
    return UiText(text::kSystemGps + static_cast<int>(system));
}

void DrawSystemSign(QPainter& painter, GnssSystem system, const QPointF& centre, qreal half,
                    const QColor& edge, const QColor& fill)
{
    painter.setPen(PlotPen(edge, 1.5));
    painter.setBrush(fill);
    DrawSign(painter, Corners(system), centre, half);
    painter.setBrush(Qt::NoBrush);
}

} // namespace fieldcore
