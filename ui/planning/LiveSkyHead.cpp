#include "ui/planning/LiveSkyHead.h"

#include "core/resources/StringTable.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/UiText.h"
#include "ui/planning/SkyPlotDlg.h"

#include <QVBoxLayout>

#include <chrono>

namespace fieldcore {

namespace {

QString AgeText(std::chrono::seconds age, bool isStale)
{
    constexpr std::chrono::seconds kInMinutes{120}; // from here on seconds are only noise
    const bool inMinutes = age >= kInMinutes;
    const int id = !isStale    ? text::kSkyAge
                   : inMinutes ? text::kSkyAgeStaleMinutes
                               : text::kSkyAgeStale;
    return ToQt(FormatText(id, static_cast<long long>(age.count() / (inMinutes ? 60 : 1))));
}

RoleLabel* MakeLabel(int id, RoleLabel::Role role)
{
    auto* const label = new RoleLabel(role);
    label->setWordWrap(true);
    Dialog::SetControlId(label, id);
    return label;
}

} // namespace

LiveSkyHead::LiveSkyHead(QWidget* parent)
    : QWidget(parent), m_age(MakeLabel(CSkyPlot::kAge, &Theme::text)),
      m_counts(MakeLabel(CSkyPlot::kCounts, &Theme::text)),
      m_problem(MakeLabel(CSkyPlot::kProblem, &Theme::bad))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* const row = new QHBoxLayout;
    m_counts->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->addWidget(m_age, 2);
    row->addWidget(m_counts, 3);
    column->addLayout(row);
    column->addWidget(m_problem);
}

void LiveSkyHead::Show(const LiveSkyPoll::Now& live, std::optional<Constellation> filter,
                       Clock::Duration now)
{
    const LiveSky& sky = live.sky;
    const bool isStale = sky.IsStale(now);
    if (const auto age = sky.Age(now)) {
        const LiveSky::Counts counts = sky.Count(filter);
        m_age->setText(AgeText(*age, isStale));
        m_counts->setText(
            ToQt(FormatText(text::kSkyCounts, counts.solid, counts.tracked, counts.inView)));
    } else {
        m_age->setText(UiText(text::kSkyAgeUnknown));
        m_counts->setText(UiText(text::kSkyCountsUnknown));
    }
    const bool isGrey = isStale || !sky.HasReading();
    m_age->SetRole(isGrey ? &Theme::stale : &Theme::text);
    m_counts->SetRole(isGrey ? &Theme::stale : &Theme::text);
    const int problem = sky.HasReading() ? LiveSkyTextId(live.state) : 0;
    m_problem->setText(UiText(problem));
    m_problem->setVisible(problem != 0);
}

} // namespace fieldcore
