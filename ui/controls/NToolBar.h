#pragma once

#include <QHash>
#include <QWidget>

class QHBoxLayout;
class QToolButton;

namespace fieldcore {

/// A row of icons that act at once. Their names show for a pointer that rests and for a screen
/// reader. User-interface thread only.
class CnToolBar : public QWidget
{
    Q_OBJECT

public:
    /// An empty bar.
    explicit CnToolBar(QWidget* parent = nullptr);

    /// Adds a button after the others.
    /// @param id    above 0, once in the bar
    /// @param icon  name of one of the drawn icons
    /// @param name  what it does
    void AddButton(int id, const QString& icon, const QString& name);
    void AddSeparator();
    void EnableItem(int id, bool enabled);
    /// Makes the button one that stays down, and lets it stay down or not.
    void CheckItem(int id, bool checked);
    [[nodiscard]] bool IsItemChecked(int id) const;

Q_SIGNALS:
    /// The user has pressed the button with that number.
    void ItemChosen(int id);

private:
    QHBoxLayout* m_row; // owned by the bar, as are the buttons
    QHash<int, QToolButton*> m_buttons;
};

} // namespace fieldcore
