#include "ui/planning/PlotStyle.h"

#include "ui/controls/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fieldcore {

namespace {

constexpr int kPaperFontPixels = 12; // 9 pt at 96 to the inch

QColor Mixed(const QColor& ground, const QColor& colour, double part)
{
    const auto mix = [part](int from, int to) {
        return from + static_cast<int>(std::lround((to - from) * part));
    };
    return {mix(ground.red(), colour.red()), mix(ground.green(), colour.green()),
            mix(ground.blue(), colour.blue())};
}

PlotStyle StyleOf(const Theme& theme, const QColor& ground, const QFont& font, int pixels)
{
    constexpr int kSmallOf16 = 13;
    PlotStyle style;
    style.ground = ground;
    style.text = theme.text;
    style.second = theme.second;
    style.grid = Mixed(ground, theme.second, 0.22);
    style.shade = Mixed(ground, theme.second, 0.14);
    style.accent = theme.accent;
    style.good = theme.good;
    style.attention = theme.attention;
    style.curves = theme.curves;
    style.font = font;
    style.font.setPixelSize(pixels);
    style.small = font;
    style.small.setPixelSize(std::max(pixels * kSmallOf16 / 16, 1));
    return style;
}

} // namespace

PlotStyle PlotStyle::OnScreen(const QColor& ground, const QFont& font)
{
    const Theme& used = Theme::Current();
    const bool isLight = ground.lightness() >= 128;
    const Theme& theme = ground == used.ground ? used : isLight ? Theme::Daylight() : Theme::Dark();
    return StyleOf(theme, ground, font, std::max(QFontInfo(font).pixelSize(), 1));
}

PlotStyle PlotStyle::OnPaper()
{
    return StyleOf(Theme::Daylight(), Qt::white, QApplication::font(), kPaperFontPixels);
}

const QColor& PlotStyle::Curve(int index) const
{
    return curves[static_cast<std::size_t>(index) % curves.size()];
}

QColor PlotStyle::Faded(const QColor& colour, double part) const
{
    return Mixed(ground, colour, std::clamp(part, 0.0, 1.0));
}

QPen PlotPen(const QColor& colour, qreal width, Qt::PenStyle style)
{
    QPen pen(colour, width, style, Qt::FlatCap, Qt::RoundJoin);
    if (style == Qt::CustomDashLine) {
        pen.setDashPattern({6.0, 4.0});
    }
    return pen;
}

QRectF DrawCentred(QPainter& painter, const QPointF& centre, const QString& text)
{
    const QFontMetricsF metrics(painter.font());
    QRectF area(0.0, 0.0, metrics.horizontalAdvance(text) + 2.0, metrics.height());
    area.moveCenter(centre);
    painter.drawText(area, Qt::AlignCenter | Qt::TextDontClip, text);
    return area;
}

LabelPlacer::LabelPlacer(const PlotStyle& style, const QRectF& bounds)
    : m_style(style), m_bounds(bounds)
{}

void LabelPlacer::Reserve(const QRectF& area)
{
    m_taken.push_back(area);
}

bool LabelPlacer::IsFree(const QRectF& area) const
{
    return m_bounds.contains(area) &&
           std::none_of(m_taken.begin(), m_taken.end(),
                        [&](const QRectF& taken) { return taken.intersects(area); });
}

bool LabelPlacer::Draw(QPainter& painter, const QPointF& point, const QString& text, qreal away)
{
    // To the right first, then the other sides, then the corners.
    constexpr std::array<std::array<qreal, 2>, 8> kSides{{{1.0, 0.0},
                                                          {-1.0, 0.0},
                                                          {0.0, -1.0},
                                                          {0.0, 1.0},
                                                          {1.0, -1.0},
                                                          {1.0, 1.0},
                                                          {-1.0, -1.0},
                                                          {-1.0, 1.0}}};
    const QFontMetricsF metrics(m_style.small);
    const qreal width = metrics.horizontalAdvance(text) + 2.0;
    const qreal height = metrics.capHeight() + 5.0;
    for (const auto& side : kSides) {
        QRectF area(0.0, 0.0, width, height);
        area.moveCenter(point +
                        QPointF(side[0] * (away + width / 2.0), side[1] * (away + height / 2.0)));
        if (!IsFree(area)) {
            continue;
        }
        QColor behind = m_style.ground;
        behind.setAlpha(190); // what lies under a number still shows, but does not disturb it
        painter.fillRect(area, behind);
        painter.setFont(m_style.small);
        painter.setPen(m_style.text);
        DrawCentred(painter, area.center(), text);
        m_taken.push_back(area);
        return true;
    }
    return false;
}

} // namespace fieldcore
