#pragma once

#include "core/input/EntryList.h"

#include <string>
#include <vector>

namespace fieldcore {

/// A list that remembers, see CParts, without a screen: texts, of which one may be selected.
class TextEntries final : public EntryList
{
public:
    explicit TextEntries(std::vector<std::wstring> texts = {}, int selected = -1);

    [[nodiscard]] const std::vector<std::wstring>& Texts() const { return m_texts; }

    [[nodiscard]] int GetCount() const override { return static_cast<int>(m_texts.size()); }
    [[nodiscard]] std::wstring GetText(int index) const override;
    [[nodiscard]] int GetSelected() const override { return m_selected; }
    void Select(int index) override { m_selected = index; }
    void Insert(int position, std::wstring_view text) override;
    void ScrollToTop() override {} // nobody sees it

private:
    std::vector<std::wstring> m_texts;
    int m_selected;
};

} // namespace fieldcore
