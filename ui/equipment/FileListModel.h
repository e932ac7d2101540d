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
    /// Whether a row has the mark of a file that was fetched, a bool.
    static constexpr int kFetchedRole = Qt::UserRole;

    explicit FileListModel(QObject* parent) : QAbstractTableModel(parent) {}

    void ShowColumns();
    void SetImages(const FileImageList& images);

    /// @param row  0 to rowCount()
    void Insert(int row, const FileRow& content);
    void Remove(int row);
    void Clear();
    void SetFetched(int row);
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
