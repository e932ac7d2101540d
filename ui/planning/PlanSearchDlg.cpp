#include "ui/planning/PlanSearchDlg.h"

#include "core/host/MesBox.h"
#include "core/orbits/SystemTime.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlanSystemsBar.h"
#include "ui/planning/SiteChoice.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kWeek = 7;
constexpr int kSmallPixels = 13;
constexpr int kWide = 900; // from here on a day has room for letters of the usual size

/// @p inner, from top to bottom where there is no room for all of it.
QScrollArea* Scrolling(QWidget* inner)
{
    auto* const scroll = new QScrollArea;
    scroll->setWidget(inner);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return scroll;
}

/// A field below its name, in one of the two columns of a form.
void AddField(QGridLayout& grid, int place, int textId, QWidget* field)
{
    auto* const label = new QLabel(UiText(textId));
    label->setBuddy(field);
    field->setAccessibleName(label->text());
    if (auto* const spin = qobject_cast<CSpinDouble*>(field)) {
        spin->SetName(label->text()); // of the box inside, which has the focus
    }
    grid.addWidget(label, 2 * (place / 2), place % 2);
    grid.addWidget(field, 2 * (place / 2) + 1, place % 2);
}

QString ClockOf(const PlanSearch& search, int epoch)
{
    return QString::fromStdString(ClockText(search, epoch));
}

/// "11/22"
QString DayOf(std::chrono::sys_days day)
{
    const std::chrono::year_month_day date(day);
    return QStringLiteral("%1/%2")
        .arg(static_cast<unsigned>(date.month()))
        .arg(static_cast<unsigned>(date.day()));
}

/// Which systems have orbits that are too old before the search ends.
QStringList StaleText(const ObservationPlan& plan, const PlanSearch& search)
{
    const double endS = GpsSecondsOfUtc(search.UtcAt(search.EpochCount() - 1));
    QStringList names;
    SystemState oldest;
    for (std::size_t k = 0; k < kGnssSystems && !plan.IsGpsAlone(); ++k) {
        const auto system = static_cast<GnssSystem>(k);
        const SystemState state = plan.GetConstellations().StateOf(system, endS);
        if (plan.Systems().test(k) && state.satellites > 0 && state.isStale) {
            names += SystemText(system);
            oldest = state.ageS > oldest.ageS ? state : oldest;
        }
    }
    return names.isEmpty()
               ? QStringList()
               : QStringList(names.join(UiText(text::kPlanListSeparator)) + QStringLiteral(": ") +
                             UiText(text::kSystemStale).arg(AgeText(oldest)));
}

QString EasedText(const std::optional<WindowLimits>& eased, const WindowLimits& limits)
{
    if (!eased) {
        return UiText(text::kSearchEaseNothing);
    }
    if (eased->maxPdop != limits.maxPdop) {
        return UiText(text::kSearchEasePdop).arg(eased->maxPdop, 0, 'f', 1);
    }
    if (eased->minSatellites != limits.minSatellites) {
        return UiText(text::kSearchEaseCount).arg(eased->minSatellites);
    }
    return UiText(text::kSearchEaseLength).arg(eased->minLength.count());
}

} // namespace

PlanSearchDlg::PlanSearchDlg(PlanSession& session, QWidget* parent)
    : Dialog(parent, Extent::Whole), m_session(session), m_pages(new QStackedWidget),
      m_systems(new PlanSystemsBar), m_siteList(new SiteChoice(session)), m_days(new LabelSpin),
      m_start(new LabelSpin), m_hoursSpin(new LabelSpin), m_minutes(new CSpinDouble),
      m_fewest(new CSpinDouble), m_pdop(new CSpinDouble), m_progress(new CTextProgressCtrl),
      m_cancel(MakeRowButton(text::kButtonCancel)), m_go(MakeRowButton(text::kSearchStart)),
      m_site(new CTComboBox), m_conditions(new QLabel), m_best(new QLabel), m_calendar(new QWidget),
      m_notes(new RoleLabel(&Theme::attention))
{
    setWindowTitle(UiText(text::kSearchDays));
    setAccessibleName(windowTitle());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, kGrid, 12, kGrid);
    layout->addWidget(m_pages);
    m_pages->addWidget(BuildForm());
    m_pages->addWidget(BuildResult());
    m_slices.setInterval(0);
    connect(&m_slices, &QTimer::timeout, this, &PlanSearchDlg::Slice);
    connect(m_systems, &PlanSystemsBar::Chosen, this, [this](GnssSystem system) {
        ToggleSystem(m_session, system);
        m_session.Compute();
        m_systems->Show(m_session.Plan());
    });
    m_systems->Show(m_session.Plan());
}

QWidget* PlanSearchDlg::BuildForm()
{
    constexpr int kDayH = 24;
    const SearchChoice& before = m_session.Settings().search;
    m_days->setRange(1, SearchHours::kMostDays);
    m_days->SetLabel([](int days) { return ToQt(FormatText(text::kSearchDaysValue, days)); });
    m_days->setValue(before.days);
    m_start->setRange(0, kDayH - 1);
    m_start->SetLabel(LabelSpin::HourLabel);
    m_start->setValue(before.startHour);
    m_hoursSpin->setRange(1, kDayH);
    m_hoursSpin->SetLabel([](int hours) { return ToQt(FormatText(text::kPlanHoursValue, hours)); });
    m_hoursSpin->setValue(before.hours);
    const WindowLimits& limits = m_session.Limits();
    m_minutes->SetRange(WindowLimits::kShortest.count(), WindowLimits::kLongest.count());
    m_minutes->SetStep(10.0);
    m_minutes->SetUnit(UiText(text::kPlanMinutes));
    m_minutes->SetValue(static_cast<double>(limits.minLength.count()));
    m_fewest->SetRange(WindowLimits::kFewestSatellites, WindowLimits::kMostSatellites);
    m_fewest->SetValue(limits.minSatellites);
    m_pdop->SetRange(WindowLimits::kLowestPdop, WindowLimits::kHighestPdop);
    m_pdop->SetDecimals(1);
    m_pdop->SetStep(0.5);
    m_pdop->SetValue(limits.maxPdop);

    auto* const inner = new QWidget;
    auto* const form = new QVBoxLayout(inner);
    form->setContentsMargins(0, 0, 0, 0);
    form->setSpacing(kGrid);
    form->addWidget(m_systems);
    form->addWidget(m_siteList, 1);
    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(kGrid);
    grid->setVerticalSpacing(kGrid / 2);
    AddField(*grid, 0, text::kPlanStart, m_start);
    AddField(*grid, 1, text::kPlanHours, m_hoursSpin);
    AddField(*grid, 2, text::kSearchDaysCount, m_days);
    AddField(*grid, 3, text::kPlanShortestWindow, m_minutes);
    AddField(*grid, 4, text::kPlanFewestSatellites, m_fewest);
    AddField(*grid, 5, text::kPlanHighestPdop, m_pdop);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    form->addLayout(grid);

    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Scrolling(inner), 1);
    m_progress->hide();
    layout->addWidget(m_progress);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(m_cancel);
    row->addWidget(m_go);
    m_go->setDefault(true);
    layout->addLayout(row);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        if (m_slices.isActive()) {
            Stop();
        } else {
            Close(kCancelled);
        }
    });
    connect(m_go, &QPushButton::clicked, this, &PlanSearchDlg::Start);
    return page;
}

QWidget* PlanSearchDlg::BuildResult()
{
    for (QLabel* const label : {m_conditions, m_best, m_notes}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
    }
    m_site->setAccessibleName(UiText(text::kSearchSites));
    m_site->setMinimumHeight(TouchStyle::kTarget);
    auto* const inner = new QWidget;
    auto* const found = new QVBoxLayout(inner);
    found->setContentsMargins(0, 0, 0, 0);
    found->setSpacing(kGrid);
    found->addWidget(m_conditions);
    found->addWidget(m_best);
    found->addWidget(m_calendar, 1);
    found->addWidget(m_notes);
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGrid);
    layout->addWidget(m_site);
    layout->addWidget(Scrolling(inner), 1);
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    QPushButton* const change = MakeRowButton(text::kSearchChange);
    QPushButton* const close = MakeRowButton(text::kButtonClose);
    row->addWidget(change);
    row->addWidget(close);
    layout->addLayout(row);
    connect(change, &QPushButton::clicked, this, [this] { m_pages->setCurrentIndex(0); });
    connect(close, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    connect(m_site, &QComboBox::currentIndexChanged, this, &PlanSearchDlg::ShowCalendar);
    return page;
}

WindowLimits PlanSearchDlg::Limits() const
{
    WindowLimits limits;
    limits.minSatellites = static_cast<int>(m_fewest->GetValue());
    limits.maxPdop = m_pdop->GetValue();
    limits.minLength = std::chrono::minutes(std::lround(m_minutes->GetValue()));
    return Fitted(limits);
}

void PlanSearchDlg::Start()
{
    m_sites = SkiesOfSites(m_session, m_siteList->Chosen());
    if (m_sites.empty()) {
        CMesBox(m_session.GetEnvironment().GetHost()).Warn(text::kSearchNoSite, text::kSearchDays);
        return;
    }
    m_hours = {m_session.Date(), m_days->value(), m_start->value(), m_hoursSpin->value()};
    m_session.SetSearch({m_hours.days, m_hours.startHour, m_hours.hours, m_siteList->Chosen()});
    m_session.SetLimits(Limits());
    m_search.emplace(SearchOf(m_session.Plan(), std::span<const SiteSky>(m_sites), m_hours));
    m_progress->SetRange(0, static_cast<int>(m_search->Steps()));
    ShowSearching(true);
    m_slices.start();
}

void PlanSearchDlg::Stop()
{
    m_slices.stop();
    m_search.reset();
    ShowSearching(false);
}

void PlanSearchDlg::ShowSearching(bool isSearching)
{
    m_progress->setVisible(isSearching);
    m_go->setEnabled(!isSearching);
    m_cancel->setText(UiText(isSearching ? text::kSearchStop : text::kButtonCancel));
}

void PlanSearchDlg::Slice()
{
    constexpr int kSliceMs = 20;
    QElapsedTimer timer;
    timer.start();
    bool isMore = true;
    while (isMore && timer.elapsed() < kSliceMs) {
        isMore = m_search->Step();
    }
    const int done = static_cast<int>(m_search->StepsDone());
    m_progress->SetPos(done);
    m_progress->SetText(UiText(text::kSearchProgress).arg(done).arg(m_search->Steps()));
    if (!isMore) {
        m_slices.stop();
        ShowSearching(false);
        ShowResult();
    }
}

void PlanSearchDlg::ShowResult()
{
    {
        const QSignalBlocker quiet(m_site);
        m_site->clear();
        const bool isOne = m_sites.size() == 1;
        if (!isOne) {
            m_site->AddEntry(UiText(text::kSessionTogether),
                             static_cast<int>(m_search->Together()));
        }
        for (std::size_t k = 0; k < m_sites.size(); ++k) {
            m_site->AddEntry(ToQt(m_sites[k].name), static_cast<int>(k));
        }
    }
    const WindowLimits limits = Limits();
    m_conditions->setText(
        UiText(text::kSearchConditions)
            .arg(DateText(std::chrono::sys_days(m_hours.first)))
            .arg(m_hours.days)
            .arg(m_hours.startHour)
            .arg(m_hours.hours) +
        QLatin1Char('\n') +
        ToQt(FormatText(text::kSheetConditions, limits.minSatellites, limits.maxPdop,
                        static_cast<int>(limits.minLength.count()))) +
        QLatin1Char('\n') + SystemsText(m_session.Plan()));
    QStringList open;
    QStringList notes;
    for (const SiteSky& site : m_sites) {
        if (site.error) {
            const std::wstring error = FromUtf8(site.error->message);
            notes += ToQt(FormatText(text::kSearchCurtainBad, site.name.c_str(), error.c_str()));
        } else if (site.origin == SiteSky::Origin::Open) {
            open += ToQt(site.name);
        }
    }
    if (!open.isEmpty()) {
        constexpr int kMostNames = 3;
        const QString more = open.size() > kMostNames
                                 ? UiText(text::kSessionMore).arg(open.size() - kMostNames)
                                 : QString();
        QStringList named = open.mid(0, kMostNames);
        if (!more.isEmpty()) {
            named += more;
        }
        notes += UiText(text::kSearchOpenSky).arg(named.join(UiText(text::kPlanListSeparator)));
    }
    notes += StaleText(m_session.Plan(), *m_search);
    if (m_session.Plan().HasClockPerSystem() && !m_session.Plan().IsGpsAlone()) {
        notes += UiText(text::kSearchOneClock);
    }
    m_notes->setText(notes.join(QLatin1Char('\n')));
    m_notes->setVisible(!notes.isEmpty());
    ShowCalendar();
    m_pages->setCurrentIndex(1);
}

std::size_t PlanSearchDlg::Site() const
{
    return static_cast<std::size_t>(std::max(m_site->GetCode(), 0));
}

void PlanSearchDlg::ShowCalendar()
{
    if (!m_search || m_search->StepsDone() < m_search->Steps()) {
        return;
    }
    const WindowLimits limits = Limits();
    const std::vector<SearchWindow> windows = m_search->BestOfDays(Site(), limits);
    auto* const calendar = new QWidget;
    auto* const grid = new QGridLayout(calendar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(kGrid / 2);
    QFont small = font();
    if (width() < kWide) {
        small.setPixelSize(kSmallPixels);
    }
    for (int column = 0; column < kWeek; ++column) {
        auto* const name = new QLabel(UiText(text::kDaySunday + column));
        name->setAlignment(Qt::AlignCenter);
        grid->addWidget(name, 0, column);
        grid->setColumnStretch(column, 1);
    }
    const std::chrono::sys_days first(m_hours.first);
    const auto offset = static_cast<int>(std::chrono::weekday(first).c_encoding());
    for (int day = 0; day < m_hours.days; ++day) {
        const auto found =
            std::find_if(windows.begin(), windows.end(), [&](const SearchWindow& window) {
                return m_search->DayOf(window.window.first) == day;
            });
        const QString date = DayOf(first + std::chrono::days(day));
        auto* const button = new ChoiceButton;
        button->setFont(small);
        button->setMinimumSize(0, TouchStyle::kTarget);
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        grid->addWidget(button, 1 + (offset + day) / kWeek, (offset + day) % kWeek);
        grid->setRowStretch(1 + (offset + day) / kWeek, 1);
        if (found == windows.end()) {
            button->setText(UiText(text::kSearchEmptyCell).arg(date));
            button->setEnabled(false);
            continue;
        }
        const PlanWindow& window = found->window;
        button->setText(UiText(text::kSearchCell)
                            .arg(date, ClockOf(*m_search, window.first),
                                 ClockOf(*m_search, window.last),
                                 QString::number(window.highestPdop, 'f', 1)));
        button->setCheckable(found == windows.begin());
        button->setChecked(found == windows.begin()); // the best of all
        button->setAccessibleName(
            QString(button->text()).replace(QLatin1Char('\n'), QLatin1Char(' ')));
        connect(button, &QPushButton::clicked, this, [this, window] {
            m_chosen = HoursAround(*m_search, window);
            Close(kOk);
        });
    }
    delete m_calendar->parentWidget()->layout()->replaceWidget(m_calendar, calendar);
    delete m_calendar;
    m_calendar = calendar;
    if (windows.empty()) {
        m_best->setText(UiText(text::kSheetNoWindow) + QLatin1Char('\n') +
                        EasedText(EasedLimits(*m_search, Site(), limits), limits));
    } else {
        const PlanWindow& best = windows.front().window;
        m_best->setText(UiText(text::kSearchBest)
                            .arg(DayOf(first + std::chrono::days(m_search->DayOf(best.first))),
                                 ClockOf(*m_search, best.first), ClockOf(*m_search, best.last))
                            .arg(best.fewestSatellites)
                            .arg(best.highestPdop, 0, 'f', 1) +
                        QLatin1Char('\n') + UiText(text::kSearchTap));
    }
    QFont bold = font();
    bold.setBold(true);
    m_best->setFont(bold);
}

void PlanSearchDlg::resizeEvent(QResizeEvent* event)
{
    Dialog::resizeEvent(event);
    ShowCalendar();
}

void PlanSearchDlg::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        ShowCalendar();
    }
}

} // namespace fieldcore
