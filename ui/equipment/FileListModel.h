#pragma once

#include "core/equipment/FileRows.h"
#include "ui/equipment/FileList.h"

#include <QAbstractTableModel>

#include <vector>

namespace fieldcore {

/// The rows of a list of files. User-interface thread only.
class FileListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    // What stands in small print.
    static constexpr int kUnitRole = Qt::UserRole;      ///< behind the text
    static constexpr int kBelowRole = Qt::UserRole + 1; ///< below it
    static constexpr int kBelowColourRole = Qt::UserRole + 2;

    explicit FileListModel(QObject* parent) : QAbstractTableModel(parent) {}

    void ShowColumns();
    void SetImages(const FileImageList& images);

    /// @param row  0 to rowCount()
    void Insert(int row, const FileRow& content);
    void Remove(int row);
    void Clear();
    void SetMark(int row, FileRow::Mark mark);
    /// @param row  of those that there are
    [[nodiscard]] const FileRow& At(int row) const
    {
        return m_rows.at(static_cast<std::size_t>(row));
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    std::vector<FileRow> m_rows;
    FileImageList m_images;
    int m_columns = 0;
};

} // namespace fieldcore
