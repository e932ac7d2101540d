#pragma once

#include "core/link/ComPrmSet.h"
#include "ui/controls/PropertyPage.h"

#include <array>
#include <cstddef>

class QLabel;
class QPushButton;

namespace fieldcore {

class CTComboBox;

/// The page of one port of the receiver: its five parameters. User-interface thread only.
class ComPortPage : public PropertyPage
{
    Q_OBJECT

public:
    static constexpr std::size_t kLists = 5; ///< of choices

    /// @param port  of the receiver, from 1
    explicit ComPortPage(int port, QWidget* parent = nullptr);

    [[nodiscard]] int Port() const { return m_port; }
    /// What stands below the parameters; empty: nothing.
    void ShowNote(const QString& note);
    /// Offers to look for the receiver's rate.
    void OfferSearch();
    /// @param text  how far the search is, or how it ended
    void ShowSearchResult(const QString& text);

    /// Fills the five lists with their choices, and selects those of @p set.
    void InsertString(const CComPrmSet& set);
    /// Whether the user has chosen in one of the lists since they were filled, perhaps the same.
    [[nodiscard]] bool IsTouched() const { return m_isTouched; }
    /// Sets the flags of @p set to what is selected.
    void Take(CComPrmSet& set) const;

Q_SIGNALS:
    void SearchWanted();

private:
    const int m_port;
    std::array<CTComboBox*, kLists> m_lists{}; // owned by the page, as are all that follow
    QLabel* m_note;
    QPushButton* m_search;
    QLabel* m_found;
    bool m_isTouched = false;
};

} // namespace fieldcore
