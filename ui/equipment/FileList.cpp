#include "ui/equipment/FileList.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/FileListModel.h"

#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kIconSize = 24;
constexpr int kRowsAtLeast = 3;
constexpr int kUnitsPerLine = 8;
// Least widths, pixels, on the smallest of the controllers.
constexpr int kNameWidth = 100;
constexpr int kDateWidth = 70;
constexpr int kSizeWidth = 50;

/// Small print, but never smaller than can be read.
QFont SmallFont(QFont font)
{
    constexpr int kLeastPx = 13;
    const int px = font.pixelSize() > 0 ? font.pixelSize() : 16;
    font.setPixelSize(std::max(kLeastPx, px * 13 / 16));
    return font;
}

int RowHeight(const QFont& font)
{
    const int lines = QFontMetrics(font).height() + QFontMetrics(SmallFont(font)).height();
    return std::max(TouchStyle::kTarget, lines + TouchStyle::kGrid / 2);
}

/// Draws the cells, with what stands in small print behind and below their texts.
class RowPainter : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(RowHeight(option.font));
        return size;
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& given,
               const QModelIndex& index) const override
    {
        QStyleOptionViewItem option = given;
        initStyleOption(&option, index);
        const QStyle& style = *option.widget->style();
        const QRect place =
            style.subElementRect(QStyle::SE_ItemViewItemText, &option, option.widget)
                .adjusted(TouchStyle::kGrid / 2, 0, 0, 0);
        const QString text = std::exchange(option.text, QString());
        style.drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);

        const QString unit = index.data(FileListModel::kUnitRole).toString();
        const QString below = index.data(FileListModel::kBelowRole).toString();
        const QFont small = SmallFont(option.font);
        const QFontMetrics metrics(option.font);
        const int belowHeight = below.isEmpty() ? 0 : QFontMetrics(small).height();
        const QRect upper(place.left(), place.center().y() - (metrics.height() + belowHeight) / 2,
                          place.width(), metrics.height());
        const QRect lower(place.left(), upper.bottom() + 1, place.width(), belowHeight);
        const bool isSelected = (option.state & QStyle::State_Selected) != 0;
        const QColor onAccent = option.palette.color(QPalette::HighlightedText);
        const auto draw = [&](const QFont& font, const QColor& colour, const QRect& where,
                              const QString& words) {
            painter->setFont(font);
            painter->setPen(isSelected ? onAccent : colour);
            painter->drawText(where, Qt::AlignLeft | Qt::AlignVCenter,
                              QFontMetrics(font).elidedText(words, Qt::ElideRight, where.width()));
        };
        painter->save();
        draw(option.font, Theme::Current().text, upper, text);
        draw(small, Theme::Current().text, upper.adjusted(metrics.horizontalAdvance(text), 0, 0, 0),
             unit);
        draw(small, index.data(FileListModel::kBelowColourRole).value<QColor>(), lower, below);
        painter->restore();
    }
};

} // namespace

FileList::FileList(int heightUnits, QWidget* parent)
    : QTreeView(parent), m_heightUnits(heightUnits), m_model(new FileListModel(this))
{
    setModel(m_model);
    setItemDelegate(new RowPainter(this));
    setAccessibleName(UiText(text::kFilesTitle));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setIconSize({kIconSize, kIconSize});
    setTabKeyNavigation(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::MultiSelection);
    header()->setSectionsMovable(false);
    header()->setMinimumHeight(TouchStyle::kTarget);
    header()->setStretchLastSection(false);
    for (const auto signal :
         {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(m_model, signal, this, &FileList::Changed);
    }
    connect(m_model, &QAbstractItemModel::modelReset, this, &FileList::Changed);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &FileList::Changed);
}

void FileList::ShowColumns()
{
    m_model->ShowColumns();
    setAllColumnsShowFocus(true); // the whole row is one thing
    SizeColumns();
}

void FileList::SizeColumns()
{
    if (m_model->columnCount() == 0) {
        return;
    }
    const auto widthOf = [this](int least, const char* sample) {
        const int text = fontMetrics().horizontalAdvance(QLatin1String(sample));
        return std::max(least, text + 2 * TouchStyle::kGrid);
    };
    header()->setMinimumSectionSize(kSizeWidth);
    header()->setSectionResizeMode(kName, QHeaderView::Stretch);
    header()->setSectionResizeMode(kDate, QHeaderView::Fixed);
    header()->setSectionResizeMode(kSize, QHeaderView::Fixed);
    header()->resizeSection(kName, kNameWidth);
    header()->resizeSection(kDate, widthOf(kDateWidth, "26/11/21"));
    header()->resizeSection(kSize, widthOf(kSizeWidth, "4096.0 KB"));
}

void FileList::SetImages(const FileImageList& images)
{
    m_model->SetImages(images);
}

int FileList::Count() const
{
    return m_model->rowCount();
}

const FileRow& FileList::At(int row) const
{
    return m_model->At(row);
}

bool FileList::IsSelected(int row) const
{
    return selectionModel()->isRowSelected(row, {});
}

void FileList::Insert(int row, const FileRow& content)
{
    m_model->Insert(row, content);
}

void FileList::Remove(int row)
{
    m_model->Remove(row);
}

void FileList::Clear()
{
    m_model->Clear();
}

void FileList::SetMark(int row, FileRow::Mark mark)
{
    m_model->SetMark(row, mark);
}

void FileList::Redraw()
{
    viewport()->update();
}

void FileList::Focus()
{
    setFocus(Qt::OtherFocusReason);
}

QSize FileList::sizeHint() const
{
    const int height = fontMetrics().height() * m_heightUnits / kUnitsPerLine;
    return {28 * fontMetrics().height(), std::max(height, minimumSizeHint().height())};
}

QSize FileList::minimumSizeHint() const
{
    const int rows = kRowsAtLeast * RowHeight(font());
    return {kNameWidth + kDateWidth + kSizeWidth, header()->sizeHint().height() + rows};
}

void FileList::changeEvent(QEvent* event)
{
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        SizeColumns();
    }
}

} // namespace fieldcore
