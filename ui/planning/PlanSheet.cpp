#include "ui/planning/PlanSheet.h"

#include "core/planning/AlmanacState.h"
#include "core/platform/Degrees.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanPainter.h"

#include <QFontMetricsF>
#include <QPair>
#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace fieldcore::plan_sheet {

namespace {

constexpr qreal kMargin = 56.0; // 15 mm
constexpr qreal kRow = 20.0;
constexpr qreal kRuleWidth = 0.75;
/// As many as the page has room for.
constexpr std::size_t kMostWindows = 10;

QString Clock(const PlanDrawing& drawing, int epoch)
{
    return QString::fromStdString(drawing.plan->Computed().ClockText(epoch));
}

QString PlaceText(const Observer& observer)
{
    const double latitude = DegreesOf(observer.latitudeRad);
    const double longitude = DegreesOf(observer.longitudeRad);
    return ToQt(
        FormatText(text::kSheetPlaceValue,
                   Text(latitude < 0.0 ? text::kSheetSouthLatitude : text::kSheetNorthLatitude),
                   std::abs(latitude),
                   Text(longitude < 0.0 ? text::kSheetWestLongitude : text::kSheetEastLongitude),
                   std::abs(longitude), observer.heightM));
}

/// What the title block says: names and values.
std::vector<QPair<QString, QString>> TitleBlock(const PlanDrawing& drawing)
{
    const ObservationPlan& plan = *drawing.plan;
    const AlmanacState almanac = StateOfAlmanac(plan);
    const std::wstring from = Clock(drawing, 0).toStdWString();
    const std::wstring to = Clock(drawing, plan.Division()).toStdWString();
    const std::wstring date = DateText(almanac.time).toStdWString();
    const std::wstring age = AlmanacAgeText(drawing).toStdWString();
    const bool hasCurtain = HasObstruction(plan.Calc().GetCurtain());
    std::vector<QPair<QString, QString>> block{
        {UiText(text::kSheetSite), ToQt(drawing.site)},
        {UiText(text::kSheetPlace), drawing.isPlaceKnown ? PlaceText(plan.Calc().GetObserver())
                                                         : UiText(text::kPlanAlmanacUnknown)},
        {UiText(text::kSheetDate), PlanDateText(drawing)},
        {UiText(text::kSheetPeriod),
         ToQt(FormatText(text::kSheetPeriodValue, from.c_str(), to.c_str(),
                         static_cast<int>(plan.Computed().Interval().count())))},
        {UiText(text::kSheetMask),
         ToQt(FormatText(text::kPlotDegrees, static_cast<double>(drawing.maskDeg)))},
        {UiText(text::kSheetCurtain), UiText(hasCurtain ? text::kSheetYes : text::kSheetNo)},
    };
    if (!plan.IsGpsAlone()) {
        block.emplace_back(UiText(text::kSheetSystems), SystemsText(plan));
        block.emplace_back(UiText(text::kSheetOrbits), MessageAgesText(plan));
    }
    if (plan.UsesAlmanac()) {
        block.emplace_back(UiText(text::kSheetAlmanac),
                           ToQt(FormatText(text::kSheetAlmanacValue, date.c_str(), age.c_str(),
                                           almanac.satellites, almanac.healthy)));
        block.emplace_back(UiText(text::kSheetSource), ToQt(SourceText(almanac.source)));
    }
    return block;
}

/// Draws names and values as a ruled block.
/// @return its lower edge
qreal DrawTitle(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style)
{
    constexpr qreal kNameWidth = 90.0;
    constexpr qreal kTitleHeight = 36.0;
    const qreal width = kPage.width() - 2.0 * kMargin;
    QFont title = style.font;
    title.setPixelSize(24);
    title.setBold(true);
    painter.setFont(title);
    painter.setPen(style.text);
    painter.drawText(QRectF(kMargin, kMargin, width, kTitleHeight), Qt::AlignCenter,
                     UiText(text::kSheetTitle));
    qreal y = kMargin + kTitleHeight + 8.0;
    const qreal top = y;
    painter.setFont(style.font);
    for (const auto& [name, value] : TitleBlock(drawing)) {
        painter.setPen(PlotPen(style.second, kRuleWidth));
        painter.drawLine(QPointF(kMargin, y), QPointF(kMargin + width, y));
        const QRectF row(kMargin + 8.0, y, width - 16.0, kRow);
        painter.setPen(style.second);
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, name);
        painter.setPen(style.text);
        const QRectF rest = row.adjusted(kNameWidth, 0.0, 0.0, 0.0);
        painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter,
                         QFontMetricsF(style.font).elidedText(value, Qt::ElideRight, rest.width()));
        y += kRow;
    }
    painter.setPen(PlotPen(style.second, kRuleWidth));
    painter.drawRect(QRectF(kMargin, top, width, y - top));
    painter.drawLine(QPointF(kMargin + kNameWidth, top), QPointF(kMargin + kNameWidth, y));
    return y;
}

/// @param y  upper edge
void DrawWindows(QPainter& painter, const PlanDrawing& drawing, const PlotStyle& style, qreal y)
{
    const std::vector<PlanWindow> windows = FindWindows(*drawing.plan, drawing.limits);
    const WindowLimits& limits = drawing.limits;
    const qreal width = kPage.width() - 2.0 * kMargin;
    painter.setFont(style.font);
    painter.setPen(style.text);
    const QRectF heading(kMargin, y, width, kRow);
    painter.drawText(heading, Qt::AlignLeft | Qt::AlignVCenter, UiText(text::kSheetWindows));
    painter.setPen(style.second);
    painter.setFont(style.small);
    painter.drawText(heading, Qt::AlignRight | Qt::AlignVCenter,
                     ToQt(FormatText(text::kSheetConditions, limits.minSatellites, limits.maxPdop,
                                     static_cast<int>(limits.minLength.count()))));
    painter.setFont(style.font);
    y += kRow;
    constexpr std::array kColumns{text::kSheetFrom, text::kSheetTo, text::kSheetLength,
                                  text::kSheetFewest, text::kSheetHighestPdop};
    const qreal column = width / static_cast<qreal>(kColumns.size());
    const auto drawRow = [&](const QStringList& cells, const QColor& colour) {
        painter.setPen(PlotPen(style.second, kRuleWidth));
        painter.drawLine(QPointF(kMargin, y), QPointF(kMargin + width, y));
        painter.setPen(colour);
        for (qsizetype k = 0; k < cells.size(); ++k) {
            painter.drawText(QRectF(kMargin + static_cast<qreal>(k) * column, y, column, kRow),
                             Qt::AlignCenter, cells[k]);
        }
        y += kRow;
    };
    QStringList names;
    for (const int id : kColumns) {
        names += UiText(id);
    }
    drawRow(names, style.second);
    for (std::size_t k = 0; k < std::min(windows.size(), kMostWindows); ++k) {
        const PlanWindow& window = windows[k];
        const int minutes = static_cast<int>((window.last - window.first) *
                                             drawing.plan->Computed().Interval().count());
        drawRow({Clock(drawing, window.first), Clock(drawing, window.last),
                 ToQt(FormatText(text::kSheetMinutes, minutes)),
                 QString::number(window.fewestSatellites),
                 QString::number(window.highestPdop, 'f', 2)},
                style.text);
    }
    painter.setPen(PlotPen(style.second, kRuleWidth));
    painter.drawLine(QPointF(kMargin, y), QPointF(kMargin + width, y));
    QString rest = windows.empty() ? UiText(text::kSheetNoWindow) : QString();
    if (windows.size() > kMostWindows) {
        rest = ToQt(
            FormatText(text::kSheetMoreWindows, static_cast<int>(windows.size() - kMostWindows)));
    }
    painter.setPen(style.text);
    painter.drawText(QRectF(kMargin, y, width, kRow), Qt::AlignLeft | Qt::AlignVCenter, rest);
}

} // namespace

void Paint(QPainter& painter, const PlanDrawing& drawing)
{
    const PlotStyle style = PlotStyle::OnPaper();
    const QString obstacle = drawing.Obstacle();
    if (!obstacle.isEmpty()) {
        PaintGraph(painter, drawing, style, QRectF(QPointF(), kPage));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal left = kMargin;
    const qreal width = kPage.width() - 2.0 * kMargin;
    const qreal skyTop = DrawTitle(painter, drawing, style) + 12.0;
    constexpr qreal kSkyHeight = 330.0;
    constexpr qreal kGap = 12.0;
    constexpr qreal kTallestPlot = 230.0;
    const std::size_t windows =
        std::min(FindWindows(*drawing.plan, drawing.limits).size(), kMostWindows);
    // The table's heading, its names and what stands beneath are three more rows.
    const qreal tableHeight = kRow * (static_cast<qreal>(windows) + 3.0);
    const qreal plotTop = skyTop + kSkyHeight + kGap;
    const qreal plotHeight =
        std::min((kPage.height() - kMargin - tableHeight - plotTop) / 2.0 - kGap, kTallestPlot);
    PlanDrawing part = drawing;
    part.graph = PlanGraph::SkyPlot;
    PaintBareGraph(painter, part, style, QRectF(left, skyTop, width, kSkyHeight));
    part.graph = PlanGraph::Count;
    PaintBareGraph(painter, part, style, QRectF(left, plotTop, width, plotHeight));
    part.graph = PlanGraph::Pdop;
    PaintBareGraph(painter, part, style,
                   QRectF(left, plotTop + plotHeight + kGap, width, plotHeight));
    DrawWindows(painter, drawing, style, plotTop + 2.0 * (plotHeight + kGap));
}

} // namespace fieldcore::plan_sheet
