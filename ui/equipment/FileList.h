#pragma once

#include "core/equipment/FileRows.h"

#include <QIcon>
#include <QTreeView>

#include <array>

namespace fieldcore {

class FileListModel;

/// What stands before the names, by FileRow::Icon.
using FileImageList = std::array<QIcon, 3>;

/// The list of the receiver's files: an icon, the name, the date and the size of each, with the
/// time of day, the unit and the mark in small print. A tap or the space bar takes a row into the
/// selection or out of it, so that several are chosen without a second key; Ctrl+A takes all.
/// User-interface thread only.
class FileList : public QTreeView
{
    Q_OBJECT

public:
    enum Column
    {
        kName,
        kDate,
        kSize,
        kColumns,
    };

    /// @param heightUnits  the height that it wishes for: eighths of a line of text
    explicit FileList(int heightUnits, QWidget* parent = nullptr);

    /// Adds the columns; until then there are none.
    void ShowColumns();
    void SetImages(const FileImageList& images);

    [[nodiscard]] FileRows& Rows() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// There are more rows or fewer, or other ones are selected.
    void Changed();

protected:
    void changeEvent(QEvent* event) override;

private:
    void SizeColumns();

    const int m_heightUnits;
    FileListModel* m_model; // owned by the list
};

} // namespace fieldcore
