#include "core/input/TextEntries.h"

#include <cstddef>
#include <utility>

namespace fieldcore {

TextEntries::TextEntries(std::vector<std::wstring> texts, int selected)
    : m_texts(std::move(texts)), m_selected(selected)
{}

std::wstring TextEntries::GetText(int index) const
{
    return m_texts.at(static_cast<std::size_t>(index));
}

void TextEntries::Insert(int position, std::wstring_view text)
{
    m_texts.emplace(m_texts.begin() + position, text);
    if (m_selected >= position) {
        ++m_selected;
    }
}

} // namespace fieldcore
