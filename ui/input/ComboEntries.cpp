#include "ui/input/ComboEntries.h"

#include "ui/controls/UiText.h"

#include <QAbstractItemView>
#include <QComboBox>

namespace fieldcore {

int ComboEntries::GetCount() const
{
    return m_combo.count();
}

std::wstring ComboEntries::GetText(int index) const
{
    return m_combo.itemText(index).toStdWString();
}

int ComboEntries::GetSelected() const
{
    const int index = m_combo.currentIndex();
    // Qt keeps the entry of before as the current one while another text is typed over it.
    const bool isTypedOver =
        m_combo.isEditable() && m_combo.currentText() != m_combo.itemText(index);
    return isTypedOver ? -1 : index;
}

void ComboEntries::Select(int index)
{
    m_combo.setCurrentIndex(index);
}

void ComboEntries::Insert(int index, std::wstring_view text)
{
    const bool wasSelected = m_combo.currentIndex() >= 0;
    const QString typed = m_combo.currentText();
    m_combo.insertItem(index, ToQt(text));
    if (!wasSelected) { // the first entry of an empty list selects itself
        m_combo.setCurrentIndex(-1);
    }
    if (m_combo.isEditable()) {
        m_combo.setEditText(typed);
    }
}

void ComboEntries::ScrollToTop()
{
    m_combo.view()->scrollToTop();
}

} // namespace fieldcore
