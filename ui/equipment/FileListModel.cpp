#include "ui/equipment/FileListModel.h"

#include "core/equipment/FileTexts.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

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

void FileListModel::ShowColumns()
{
    if (m_columns == 0) {
        beginInsertColumns({}, 0, FileList::kColumns - 1);
        m_columns = FileList::kColumns;
        endInsertColumns();
    }
}

void FileListModel::SetImages(const FileImageList& images)
{
    m_images = images;
    if (rowCount() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::DecorationRole});
    }
}

void FileListModel::Insert(int row, const FileRow& content)
{
    beginInsertRows({}, row, row);
    m_rows.insert(m_rows.begin() + row, content);
    endInsertRows();
}

void FileListModel::Remove(int row)
{
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void FileListModel::Clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

void FileListModel::SetMark(int row, FileRow::Mark mark)
{
    m_rows.at(static_cast<std::size_t>(row)).mark = mark;
    Q_EMIT dataChanged(index(row, 0), index(row, 0));
}

int FileListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int FileListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant FileListModel::data(const QModelIndex& index, int role) const
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

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole ? UiText(text::kFilesColumnName + section) : QVariant();
}

} // namespace fieldcore
