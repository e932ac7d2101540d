#include "core/equipment/FileRows.h"

#include <cstddef>

namespace fieldcore {

bool FileRowList::IsSelected(int row) const
{
    return m_rows.at(static_cast<std::size_t>(row)).selected;
}

void FileRowList::Insert(int row, const FileRow& content)
{
    m_rows.insert(m_rows.begin() + row, {content, false});
}

void FileRowList::Remove(int row)
{
    m_rows.erase(m_rows.begin() + row);
}

void FileRowList::Clear()
{
    m_rows.clear();
}

void FileRowList::SetFetched(int row)
{
    m_rows.at(static_cast<std::size_t>(row)).row.fetched = true;
}

void FileRowList::Select(int row, bool selected)
{
    m_rows.at(static_cast<std::size_t>(row)).selected = selected;
}

void FileRowList::SelectAll()
{
    for (Kept& kept : m_rows) {
        kept.selected = true;
    }
}

int SelectedCount(const FileRows& rows)
{
    int count = 0;
    for (int row = 0; row < rows.Count(); ++row) {
        count += rows.IsSelected(row) ? 1 : 0;
    }
    return count;
}

} // namespace fieldcore
