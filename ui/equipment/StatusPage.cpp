#include "ui/equipment/StatusPage.h"

#include "core/equipment/BattLevel.h"
#include "core/equipment/StatusRows.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TableDlg.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"
#include "ui/equipment/BatteryBar.h"
#include "ui/equipment/StatusHistoryView.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QResizeEvent>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kMargin = 12;
constexpr int kWide = 900;
constexpr int kNarrowGraph = 200;
constexpr double kLarge = 1.5;  // of the text's own size
constexpr double kValue = 1.15; // the same

} // namespace

StatusPage::StatusPage(QWidget* parent)
    : Dialog(parent, Extent::Whole), m_fixAge(new RoleLabel(&Theme::second)),
      m_batteryAge(new RoleLabel(&Theme::second)), m_headline(new RoleLabel(&Theme::text)),
      m_broken(new RoleLabel(&Theme::attention)), m_battery(new CTextProgressCtrl),
      m_grid(new QGridLayout), m_body(new QBoxLayout(QBoxLayout::TopToBottom)),
      m_history(new StatusHistoryView)
{
    setWindowTitle(UiText(text::kAppStatus));
    OfferConnection();
    m_headline->setFont(BoldFont(font(), kLarge));
    m_headline->setWordWrap(true);
    CBattLevel(nullptr).SetInit(m_battery);
    m_battery->setAccessibleName(UiText(text::kStatusBattery));
    m_grid->setHorizontalSpacing(kMargin);
    m_grid->setVerticalSpacing(8);
    m_grid->setColumnStretch(1, 1);

    auto* const inner = new QWidget;
    auto* const column = new QVBoxLayout(inner);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    for (const auto& [value, age] : {std::pair<QWidget*, RoleLabel*>{m_headline, m_fixAge},
                                     std::pair<QWidget*, RoleLabel*>{m_battery, m_batteryAge}}) {
        auto* const line = new QHBoxLayout;
        line->addWidget(value, 1);
        line->addWidget(age);
        age->setFont(SmallFont(font()));
        column->addLayout(line);
    }
    m_broken->setFont(BoldFont(font(), kValue));
    m_broken->setWordWrap(true);
    column->insertWidget(1, m_broken); // below the fix
    auto* const values = new QVBoxLayout;
    values->addLayout(m_grid);
    values->addStretch(1);
    auto* const title = new QLabel(UiText(text::kStatusHistoryTitle));
    title->setFont(BoldFont(font()));
    auto* const graph = new QVBoxLayout;
    graph->addWidget(title);
    graph->addWidget(m_history, 1);
    m_body->setSpacing(2 * kMargin);
    m_body->addLayout(values);
    m_body->addLayout(graph, 1);
    column->addLayout(m_body, 1);
    auto* const scroll = MakeScroll(inner);
    scroll->setFocusPolicy(Qt::StrongFocus); // there is nothing else to scroll it by keys

    auto* const menu = new CnMenuBar;
    const int popup = menu->AddPopup(UiText(text::kAppMenuView));
    constexpr int kVersion = 1;
    constexpr int kTable = 2;
    menu->AddItem(popup, kVersion, UiText(text::kVersionTitle));
    menu->AddItem(popup, kTable, UiText(text::kSkyList));
    connect(menu, &CnMenuBar::ItemChosen, this, [this](int item) {
        if (item == kTable) {
            ShowTable();
        } else {
            Q_EMIT VersionRequested();
        }
    });
    connect(menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(scroll, 1);
    whole->addWidget(menu);
    Show({}, {}, {});
}

/// The graph stands beside the values where there is room, else before them.
void StatusPage::resizeEvent(QResizeEvent* event)
{
    Dialog::resizeEvent(event);
    m_isWide = event->size().width() > kWide;
    m_body->setDirection(m_isWide ? QBoxLayout::LeftToRight : QBoxLayout::BottomToTop);
    m_history->setMaximumHeight(m_isWide ? QWIDGETSIZE_MAX : kNarrowGraph);
    m_grid->setVerticalSpacing(m_isWide ? 5 : 8); // all of them in sight below a head
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        PutAge(i);
    }
    const QFontMetrics metrics(BoldFont(font(), kValue));
    const int date = metrics.horizontalAdvance(QStringLiteral("0000-00-00 00:00:00 "));
    m_grid->setColumnMinimumWidth(1, m_isWide ? date : 0);
}

void StatusPage::Show(const Receiver& receiver, const StatusHistory& history,
                      const StatusView& view)
{
    const auto showAge = [](RoleLabel* age, const StatusRow& row) {
        age->setText(ToQt(row.age));
        age->SetRole(row.isStale ? &Theme::stale : &Theme::second);
    };
    std::size_t shown = 0;
    for (const StatusRow& row : StatusRowsOf(receiver, view)) {
        if (row.field->textId == text::kStatusFix) {
            const bool isConnected = receiver.link == LinkState::Connected;
            m_headline->setText(isConnected ? ToQt(row.value) : ToQt(LinkText(receiver.link)));
            m_headline->SetRole(row.isStale ? &Theme::stale : &Theme::text);
            showAge(m_fixAge, row);
        } else if (row.field->textId == text::kStatusBattery) {
            ShowBattery(*m_battery, receiver, view);
            showAge(m_batteryAge, row);
        } else {
            ShowRow(shown++, row);
        }
    }
    QStringList broken;
    for (const std::wstring& words : BrokenLimits(receiver, view)) {
        broken += ToQt(FormatText(text::kLimitShort, words.c_str()));
    }
    m_broken->setText(broken.join(QLatin1Char('\n')));
    m_broken->setVisible(!broken.isEmpty());
    m_history->Show(history, view.now);
    m_epoch = view.utc - std::chrono::duration_cast<Clock::UtcTime::duration>(view.now);
}

/// The figures of the graph, the latest first.
void StatusPage::ShowTable()
{
    QList<QStringList> rows;
    for (const StatusHistory::Sample& sample : m_history->History().Samples()) {
        const auto at = std::chrono::duration_cast<Clock::UtcTime::duration>(sample.at);
        const QString none = UiText(text::kStatusUnknown);
        rows.push_front({ToQt(ControllerTimeOfDay(m_epoch + at)),
                         sample.satellites ? QString::number(*sample.satellites) : none,
                         sample.pdop ? QString::number(*sample.pdop, 'f', 1) : none});
    }
    const QString clock = ToQt(FormatText(text::kAppControllerTime, L"")).trimmed();
    TableDlg(UiText(text::kStatusHistoryTitle),
             {clock, UiText(text::kStatusUsed), QStringLiteral("PDOP")}, rows, this)
        .DoModal();
}

/// The long words of a stale value stand below it where they would take its room.
void StatusPage::PutAge(std::size_t index)
{
    Line& line = m_lines[index];
    const bool isBelow = line.isStale && !m_isWide;
    if (isBelow != std::exchange(line.isAgeBelow, isBelow)) {
        const int at = 2 * static_cast<int>(index);
        m_grid->addWidget(line.age, isBelow ? at + 1 : at, isBelow ? 1 : 2);
        line.age->setAlignment((isBelow ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignTop);
    }
}

void StatusPage::ShowRow(std::size_t index, const StatusRow& row)
{
    if (index == m_lines.size()) {
        const Line line{new RoleLabel(&Theme::second, UiText(row.field->textId)),
                        new RoleLabel(&Theme::text), new RoleLabel(&Theme::second)};
        line.value->setAccessibleName(UiText(row.field->textId)); // the rows are always the same
        line.value->setFont(BoldFont(font(), kValue));
        line.age->setFont(SmallFont(font()));
        line.age->setAlignment(Qt::AlignRight | Qt::AlignTop);
        line.name->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        line.name->setWordWrap(true);
        line.value->setWordWrap(true);
        line.value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        const int at = 2 * static_cast<int>(index); // an age may stand below
        m_grid->addWidget(line.name, at, 0);
        m_grid->addWidget(line.value, at, 1);
        m_grid->addWidget(line.age, at, 2);
        m_lines.push_back(line);
    }
    const Line& line = m_lines[index];
    line.value->setText(ToQt(row.value));
    line.age->setText(ToQt(row.age));
    m_lines[index].isStale = row.isStale;
    PutAge(index);
    line.value->SetRole(row.isStale ? &Theme::stale : &Theme::text);
    line.age->SetRole(row.isStale ? &Theme::stale : &Theme::second);
}

} // namespace fieldcore
