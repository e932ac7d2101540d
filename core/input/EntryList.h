#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fieldcore {

/// A list that texts are put into, as of a drop-down box. The position of a text is what a choice
/// from the list is counted by.
class TextList
{
public:
    virtual ~TextList() = default;

    /// Puts @p text before the one that is at @p position now.
    /// @param position  from 0; that of the end puts it there
    virtual void Insert(int position, std::wstring_view text) = 0;
};

/// A list of texts to choose from, one of which may be selected: a combo box, as far as what it
/// remembers is concerned. Indexes count from 0.
class EntryList : public TextList
{
public:
    /// How many texts there are.
    [[nodiscard]] virtual int GetCount() const = 0;
    /// @param index  0 to GetCount() - 1
    [[nodiscard]] virtual std::wstring GetText(int index) const = 0;
    /// -1 if nothing is selected.
    [[nodiscard]] virtual int GetSelected() const = 0;

    /// @param index  -1: none
    virtual void Select(int index) = 0;
    /// What is selected, or that nothing is, stays.
    void Insert(int position, std::wstring_view text) override = 0;
    virtual void ScrollToTop() = 0;
};

/// A list that remembers, see CParts, without a screen: texts, of which one may be selected.
class TextEntries final : public EntryList
{
public:
    /// @param selected  as GetSelected()
    explicit TextEntries(std::vector<std::wstring> texts = {}, int selected = -1)
        : m_texts(std::move(texts)), m_selected(selected)
    {}

    /// In their order.
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
