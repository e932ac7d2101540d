#include "ui/planning/DateDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"

#include <QCalendarWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

QDate ToQDate(std::chrono::year_month_day date)
{
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

/// The buttons of the calendar's own are small and drawn for another style.
void Enlarge(QCalendarWidget& calendar)
{
    const auto button = [&](const QString& name, const QString& icon, int textId) {
        if (auto* const found = calendar.findChild<QToolButton*>(name)) {
            found->setMinimumSize(6 * kGrid, 6 * kGrid);
            if (!icon.isEmpty()) {
                found->setIcon(ThemeIcon(icon));
                found->setIconSize({3 * kGrid, 3 * kGrid});
                found->setAccessibleName(UiText(textId));
            }
        }
    };
    button(QStringLiteral("qt_calendar_prevmonth"), QStringLiteral("back"), text::kDatePrevious);
    button(QStringLiteral("qt_calendar_nextmonth"), QStringLiteral("forward"), text::kDateNext);
    button(QStringLiteral("qt_calendar_monthbutton"), {}, 0);
    button(QStringLiteral("qt_calendar_yearbutton"), {}, 0);
    if (auto* const days =
            calendar.findChild<QWidget*>(QStringLiteral("qt_calendar_calendarview"))) {
        days->setAccessibleName(calendar.accessibleName());
    }
}

/// In the colours of the theme that holds now.
void Colour(QCalendarWidget& calendar)
{
    const Theme& theme = Theme::Current();
    QTextCharFormat weekend;
    weekend.setForeground(theme.bad);
    calendar.setWeekdayTextFormat(Qt::Sunday, weekend);
    weekend.setForeground(theme.accent);
    calendar.setWeekdayTextFormat(Qt::Saturday, weekend);
    QTextCharFormat header;
    header.setBackground(theme.ground);
    calendar.setHeaderTextFormat(header);
    if (auto* const bar =
            calendar.findChild<QWidget*>(QStringLiteral("qt_calendar_navigationbar"))) {
        bar->setBackgroundRole(QPalette::Button);
        QPalette palette = bar->palette();
        palette.setColor(QPalette::Highlight, theme.raised);
        palette.setColor(QPalette::HighlightedText, theme.text);
        bar->setPalette(palette);
    }
}

} // namespace

DateDlg::DateDlg(std::chrono::year_month_day date, std::chrono::year_month_day today,
                 QWidget* parent)
    : Dialog(parent), m_calendar(new QCalendarWidget)
{
    setWindowTitle(UiText(text::kPlanDate));
    setAccessibleName(windowTitle());
    m_calendar->setLocale(CurrentLanguage() == Language::Japanese
                              ? QLocale(QLocale::Japanese, QLocale::Japan)
                              : QLocale(QLocale::English, QLocale::UnitedStates));
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setAccessibleName(windowTitle());
    m_calendar->setDateRange({1980, 1, 6}, {2079, 12, 31});
    m_calendar->setSelectedDate(ToQDate(date));
    m_calendar->setMinimumSize(7 * 6 * kGrid, 8 * 6 * kGrid);
    Enlarge(*m_calendar);
    Colour(*m_calendar);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_calendar, 1);
    auto* const row = new QHBoxLayout;
    QPushButton* const now = MakeRowButton(text::kPlanToday);
    QPushButton* const cancel = MakeRowButton(text::kButtonCancel);
    QPushButton* const ok = MakeRowButton(text::kButtonOk);
    row->addWidget(now);
    row->addStretch(1);
    row->addWidget(cancel);
    row->addWidget(ok);
    ok->setDefault(true);
    layout->addLayout(row);
    connect(now, &QPushButton::clicked, this,
            [this, today] { m_calendar->setSelectedDate(ToQDate(today)); });
    connect(cancel, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    connect(ok, &QPushButton::clicked, this, [this] { Close(kOk); });
    connect(m_calendar, &QCalendarWidget::activated, this, [this] { Close(kOk); });
}

void DateDlg::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Colour(*m_calendar);
    }
}

std::optional<std::chrono::year_month_day> DateDlg::Ask()
{
    if (DoModal() != kOk) {
        return std::nullopt;
    }
    const QDate date = m_calendar->selectedDate();
    return std::chrono::year(date.year()) / date.month() / date.day();
}

} // namespace fieldcore
