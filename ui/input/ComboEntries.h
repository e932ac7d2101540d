#pragma once

#include "core/input/EntryList.h"

class QComboBox;

namespace fieldcore {

/// A combo box as a list that remembers, see CParts. User-interface thread only.
class ComboEntries final : public EntryList
{
public:
    /// @param combo  must outlive the object; what is typed into an editable one stays
    explicit ComboEntries(QComboBox& combo) : m_combo(combo) {}

    [[nodiscard]] int GetCount() const override;
    [[nodiscard]] std::wstring GetText(int index) const override;
    /// -1, too, if what was chosen has been typed over.
    [[nodiscard]] int GetSelected() const override;
    void Select(int index) override;
    void Insert(int index, std::wstring_view text) override;
    void ScrollToTop() override;

private:
    QComboBox& m_combo;
};

} // namespace fieldcore
