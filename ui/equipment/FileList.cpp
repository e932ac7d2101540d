#include "ui/equipment/FileList.h"

#include "core/equipment/FileTexts.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QAbstractTableModel>
#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

QString Cell(const FileRow& row, int column)
{
    return ToQt(column == FileList::kName   ? row.name
                : column == FileList::kDate ? row.date
                                            : row.size);
}

QString Below(const FileRow& row, int column)
{
    if (column == FileList::kDate) {
        return ToQt(row.time);
    }
    if (column != FileList::kName || row.mark == FileRow::Mark::None) {
        return {};
    }
    return UiText(row.mark == FileRow::Mark::Fetched ? text::kFileFetched : text::kFileUnanswered);
}

QString Unit(const FileRow& row, int column)
{
    return column == FileList::kSize ? ToQt(FileSizeUnit(row.size)) : QString();
}

/// What a screen reader says of a cell.
QString Spoken(const FileRow& row, int column)
{
    QStringList words{Cell(row, column) + Unit(row, column)};
    if (column == FileList::kName) {
        words += UiText(text::kFilesIconLive + row.icon);
    }
    words += Below(row, column);
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
}

} // namespace

/// The rows of the list.
class FileListModel : public QAbstractTableModel, public FileRows
{
public:
    // What stands in small print.
    static constexpr int kUnitRole = Qt::UserRole;      ///< behind the text
    static constexpr int kBelowRole = Qt::UserRole + 1; ///< below it
    static constexpr int kBelowColourRole = Qt::UserRole + 2;

    /// @param list  that shows them, and owns the model
    explicit FileListModel(FileList& list) : QAbstractTableModel(&list), m_list(list) {}

    void ShowColumns()
    {
        if (m_columns == 0) {
            beginInsertColumns({}, 0, FileList::kColumns - 1);
            m_columns = FileList::kColumns;
            endInsertColumns();
        }
    }

    void SetImages(const FileImageList& images)
    {
        m_images = images;
        if (rowCount() > 0) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::DecorationRole});
        }
    }

    [[nodiscard]] bool IsSelected(int row) const override
    {
        return m_list.selectionModel()->isRowSelected(row, {});
    }

    void Insert(int row, const FileRow& content) override
    {
        beginInsertRows({}, row, row);
        FileRows::Insert(row, content);
        endInsertRows();
    }

    void Remove(int row) override
    {
        beginRemoveRows({}, row, row);
        FileRows::Remove(row);
        endRemoveRows();
    }

    void Clear() override
    {
        beginResetModel();
        FileRows::Clear();
        endResetModel();
    }

    void SetMark(int row, FileRow::Mark mark) override
    {
        FileRows::SetMark(row, mark);
        Q_EMIT dataChanged(index(row, 0), index(row, 0));
    }

    void Redraw() override { m_list.viewport()->update(); }
    void Focus() override { m_list.setFocus(Qt::OtherFocusReason); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : Count();
    }

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : m_columns;
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || index.row() >= rowCount()) {
            return {};
        }
        const FileRow& row = At(index.row());
        const bool isName = index.column() == FileList::kName;
        switch (role) {
        case Qt::DisplayRole:
            return Cell(row, index.column());
        case Qt::DecorationRole:
            return isName ? QVariant(m_images.at(static_cast<std::size_t>(row.icon))) : QVariant();
        case Qt::AccessibleTextRole:
            return Spoken(row, index.column());
        case Qt::TextAlignmentRole:
            return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
        case kUnitRole:
            return Unit(row, index.column());
        case kBelowRole:
            return Below(row, index.column());
        case kBelowColourRole:
            return !isName                                 ? Theme::Current().text
                   : row.mark == FileRow::Mark::Unanswered ? Theme::Current().bad
                                                           : Theme::Current().good;
        default:
            return {};
        }
    }

    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override
    {
        if (orientation != Qt::Horizontal || section < 0 || section >= m_columns) {
            return {};
        }
        if (role == Qt::TextAlignmentRole) {
            return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
        }
        return role == Qt::DisplayRole ? UiText(text::kFilesColumnName + section) : QVariant();
    }

private:
    FileList& m_list;
    FileImageList m_images;
    int m_columns = 0;
};

namespace {

constexpr int kIconSize = 24;
constexpr int kRowsAtLeast = 3;
constexpr int kUnitsPerLine = 8;
// Least widths, pixels, on the smallest of the controllers.
constexpr int kNameWidth = 100;
constexpr int kDateWidth = 70;
constexpr int kSizeWidth = 50;

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
    : QTreeView(parent), m_heightUnits(heightUnits), m_model(new FileListModel(*this))
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

FileRows& FileList::Rows() const
{
    return *m_model;
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
