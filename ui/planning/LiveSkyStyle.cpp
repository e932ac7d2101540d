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
    const QPolygonF corners = Corners(satellite.constellation);
    if (corners.isEmpty()) {
        painter.drawEllipse(centre, half, half);
    } else {
        QPolygonF sign;
        for (const QPointF& corner : corners) {
            sign.append(centre + corner * half);
        }
        painter.drawPolygon(sign);
    }
    painter.setBrush(Qt::NoBrush);
}

} // namespace fieldcore
