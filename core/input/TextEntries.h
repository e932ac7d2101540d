#pragma once

#include "core/input/EntryList.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

/// A list that remembers, see CParts, without a screen: texts, of which one may be selected.
class TextEntries final : public EntryList
{
public:
    explicit TextEntries(std::vector<std::wstring> texts = {}, int selected = -1)
        : m_texts(std::move(texts)), m_selected(selected)
    {}

    [[nodiscard]] const std::vector<std::wstring>& Texts() const { return m_texts; }

    [[nodiscard]] int GetCount() const override { return static_cast<int>(m_texts.size()); }
    [[nodiscard]] std::wstring GetText(int index) const override
    {
        return m_texts.at(static_cast<std::size_t>(index));
    }
    [[nodiscard]] int GetSelected() const override { return m_selected; }
    void Select(int index) override { m_selected = index; }
    void Insert(int position, std::wstring_view text) override
    {
        m_texts.emplace(m_texts.begin() + position, text);
        m_selected += m_selected >= position ? 1 : 0;
    }
    void ScrollToTop() override {} // nobody sees it

private:
    std::vector<std::wstring> m_texts;
    int m_selected;
};

} // namespace fieldcore
