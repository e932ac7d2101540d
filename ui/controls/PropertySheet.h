#pragma once

#include "ui/controls/Dialog.h"

#include <QVector>

class QStackedWidget;
class QTabBar;

namespace fieldcore {

class CnMenuBar;
class PropertyPage;

/// A dialog of several pages with tabs along the top, and OK and Cancel at the lower right. What
/// does not fit of a page scrolls; the tabs and the buttons stay. Ctrl+Tab goes through the pages.
/// User-interface thread only.
///
/// A derived class that has an OnInitDialog() of its own calls this one at its end.
class PropertySheet : public Dialog
{
    Q_OBJECT

public:
    explicit PropertySheet(const QString& caption, QWidget* parent = nullptr);

    /// Adds a page after the others.
    /// @param page  owned by the sheet from now on
    void AddPage(PropertyPage* page, const QString& title);
    /// Takes a page out and destroys it; nothing happens without such a page.
    void RemovePage(int index);

    [[nodiscard]] int GetPageCount() const { return static_cast<int>(m_pages.size()); }
    /// nullptr if there is none of that index.
    [[nodiscard]] PropertyPage* GetPage(int index) const;
    [[nodiscard]] int GetActiveIndex() const { return m_active; }
    [[nodiscard]] PropertyPage* GetActivePage() const { return GetPage(m_active); }
    /// Brings a page to the front, unless the page that is there refuses. Before the sheet is shown
    /// it chooses the first page to be seen.
    /// @return 1, or 0 if the page is not in front now
    int SetActivePage(int index);
    int SetActivePage(const PropertyPage* page);

    /// Puts a menu bar along the foot of the sheet, whose closing button is Cancel.
    /// @param bar  owned by the sheet from now on
    void SetMenuBar(CnMenuBar* bar);
    /// For a sheet whose pages act at once: there is nothing to agree to.
    void HideButtons();

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;

private:
    void Turn(int step);
    void ShowActive();

    QTabBar* m_tabs; // owned by the dialog, as is all that follows
    QStackedWidget* m_stack;
    QWidget* m_buttons;
    QVector<PropertyPage*> m_pages;
    int m_active = 0;
    bool m_isShown = false; ///< from OnInitDialog() on
};

} // namespace fieldcore
