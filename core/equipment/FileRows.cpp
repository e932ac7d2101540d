#include "core/equipment/FileRows.h"

namespace fieldcore {

bool FileRows::IsSelected(int /*row*/) const
{
    return false;
}

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

void FileRows::Insert(int row, const FileRow& content)
{
    m_rows.insert(m_rows.begin() + row, content);
}

void FileRows::Remove(int row)
{
    m_rows.erase(m_rows.begin() + row);
}

void FileRows::Clear()
{
    m_rows.clear();
}

void FileRows::SetMark(int row, FileRow::Mark mark)
{
    m_rows.at(static_cast<std::size_t>(row)).mark = mark;
}

} // namespace fieldcore
