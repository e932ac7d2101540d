#include "ui/planning/SessionSheet.h"

#include "ui/controls/UiText.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlanPainter.h"
#include "ui/planning/PlanSheet.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace fieldcore::session_sheet {

namespace {

constexpr qreal kMargin = 56.0; // 15 mm
constexpr qreal kRow = 19.0;
constexpr std::size_t kSitesOfPage = 12;

QString ClockOf(const PlanSearch& search, int epoch)
{
    return QString::fromStdString(ClockText(search, epoch));
}

PlanDrawing DrawingOf(const PlanSession& session)
{
    PlanDrawing drawing;
    drawing.plan = &session.Plan();
    drawing.graph = PlanGraph::SkyPlot;
    drawing.maskDeg = session.Settings().elMaskDeg;
    drawing.limits = session.Limits();
    return drawing;
}

/// Writes @p text on a line of the page.
/// @return the next line
qreal Write(QPainter& painter, qreal y, const QString& text)
{
    const QRectF line(kMargin, y, plan_sheet::kPage.width() - 2.0 * kMargin, kRow);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetricsF(painter.font()).elidedText(text, Qt::ElideRight, line.width()));
    return y + kRow;
}

} // namespace

QStringList Heading(const PlanSession& session)
{
    const PlanDrawing drawing = DrawingOf(session);
    const ObservationPlan& plan = session.Plan();
    const WindowLimits& limits = session.Limits();
    const std::wstring from = QString::fromStdString(plan.Computed().ClockText(0)).toStdWString();
    const std::wstring to =
        QString::fromStdString(plan.Computed().ClockText(plan.Division())).toStdWString();
    QStringList lines{PlanDateText(drawing) + QStringLiteral("  ") +
                          ToQt(FormatText(text::kSheetPeriodValue, from.c_str(), to.c_str(),
                                          static_cast<int>(plan.Computed().Interval().count()))),
                      ToQt(FormatText(text::kSheetConditions, limits.minSatellites, limits.maxPdop,
                                      static_cast<int>(limits.minLength.count())))};
    // What tells of the orbits, as below a graph.
    constexpr qsizetype kOrbitsAt = 5;
    lines += PlanCaption(drawing).mid(kOrbitsAt);
    if (plan.HasClockPerSystem() && !plan.IsGpsAlone()) {
        lines += UiText(text::kSearchOneClock);
    }
    return lines;
}

QString WindowsText(const PlanSearch& search, const SiteSummary& summary)
{
    QStringList windows;
    for (const PlanWindow& window : summary.windows) {
        windows += UiText(text::kPlotWindow)
                       .arg(ClockOf(search, window.first), ClockOf(search, window.last));
    }
    return windows.isEmpty() ? UiText(text::kSheetNoWindow)
                             : windows.join(UiText(text::kPlanListSeparator));
}

QString ValuesText(const SiteSummary& summary)
{
    return UiText(text::kSessionRow)
        .arg(summary.fewestSatellites)
        .arg(summary.highestPdop ? QString::number(*summary.highestPdop, 'f', 1)
                                 : UiText(text::kPlanAlmanacUnknown));
}

QString SkyText(const PlanSession& session, const SiteSky& site)
{
    const int curtain = site.origin == SiteSky::Origin::Own    ? text::kSessionOwnCurtain
                        : site.origin == SiteSky::Origin::Plan ? text::kSessionPlanCurtain
                                                               : text::kSessionOpenSky;
    return UiText(text::kSessionMask).arg(session.Settings().elMaskDeg).arg(UiText(curtain));
}

int PageCount(std::size_t sites)
{
    return static_cast<int>((sites + kSitesOfPage - 1) / kSitesOfPage);
}

void Paint(QPainter& painter, PlanSession& session, std::span<const SiteSky> sites,
           const PlanSearch& search, int page)
{
    const std::size_t first = static_cast<std::size_t>(page) * kSitesOfPage;
    const std::size_t shown = std::min(sites.size() - first, kSitesOfPage);
    const PlotStyle style = PlotStyle::OnPaper();
    const qreal width = plan_sheet::kPage.width() - 2.0 * kMargin;
    painter.setRenderHint(QPainter::Antialiasing);
    QFont title = style.font;
    title.setPixelSize(24);
    title.setBold(true);
    QFont bold = style.font;
    bold.setBold(true);
    painter.setPen(style.text);
    painter.setFont(title);
    painter.drawText(QRectF(kMargin, kMargin, width, 36.0), Qt::AlignCenter,
                     UiText(text::kSessionSheet));
    qreal y = kMargin + 44.0;
    painter.setFont(style.font);
    if (const int pages = PageCount(sites.size()); pages > 1) {
        painter.drawText(QRectF(kMargin, kMargin, width, 36.0), Qt::AlignRight | Qt::AlignVCenter,
                         QStringLiteral("%1/%2").arg(page + 1).arg(pages));
    }
    for (const QString& line : Heading(session)) {
        y = Write(painter, y, line);
    }
    const SiteSummary together = SummaryOf(search, search.Together(), session.Limits());
    painter.setFont(bold);
    y = Write(painter, y + kRow / 2.0, UiText(text::kSessionTogether));
    painter.setFont(style.font);
    y = Write(painter, y,
              WindowsText(search, together) + QStringLiteral("  ") + ValuesText(together)) +
        kRow / 2.0;
    for (std::size_t k = first; k < first + shown; ++k) {
        const SiteSummary summary = SummaryOf(search, k, session.Limits());
        painter.setPen(PlotPen(style.second, 0.75));
        painter.drawLine(QPointF(kMargin, y), QPointF(kMargin + width, y));
        painter.setPen(style.text);
        y = Write(painter, y,
                  ToQt(sites[k].name) + QStringLiteral("  ") + ValuesText(summary) +
                      QStringLiteral("  ") + SkyText(session, sites[k]));
        y = Write(painter, y, WindowsText(search, summary));
    }
    const ObstructionCurtain own = session.Plan().Calc().GetCurtain();
    constexpr std::size_t kFew = 4; // that have room for larger plots
    const std::size_t columns = shown <= kFew ? 2 : 3;
    const std::size_t rows = (shown + columns - 1) / columns;
    y += kRow / 2.0;
    const QSizeF cell(
        width / static_cast<qreal>(columns),
        std::min((plan_sheet::kPage.height() - kMargin - y) / static_cast<qreal>(rows),
                 width / static_cast<qreal>(columns) + 2.0 * kRow));
    for (std::size_t k = 0; k < shown; ++k) {
        const SiteSky& site = sites[first + k];
        session.Plan().Calc().SetObserver(site.observer);
        session.Plan().Calc().SetCurtain(site.curtain);
        session.Plan().ComputeView();
        const std::size_t row = k / columns;
        const QRectF area(QPointF(kMargin + static_cast<qreal>(k % columns) * cell.width(),
                                  y + static_cast<qreal>(row) * cell.height()),
                          cell);
        painter.setFont(style.font);
        painter.setPen(style.text);
        painter.drawText(QRectF(area.topLeft(), QSizeF(area.width(), kRow)), Qt::AlignCenter,
                         QFontMetricsF(style.font)
                             .elidedText(ToQt(site.name), Qt::ElideRight, area.width() - 8.0));
        PaintBareGraph(painter, DrawingOf(session), style, area.adjusted(4.0, kRow, -4.0, -4.0));
    }
    session.Plan().Calc().SetCurtain(own);
    session.Compute();
}

} // namespace fieldcore::session_sheet
