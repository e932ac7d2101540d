#include "ui/link/FramesView.h"

#include "core/host/MesBox.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr std::chrono::milliseconds kInterval{200};
constexpr int kWide = 900; // logical pixels, from which on a desktop is assumed

} // namespace

FramesView::FramesView(FrameHistory& history, QWidget* parent)
    : Dialog(parent, Extent::Whole), m_model(history), m_table(new QTableView),
      m_show(new QComboBox), m_search(new QLineEdit), m_count(new QLabel),
      m_detail(new QPlainTextEdit), m_hold(MakeButton(text::kFramesPause)),
      m_save(MakeButton(text::kFramesSave, "download")),
      m_clear(MakeButton(text::kFramesClear, "trash"))
{
    setWindowTitle(UiText(text::kFramesTitle));
    Build();
    OfferConnection();
    connect(m_show, &QComboBox::currentIndexChanged, this, &FramesView::ApplyFilter);
    connect(m_search, &QLineEdit::textChanged, this, &FramesView::ApplyFilter);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &FramesView::ShowDetail);
    connect(m_hold, &QPushButton::toggled, this, &FramesView::Hold);
    connect(m_save, &QPushButton::clicked, this, &FramesView::AskAndSave);
    connect(m_clear, &QPushButton::clicked, this, [this] {
        m_model.Clear();
        m_detail->clear();
        ShowCount();
    });
    connect(&m_timer, &QTimer::timeout, this, &FramesView::Refresh);
    ShowCount();
}

void FramesView::Build()
{
    m_table->setModel(&m_model);
    m_table->setAccessibleName(UiText(text::kFramesTitle));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(TouchStyle::kTarget);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setSectionResizeMode(FramesModel::Content, QHeaderView::Stretch);
    m_table->horizontalHeader()->setMinimumHeight(4 * kGrid);
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    m_table->setColumnWidth(FramesModel::Time, 13 * digit + 2 * kGrid);
    m_table->setColumnWidth(FramesModel::Way, 7 * digit + 2 * kGrid);
    m_table->setColumnWidth(FramesModel::Bytes, 40 * digit);
    m_detail->setReadOnly(true);
    m_detail->setAccessibleName(UiText(text::kFramesDetail));
    m_detail->setTabChangesFocus(true);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPixelSize(fontInfo().pixelSize() * 13 / 16); // small print, of whatever size is large
    m_detail->setFont(fixed);
    m_detail->setPlaceholderText(UiText(text::kFramesDetail));
    m_detail->setFixedHeight(7 * fontMetrics().lineSpacing());
    m_show->setAccessibleName(UiText(text::kFramesFilter));
    for (int i = 0; i < 4; ++i) {
        m_show->addItem(UiText(text::kFramesFilterAll + i));
    }
    m_search->setAccessibleName(UiText(text::kFramesSearch));
    m_search->setPlaceholderText(UiText(text::kFramesSearch));
    m_search->setClearButtonEnabled(true);
    m_hold->setCheckable(true);
    auto* const menu = new CnMenuBar;
    connect(menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
    QBoxLayout* const filter = LayOut(new QHBoxLayout, {}, kGrid, {m_show, {m_search, 1}});
    QBoxLayout* const buttons =
        LayOut(new QHBoxLayout, {}, kGrid, {m_hold, BoxItem::Room(), m_clear, m_save});
    QBoxLayout* const frames = LayOut(new QVBoxLayout, {12, 12, 12, 12}, kGrid,
                                      {filter, {m_table, 1}, m_count, m_detail, buttons});
    LayOut(new QVBoxLayout(this), {}, 0, {{frames, 1}, menu});
}

void FramesView::Refresh()
{
    if (m_hold->isChecked()) {
        return;
    }
    QScrollBar* const bar = m_table->verticalScrollBar();
    const bool isAtEnd = bar->value() == bar->maximum();
    if (m_model.Pull()) {
        ShowCount();
        if (isAtEnd) { // who has scrolled back is reading
            m_table->scrollToBottom();
        }
    }
}

void FramesView::ApplyFilter()
{
    m_model.SetFilter(static_cast<FramesModel::Show>(m_show->currentIndex()), m_search->text());
    m_table->scrollToBottom();
    ShowCount();
    ShowDetail();
}

void FramesView::Hold(bool on)
{
    if (!on) {
        Refresh();
    }
    ShowCount();
}

void FramesView::ShowCount()
{
    const auto rows = static_cast<long>(m_model.rowCount());
    const auto most = static_cast<long>(FrameHistory::kCapacity);
    m_save->setEnabled(rows > 0);
    if (m_model.Total() == 0 && !m_hold->isChecked()) {
        m_count->setText(UiText(text::kFramesEmpty));
    } else if (rows == 0 && !m_hold->isChecked()) {
        m_count->setText(UiText(text::kFramesNone));
    } else {
        m_count->setText(ToQt(FormatText(
            m_hold->isChecked() ? text::kFramesPaused : text::kFramesCount, rows, most)));
    }
}

void FramesView::ShowDetail()
{
    m_detail->setPlainText(m_model.Detail(m_table->currentIndex().row()));
}

void FramesView::AskAndSave()
{
    const bool wasHeld = m_hold->isChecked();
    m_hold->setChecked(true); // what is saved is what was seen
    const std::filesystem::path file = ChooseFile(this, true, UiText(text::kFramesTitle),
                                                  "exchange.log", UiText(text::kFramesSaveName));
    if (!file.empty()) {
        Save(file);
    }
    m_hold->setChecked(wasHeld);
}

int FramesView::Save(const std::filesystem::path& file)
{
    const std::error_code error = SaveFrameLog(file, m_model.Frames());
    if (error) {
        CMesBox().Fail(FormatText(text::kFramesNotSaved, FromUtf8(error.message()).c_str()),
                       text::kFramesTitle);
        return 0;
    }
    CMesBox().Show(text::kFramesSaved, text::kFramesTitle, {BoxButtons::Ok, BoxIcon::Information});
    return 1;
}

void FramesView::showEvent(QShowEvent* event)
{
    Refresh();
    m_timer.start(kInterval);
    Dialog::showEvent(event);
}

/// Where there is no room for the bytes of every row, those of the chosen one have to do.
void FramesView::resizeEvent(QResizeEvent* event)
{
    m_table->setColumnHidden(FramesModel::Bytes, width() < kWide);
    Dialog::resizeEvent(event);
}

void FramesView::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    Dialog::hideEvent(event);
}

} // namespace fieldcore
