#include "ui/planning/PlanWindowList.h"

#include "core/resources/StringTable.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QEvent>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr std::size_t kMost = 12; // lines: a window lasts five minutes at least

} // namespace

QString WindowText(const ObservationPlan& plan, const PlanWindow& window)
{
    const auto& computed = plan.Computed();
    const auto clock = [&](int epoch) { return QString::fromStdString(computed.ClockText(epoch)); };
    const auto minutes = (window.last - window.first) * computed.Interval().count();
    const std::wstring from = clock(window.first).toStdWString();
    const std::wstring to = clock(window.last).toStdWString();
    return ToQt(FormatText(text::kPlanWindowLine, from.c_str(), to.c_str(),
                           static_cast<int>(minutes), window.fewestSatellites, window.highestPdop));
}

PlanWindowList::PlanWindowList(QWidget* parent)
    : QWidget(parent), m_heading(new QLabel(UiText(text::kSheetWindows))), m_windows(new QLabel),
      m_conditions(new RoleLabel(&Theme::second))
{
    m_windows->setWordWrap(true);
    m_conditions->setWordWrap(true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 2 * TouchStyle::kGrid, 0, 0);
    layout->setSpacing(TouchStyle::kGrid);
    layout->addWidget(m_heading);
    layout->addWidget(m_windows);
    layout->addWidget(m_conditions);
    UpdateHeading();
}

void PlanWindowList::Show(const PlanDrawing& drawing)
{
    const std::vector<PlanWindow> windows =
        drawing.HasPlan() ? FindWindows(*drawing.plan, drawing.limits) : std::vector<PlanWindow>();
    QStringList lines;
    for (std::size_t i = 0; i < std::min(windows.size(), kMost); ++i) {
        lines += WindowText(*drawing.plan, windows[i]);
    }
    if (!drawing.HasPlan()) {
        lines += QStringLiteral("--");
    } else if (windows.empty()) {
        lines += UiText(text::kSheetNoWindow);
    } else if (windows.size() > kMost) {
        lines +=
            ToQt(FormatText(text::kSheetMoreWindows, static_cast<int>(windows.size() - kMost)));
    }
    m_windows->setText(lines.join(QLatin1Char('\n')));
    const WindowLimits& limits = drawing.limits;
    const AlmanacSource& source = drawing.plan->Calc().Source();
    const QString madeUp = source.origin == AlmanacOrigin::Nominal && drawing.plan->UsesAlmanac()
                               ? QLatin1Char('\n') + ToQt(SourceText(source))
                               : QString();
    m_conditions->setText(
        ToQt(FormatText(text::kSheetConditions, limits.minSatellites, limits.maxPdop,
                        static_cast<int>(limits.minLength.count()))) +
        madeUp);
}

void PlanWindowList::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        UpdateHeading();
    }
}

void PlanWindowList::UpdateHeading()
{
    QFont bold = font();
    bold.setBold(true);
    m_heading->setFont(bold);
}

} // namespace fieldcore
