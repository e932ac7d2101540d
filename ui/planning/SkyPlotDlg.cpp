#include "ui/planning/SkyPlotDlg.h"

#include "core/link/Command.h"
#include "core/resources/StringTable.h"
#include "core/settings/NotKept.h"
#include "core/settings/Setting.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/ConstellationBar.h"
#include "ui/planning/LiveSkyHead.h"
#include "ui/planning/LiveSkyView.h"
#include "ui/planning/SatelliteListModel.h"
#include "ui/planning/SignalBars.h"

#include <QButtonGroup>
#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace fieldcore {

namespace {

constexpr KnownSetting kShown = L"GPS\\SkyPlot\\Constellation";
static_assert(kShown->number.most == kConstellations);

constexpr int kAgeTimer = 2;
constexpr int kAgeTickMs = 1000;
constexpr int kWide = 900; // from here on the details stand beside the sky

constexpr int kMargin = 12;
constexpr int kRowsAtLeast = 3; // of the list, its header among them

QPushButton* MakeSwitch(int control, int textId)
{
    auto* const button = new ChoiceButton;
    button->setText(UiText(textId));
    button->setAccessibleName(button->text());
    Dialog::SetControlId(button, control);
    return button;
}

} // namespace

CSkyPlot::CSkyPlot(CCommand* command, int loadWay, QWidget* parent)
    : Dialog(parent, Extent::Whole), m_command(command), m_loadWay(loadWay),
      m_reg(EnvironmentOf(command).Roots()), m_clock(EnvironmentOf(command).GetClock()),
      m_poll(std::make_shared<LiveSkyPoll>(m_clock, EnvironmentOf(command).GetFolders().Program()))
{
    setWindowTitle(UiText(text::kSkyTitle));
    OfferConnection();
    auto* const window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, 0);
    window->setSpacing(0);
    auto* const content = new QVBoxLayout;
    content->setContentsMargins(kMargin, TouchStyle::kGrid, kMargin, TouchStyle::kGrid);
    content->setSpacing(TouchStyle::kGrid);
    window->addLayout(content, 1);
    MakeHead(content);
    auto* const scroll = new QScrollArea; // a large font needs more than a small screen has
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const inside = new QWidget;
    m_body = new QBoxLayout(QBoxLayout::TopToBottom, inside);
    m_body->setContentsMargins(0, 0, 0, 0);
    m_body->setSpacing(TouchStyle::kGrid);
    scroll->setWidget(inside);
    content->addWidget(scroll, 1);
    MakeSky();
    MakeDetails();
    MakeMenu();
    window->addWidget(m_menu);
    ArrangeDetails();
    ShowSky();
}

CSkyPlot::~CSkyPlot()
{
    Destroy();
}

void CSkyPlot::MakeHead(QBoxLayout* layout)
{
    m_head = new LiveSkyHead;
    layout->addWidget(m_head);
    m_constellations = new ConstellationBar;
    SetControlId(m_constellations, kConstellations);
    m_constellations->Choose(StoredNumber(m_reg, kShown));
    connect(m_constellations, &ConstellationBar::Changed, this, [this] {
        ShowSky();
        KeepSettings();
    });
    layout->addWidget(m_constellations);
}

void CSkyPlot::MakeSky()
{
    auto* const column = new QVBoxLayout;
    column->setSpacing(0);
    m_sky = new LiveSkyView;
    SetControlId(m_sky, kSky);
    connect(m_sky, &LiveSkyView::Picked, this, &CSkyPlot::ChooseSatellite);
    column->addWidget(m_sky, 1);
    // Without wrapping: it would take what scrolls all the height that it wishes for.
    m_legend = new QLabel;
    SetControlId(m_legend, kLegend);
    m_legend->setForegroundRole(QPalette::PlaceholderText); // the theme's second text
    m_legend->setAlignment(Qt::AlignCenter);
    column->addWidget(m_legend);
    m_body->addLayout(column, 3);
}

void CSkyPlot::MakeDetails()
{
    auto* const column = new QVBoxLayout;
    column->setSpacing(TouchStyle::kGrid);

    m_switch = new QWidget;
    auto* const row = new QHBoxLayout(m_switch);
    row->setContentsMargins(0, 0, 0, 0);
    m_showBars = MakeSwitch(kShowBars, text::kSkyBars);
    m_showList = MakeSwitch(kShowList, text::kSkyList);
    auto* const group = new QButtonGroup(this);
    group->addButton(m_showBars);
    group->addButton(m_showList);
    row->addWidget(m_showBars);
    row->addWidget(m_showList);
    (StoredNumber(m_reg, L"GPS\\SkyPlot\\View") == 1 ? m_showList : m_showBars)->setChecked(true);
    connect(group, &QButtonGroup::idClicked, this, [this] {
        ArrangeDetails();
        KeepSettings();
    });
    column->addWidget(m_switch);

    m_bars = new SignalBars;
    SetControlId(m_bars, kBars);
    m_barsScroll = new QScrollArea;
    m_barsScroll->setFrameShape(QFrame::NoFrame);
    m_barsScroll->setWidgetResizable(true);
    m_barsScroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_barsScroll->setAccessibleName(UiText(text::kSkyBars));
    m_barsScroll->setWidget(m_bars);
    column->addWidget(m_barsScroll, 2);

    m_model = new SatelliteListModel(this);
    m_sorted = new QSortFilterProxyModel(this);
    m_sorted->setSourceModel(m_model);
    m_sorted->setSortRole(Qt::UserRole);
    m_list = new QTableView;
    SetControlId(m_list, kList);
    m_list->setAccessibleName(UiText(text::kSkyListName));
    m_list->setModel(m_sorted);
    m_list->setSortingEnabled(true);
    m_list->sortByColumn(SatelliteListModel::kName, Qt::AscendingOrder);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setTabKeyNavigation(false);
    m_list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->verticalHeader()->hide();
    m_list->horizontalHeader()->setMinimumHeight(TouchStyle::kTarget);
    m_list->horizontalHeader()->setHighlightSections(false);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                ChooseSatellite(current.isValid() ? m_sorted->mapToSource(current).row() : -1);
            });
    column->addWidget(m_list, 3);
    m_body->addLayout(column, 2);
}

void CSkyPlot::MakeMenu()
{
    m_menu = new CnMenuBar(m_loadWay);
    const int view = m_menu->AddPopup(UiText(text::kSkyMenuView));
    for (const int item : {text::kSkyUpdate, text::kSkyFromBelow}) {
        m_menu->AddItem(view, item, UiText(item));
    }
    connect(m_menu, &CnMenuBar::ItemChosen, this, &CSkyPlot::OnMenu);
    connect(m_menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
}

void CSkyPlot::OnMenu(int item)
{
    if (item == text::kSkyUpdate) {
        m_question.reset();
        m_poll->LoadAlmanac();
        Ask();
    } else if (item == text::kSkyFromBelow) {
        m_isFromBelow = !m_isFromBelow;
        m_sky->SetFromBelow(m_isFromBelow);
    }
}

bool CSkyPlot::OnClose(int result)
{
    return m_loadWay == 0 || result != kCancelled || CPrgEndMes::MayEnd(m_command, this);
}

void CSkyPlot::showEvent(QShowEvent* event)
{
    Dialog::showEvent(event);
    Ask();
    SetTimer(kAgeTimer, kAgeTickMs);
}

void CSkyPlot::hideEvent(QHideEvent* event)
{
    m_question.reset();
    KillTimer(kAgeTimer);
    Dialog::hideEvent(event);
}

void CSkyPlot::OnTimer(int id)
{
    if (id == kAgeTimer) {
        ShowSky();
    }
}

void CSkyPlot::Ask()
{
    m_now = m_poll->GetNow();
    if (m_command == nullptr) {
        m_now.state = LiveSkyPoll::State::NotConnected;
    } else {
        m_question = std::make_unique<BackgroundQuestion>(
            *m_command, Rhythm{LiveSkyPoll::kInterval, LiveSkyPoll::kLongestPause},
            [poll = m_poll](CCommand& command) {
                const bool isAnswered = poll->Poll(command);
                return std::pair(isAnswered, poll->GetNow());
            },
            [this](const LiveSkyPoll::Now& now) {
                m_now = now;
                ShowSky();
            });
    }
    ShowSky();
}

QString CSkyPlot::Notice() const
{
    const LiveSky& sky = m_now.sky;
    if (!sky.HasReading()) {
        return UiText(LiveSkyTextId(m_now.state));
    }
    if (sky.Count(m_constellations->Chosen()).inView > 0) {
        return {};
    }
    return UiText(m_constellations->Chosen() ? text::kSkyNoneOfThese : text::kSkyEmpty);
}

void CSkyPlot::ShowSky()
{
    m_head->Show(m_now, m_constellations->Chosen(), m_clock.Steady());
    m_legend->setText(UiText(m_now.hasAlmanac ? text::kSkyLegend : text::kSkyLegendNoAlmanac));
    const LiveSky& sky = m_now.sky;
    LiveSkyView::Picture picture;
    picture.satellites = sky.Satellites(m_constellations->Chosen());
    picture.predicted = sky.Predicted(m_constellations->Chosen());
    picture.isStale = sky.IsStale(m_clock.Steady());
    picture.notice = Notice();
    m_constellations->Show(sky);
    m_sky->Show(picture);
    m_bars->Show(picture.satellites, picture.isStale);
    m_isShowing = true; // the list forgets its row where its satellites change
    m_model->Show(picture.satellites, picture.isStale);
    m_isShowing = false;
    ShowColumns();
    ChooseSatellite(m_sky->Chosen());
}

void CSkyPlot::ShowColumns()
{
    QHeaderView* const header = m_list->horizontalHeader();
    const QAbstractItemView& list = *m_list; // where the hint is public
    int wanted = 0;
    for (int column = 0; column < SatelliteListModel::kColumns; ++column) {
        const int signal = column - SatelliteListModel::kSignal1;
        m_list->setColumnHidden(column, signal > 0 && !m_model->HasSignal(signal));
        if (!m_list->isColumnHidden(column)) {
            wanted += std::max(header->sectionSizeHint(column), list.sizeHintForColumn(column));
        }
    }
    // Columns share what there is; where that is too little, the list scrolls.
    const auto mode = wanted <= m_list->viewport()->width() ? QHeaderView::Stretch
                                                            : QHeaderView::ResizeToContents;
    if (header->sectionResizeMode(0) != mode) {
        header->setSectionResizeMode(mode);
    }
}

void CSkyPlot::KeepSettings()
{
    const int kept = StoreAll(m_reg, {{kShown, m_constellations->Index()},
                                      {L"GPS\\SkyPlot\\View", m_showList->isChecked() ? 1U : 0U}});
    KeptOrTold(kept, text::kSkyNotKept, EnvironmentOf(m_command).GetHost(), m_reg);
}

void CSkyPlot::ChooseSatellite(int row)
{
    if (m_isShowing) {
        return;
    }
    m_isShowing = true;
    m_sky->Choose(row);
    const std::vector<LiveSatellite> satellites = m_now.sky.Satellites(m_constellations->Chosen());
    const bool isRow = row >= 0 && static_cast<std::size_t>(row) < satellites.size();
    m_bars->Choose(isRow ? std::optional(satellites[static_cast<std::size_t>(row)]) : std::nullopt);
    if (isRow) {
        const QModelIndex index = m_sorted->mapFromSource(m_model->index(row, 0));
        if (m_list->currentIndex().row() != index.row()) {
            m_list->setCurrentIndex(index);
        }
    } else {
        m_list->setCurrentIndex({});
        m_list->clearSelection();
    }
    m_isShowing = false;
}

void CSkyPlot::ArrangeDetails()
{
    const bool isWide = width() >= kWide;
    const bool isList = m_showList->isChecked();
    m_body->setStretch(0, isWide ? 1 : 3);
    m_body->setStretch(1, isWide ? 1 : 2);
    m_body->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_switch->setVisible(!isWide);
    m_barsScroll->setVisible(isWide || !isList);
    m_list->setVisible(isWide || isList);
    const int row = std::max(TouchStyle::kTarget, fontMetrics().height() + TouchStyle::kGrid);
    m_list->verticalHeader()->setDefaultSectionSize(row);
    m_list->setMinimumHeight(kRowsAtLeast * row);
    m_barsScroll->setMinimumHeight(m_bars->minimumSizeHint().height() +
                                   m_barsScroll->horizontalScrollBar()->sizeHint().height());
    ShowColumns();
}

void CSkyPlot::resizeEvent(QResizeEvent* event)
{
    Dialog::resizeEvent(event);
    ArrangeDetails();
}

void CSkyPlot::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    // Both change what is drawn by hand; the controls do not exist yet while the dialog is made.
    if (m_menu != nullptr &&
        (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)) {
        ArrangeDetails();
        ShowSky();
    }
}

} // namespace fieldcore
