#pragma once

#include "core/input/TextList.h"

#include <string>

namespace fieldcore {

/// A list of texts to choose from, one of which may be selected: a combo box, as far as what it
/// remembers is concerned. Indexes count from 0.
class EntryList : public TextList
{
public:
    [[nodiscard]] virtual int GetCount() const = 0;
    /// @param index  0 to GetCount() - 1
    [[nodiscard]] virtual std::wstring GetText(int index) const = 0;
    /// -1 if nothing is selected.
    [[nodiscard]] virtual int GetSelected() const = 0;

    virtual void Select(int index) = 0;
    /// What is selected, or that nothing is, stays.
    void Insert(int position, std::wstring_view text) override = 0;
    virtual void ScrollToTop() = 0;
};

} // namespace fieldcore
