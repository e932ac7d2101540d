#pragma once

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

    std::wstring name; ///< without extension
    std::wstring date; ///< "YY/MM/DD"
    std::wstring size; ///< kilobytes, or with an "M" megabytes
    int icon = Live;
    /// The same file, by name and size, is in one of the folders that files are fetched to. The
    /// mark is text::kFileFetched.
    bool fetched = false;
};

/// The rows of the active page: a list on a screen, or what stands for it in a terminal or a
/// test. Rows are counted from 0. The thread that uses the library.
class FileRows
{
public:
    virtual ~FileRows() = default;

    [[nodiscard]] virtual int Count() const = 0;
    [[nodiscard]] virtual std::wstring Name(int row) const = 0;
    [[nodiscard]] virtual std::wstring Date(int row) const = 0;
    [[nodiscard]] virtual bool IsSelected(int row) const = 0;

    /// @param row  0 to Count()
    virtual void Insert(int row, const FileRow& content) = 0;
    virtual void Remove(int row) = 0;
    virtual void Clear() = 0;

    /// The mark of a row that was fetched just now.
    virtual void SetFetched(int row) = 0;
    /// The listing has ended: draw everything again.
    virtual void Redraw() {}
    /// An operation has ended: the list gets the focus back.
    virtual void Focus() {}
};

/// Rows that are kept in memory, for who has no list to show them in.
class FileRowList final : public FileRows
{
public:
    [[nodiscard]] int Count() const override { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] std::wstring Name(int row) const override { return At(row).name; }
    [[nodiscard]] std::wstring Date(int row) const override { return At(row).date; }
    [[nodiscard]] bool IsSelected(int row) const override;
    void Insert(int row, const FileRow& content) override;
    void Remove(int row) override;
    void Clear() override;
    void SetFetched(int row) override;

    [[nodiscard]] const FileRow& At(int row) const
    {
        return m_rows.at(static_cast<std::size_t>(row)).row;
    }
    void Select(int row, bool selected);
    void SelectAll();

private:
    struct Kept
    {
        FileRow row;
        bool selected = false;
    };
    std::vector<Kept> m_rows;
};

/// How many rows are selected.
[[nodiscard]] int SelectedCount(const FileRows& rows);

} // namespace fieldcore
