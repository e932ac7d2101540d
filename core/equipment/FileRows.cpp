#include "core/equipment/FileRows.h"

namespace fieldcore {

int FileRows::SelectedCount() const
{
    int count = 0;
    for (int row = 0; row < Count(); ++row) {
        count += IsSelected(row) ? 1 : 0;
    }
    return count;
}

int FileRows::Find(std::size_t record) const
{
    int row = Count() - 1;
    while (row >= 0 && At(row).record != record) {
        --row;
    }
    return row;
}

void FileRowList::Insert(int row, const FileRow& content)
{
    m_rows.insert(m_rows.begin() + row, content);
    m_selected.insert(m_selected.begin() + row, false);
}

void FileRowList::Remove(int row)
{
    m_rows.erase(m_rows.begin() + row);
    m_selected.erase(m_selected.begin() + row);
}

void FileRowList::Clear()
{
    m_rows.clear();
    m_selected.clear();
}

} // namespace fieldcore
