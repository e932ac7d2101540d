#include "ui/planning/PlanHeader.h"

#include "core/planning/AlmanacState.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/Icon.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

QString DateOf(std::chrono::year_month_day date)
{
    return QString::asprintf("%02d/%02d/%02d", static_cast<int>(date.year()),
                             static_cast<int>(static_cast<unsigned>(date.month())),
                             static_cast<int>(static_cast<unsigned>(date.day())));
}

/// "日曜日（今日）"
QString DayText(std::chrono::sys_days day, std::chrono::sys_days today)
{
    const std::wstring weekday =
        Text(text::kDaySunday + static_cast<int>(std::chrono::weekday(day).c_encoding()));
    const auto ahead = (day - today).count();
    const int near = ahead == -1  ? text::kDayYesterday
                     : ahead == 0 ? text::kPlanToday
                     : ahead == 1 ? text::kDayTomorrow
                                  : 0;
    return ToQt(near == 0 ? FormatText(text::kDayPlain, weekday.c_str())
                          : FormatText(text::kDayNear, weekday.c_str(), Text(near)));
}

} // namespace

PlanHeader::PlanHeader(QWidget* parent)
    : QWidget(parent), m_top(new QHBoxLayout), m_site(new QLabel),
      m_siteNote(new RoleLabel(&Theme::attention, UiText(text::kPlanSiteMissing))),
      m_date(new QLabel), m_weekday(new QLabel), m_today(MakeButton({}, text::kPlanToday)),
      m_almanac(new QLabel(UiText(text::kPlanAlmanac))), m_almanacDate(new QLabel),
      m_source(new QLabel), m_almanacSign(new QLabel), m_age(new QLabel)
{
    Dialog::SetControlId(m_date, kPlanDateId);
    Dialog::SetControlId(m_almanacDate, kAlmanacDateId);
    m_site->setWordWrap(true);
    m_site->setTextFormat(Qt::PlainText);
    m_site->setAccessibleName(UiText(text::kPlanPageSite));
    m_date->setAlignment(Qt::AlignCenter);
    m_date->setAccessibleName(UiText(text::kPlanDate));
    m_weekday->setAlignment(Qt::AlignCenter);
    m_almanacDate->setAccessibleName(UiText(text::kPlanAlmanac));
    m_source->setTextFormat(Qt::PlainText);
    m_source->setWordWrap(true);
    m_source->setAccessibleName(UiText(text::kSheetSource));
    m_age->setWordWrap(true);

    QAbstractButton* const previous = MakeButton(QStringLiteral("back"), text::kPlanPreviousDay);
    QAbstractButton* const next = MakeButton(QStringLiteral("forward"), text::kPlanNextDay);
    QAbstractButton* const calendar = MakeButton(QStringLiteral("calendar"), text::kPlanCalendar);
    connect(previous, &QAbstractButton::clicked, this, [this] { Q_EMIT DayStepped(-1); });
    connect(next, &QAbstractButton::clicked, this, [this] { Q_EMIT DayStepped(1); });
    connect(calendar, &QAbstractButton::clicked, this, &PlanHeader::CalendarRequested);
    connect(m_today, &QAbstractButton::clicked, this, &PlanHeader::TodayRequested);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGrid / 2);
    m_top->setSpacing(kGrid);
    auto* const head = new QVBoxLayout; // beside the tools, which are as high as all of it
    head->setSpacing(0);
    head->addWidget(m_site);
    m_top->addLayout(head, 1);
    layout->addLayout(m_top);
    m_siteNote->setWordWrap(true);
    m_siteNote->hide();
    layout->addWidget(m_siteNote);
    auto* const day = new QHBoxLayout;
    day->setSpacing(kGrid);
    day->addWidget(previous);
    auto* const date = new QVBoxLayout;
    date->setSpacing(0);
    date->addWidget(m_date);
    date->addWidget(m_weekday);
    day->addLayout(date, 1);
    day->addWidget(next);
    day->addWidget(m_today);
    day->addWidget(calendar);
    layout->addLayout(day);
    auto* const almanac = new QHBoxLayout;
    almanac->setSpacing(kGrid / 2);
    almanac->addWidget(m_almanacSign);
    almanac->addWidget(m_almanac);
    almanac->addWidget(m_almanacDate);
    almanac->addWidget(m_source, 1);
    head->addLayout(almanac);
    head->addWidget(m_age);
    UpdateLook();
}

QAbstractButton* PlanHeader::MakeButton(const QString& icon, int nameId)
{
    auto* const button = new QToolButton;
    if (icon.isEmpty()) {
        button->setText(UiText(nameId));
    } else {
        button->setIcon(ThemeIcon(icon));
        button->setIconSize({3 * kGrid, 3 * kGrid});
    }
    button->setMinimumSize(6 * kGrid, 6 * kGrid);
    button->setToolTip(UiText(nameId));
    button->setAccessibleName(UiText(nameId));
    return button;
}

void PlanHeader::AddTools(QWidget* tools)
{
    tools->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    tools->setAutoFillBackground(false);
    m_top->addWidget(tools);
}

void PlanHeader::ShowSite(const QString& site, bool isKnown)
{
    m_site->setText(site);
    m_siteNote->setVisible(!isKnown);
}

void PlanHeader::ShowDates(const PlanDrawing& drawing, std::chrono::sys_days today)
{
    const std::chrono::sys_days day = drawing.plan->Period().date;
    m_date->setText(DateOf(drawing.plan->Period().date));
    m_weekday->setText(DayText(day, today));
    m_today->setEnabled(day != today);
    const AlmanacState almanac = StateOfAlmanac(*drawing.plan);
    if (almanac.satellites == 0) {
        m_almanacDate->setText(UiText(text::kPlanAlmanacUnknown));
        m_age->setText(UiText(text::kPlanAlmanacMissing));
    } else {
        m_almanacDate->setText(DateOf(almanac.Day()));
        m_age->setText(AlmanacAgeText(drawing, today));
    }
    m_source->setText(almanac.satellites == 0 ? QString() : ToQt(SourceText(almanac.source)));
    const ObservationPlan& plan = *drawing.plan;
    m_isMadeUp = plan.UsesAlmanac() && almanac.source.origin == AlmanacOrigin::Nominal;
    m_isAlmanacBad = plan.IsGpsAlone() && (almanac.satellites == 0 || almanac.isOld);
    m_almanac->setVisible(plan.IsGpsAlone());
    m_almanacDate->setVisible(plan.IsGpsAlone());
    if (!plan.IsGpsAlone()) {
        m_source->setText(
            SystemsText(plan) +
            (m_isMadeUp ? UiText(text::kPlanListSeparator) + m_source->text() : QString()));
        m_age->setText(MessageAgesText(plan));
        for (std::size_t k = 0; k < kGnssSystems; ++k) {
            m_isAlmanacBad = m_isAlmanacBad || (plan.Systems().test(k) &&
                                                plan.StateOf(static_cast<GnssSystem>(k)).isStale);
        }
    }
    UpdateLook();
}

void PlanHeader::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        UpdateLook();
    }
}

void PlanHeader::UpdateLook()
{
    const Theme& theme = Theme::Current();
    QFont large = font();
    large.setPixelSize(fontInfo().pixelSize() * 5 / 4);
    large.setBold(true);
    m_site->setFont(large);
    m_date->setFont(large);
    QFont small = font();
    small.setPixelSize(fontInfo().pixelSize() * 13 / 16);
    for (QLabel* const label : {m_weekday, m_almanac, m_almanacDate, m_source, m_age}) {
        label->setFont(small);
    }
    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, m_isAlmanacBad ? theme.attention : theme.second);
    m_age->setPalette(palette);
    palette.setColor(QPalette::WindowText, m_isMadeUp ? theme.attention : theme.second);
    m_source->setPalette(palette);
    const int edge = fontInfo().pixelSize();
    m_almanacSign->setPixmap(DrawIcon(QStringLiteral("exclamation"), edge, devicePixelRatioF(),
                                      theme.attention, theme.attention));
    m_almanacSign->setVisible(m_isAlmanacBad || m_isMadeUp);
}

} // namespace fieldcore
