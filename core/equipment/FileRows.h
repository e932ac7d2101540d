#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace fieldcore {

/// One row of the list of files, as it is shown.
struct FileRow
{
    /// Which picture stands before the name, by its place in the image list.
    enum Icon : int
    {
        Live = 0,
        Recycled = 1,
        Logging = 2,
    };
    /// What stands below the name.
    enum class Mark
    {
        None,
        Fetched,    ///< the same file, by name and size, is where files are fetched to
        Unanswered, ///< the receiver was to delete it or bring it back, and has said nothing
    };

    std::wstring name; ///< without extension
    std::wstring date; ///< "YY/MM/DD"
    std::wstring time; ///< "hh:mm"
    std::wstring size; ///< kilobytes, or with an "M" megabytes
    int icon = Live;
    Mark mark = Mark::None;
    std::size_t record = 0; ///< its index in the table of the listing
};

/// The rows of the active page: a list on a screen, or what stands for it where there is none, and
/// nothing is selected. Rows are counted from 0. The thread that uses the library.
class FileRows
{
public:
    virtual ~FileRows() = default;

    [[nodiscard]] int Count() const { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] const FileRow& At(int row) const
    {
        return m_rows.at(static_cast<std::size_t>(row));
    }
    [[nodiscard]] virtual bool IsSelected(int /*row*/) const { return false; }
    /// How many rows are selected.
    [[nodiscard]] int SelectedCount() const
    {
        int count = 0;
        for (int row = 0; row < Count(); ++row) {
            count += IsSelected(row) ? 1 : 0;
        }
        return count;
    }
    /// The row of a record. @return -1 if it is not, or no longer, in the list
    [[nodiscard]] int Find(std::size_t record) const
    {
        const auto row = std::ranges::find(m_rows, record, &FileRow::record);
        return row != m_rows.end() ? static_cast<int>(row - m_rows.begin()) : -1;
    }

    /// @param row  0 to Count()
    virtual void Insert(int row, const FileRow& content)
    {
        m_rows.insert(m_rows.begin() + row, content);
    }
    virtual void Remove(int row) { m_rows.erase(m_rows.begin() + row); }
    virtual void Clear() { m_rows.clear(); }
    virtual void SetMark(int row, FileRow::Mark mark)
    {
        m_rows.at(static_cast<std::size_t>(row)).mark = mark;
    }

    /// The listing has ended: draw everything again.
    virtual void Redraw() {}
    /// An operation has ended: the list gets the focus back.
    virtual void Focus() {}

private:
    std::vector<FileRow> m_rows;
};

} // namespace fieldcore
