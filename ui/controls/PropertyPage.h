#pragma once

#include <QWidget>

namespace fieldcore {

class PropertySheet;

/// One page of a property sheet. It builds its controls in the constructor and fills them in
/// OnInitDialog(). User-interface thread only.
class PropertyPage : public QWidget
{
    Q_OBJECT

public:
    explicit PropertyPage(QWidget* parent = nullptr) : QWidget(parent) {}

    /// The sheet that the page stands in, nullptr while it stands in none.
    [[nodiscard]] PropertySheet* Sheet() const { return m_sheet; }
    /// Whether OnInitDialog() has been called since the sheet was last opened: the page was seen.
    [[nodiscard]] bool IsInitialised() const { return m_isInitialised; }

protected:
    friend class PropertySheet;

    /// Fills the controls. Called once for every showing of the sheet, before the page is first
    /// seen; a page that is never seen is never asked anything.
    virtual void OnInitDialog() {}
    /// The page comes to the front.
    virtual void OnSetActive() {}
    /// The page is about to leave the front, for another page or because of OK: checks its input.
    /// @return false to stay, after saying why
    virtual bool OnKillActive() { return true; }
    /// The user has agreed to the whole sheet: stores what was entered.
    /// @return false to stay, after saying why; the page comes to the front
    virtual bool OnOK() { return true; }
    /// The user wants to leave the sheet and drop what was entered.
    /// @return false to stay
    virtual bool OnCancel() { return true; }

private:
    PropertySheet* m_sheet = nullptr;
    bool m_isInitialised = false;
};

} // namespace fieldcore
