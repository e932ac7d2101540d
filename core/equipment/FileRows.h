#pragma once

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

/// The rows of the active page: a list on a screen, or what stands for it in a terminal or a
/// test. Rows are counted from 0. The thread that uses the library.
class FileRows
{
public:
    virtual ~FileRows() = default;

    [[nodiscard]] virtual int Count() const = 0;
    [[nodiscard]] virtual const FileRow& At(int row) const = 0;
    [[nodiscard]] virtual bool IsSelected(int row) const = 0;

    /// @param row  0 to Count()
    virtual void Insert(int row, const FileRow& content) = 0;
    virtual void Remove(int row) = 0;
    virtual void Clear() = 0;

    virtual void SetMark(int row, FileRow::Mark mark) = 0;
    /// The listing has ended: draw everything again.
    virtual void Redraw() {}
    /// An operation has ended: the list gets the focus back.
    virtual void Focus() {}

    /// How many rows are selected.
    [[nodiscard]] int SelectedCount() const;
    /// The row of a record. @return -1 if it is not, or no longer, in the list
    [[nodiscard]] int Find(std::size_t record) const;
};

/// Rows that are kept in memory, for who has no list to show them in.
class FileRowList final : public FileRows
{
public:
    [[nodiscard]] int Count() const override { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] const FileRow& At(int row) const override { return m_rows.at(Place(row)); }
    [[nodiscard]] bool IsSelected(int row) const override { return m_selected.at(Place(row)); }
    void Insert(int row, const FileRow& content) override;
    void Remove(int row) override;
    void Clear() override;
    void SetMark(int row, FileRow::Mark mark) override { m_rows.at(Place(row)).mark = mark; }

    void Select(int row, bool selected) { m_selected.at(Place(row)) = selected; }
    void SelectAll() { m_selected.assign(m_rows.size(), true); }

private:
    static std::size_t Place(int row) { return static_cast<std::size_t>(row); }

    std::vector<FileRow> m_rows;
    std::vector<bool> m_selected; // as many
};

} // namespace fieldcore
