#pragma once

#include <string>

namespace fieldcore {

/// A list of texts to choose from, one of which may be selected: a combo box, as far as what it
/// remembers is concerned. Indexes count from 0.
class EntryList
{
public:
    virtual ~EntryList() = default;

    [[nodiscard]] virtual int GetCount() const = 0;
    /// @param index  0 to GetCount() - 1
    [[nodiscard]] virtual std::wstring GetText(int index) const = 0;
    /// -1 if nothing is selected.
    [[nodiscard]] virtual int GetSelected() const = 0;

    virtual void Select(int index) = 0;
    /// What is selected, or that nothing is, stays.
    /// @param index  of the new entry, 0 to GetCount()
    virtual void Insert(int index, const std::wstring& text) = 0;
    virtual void ScrollToTop() = 0;
};

} // namespace fieldcore
