#pragma once

#include <QHash>
#include <QVector>
#include <QWidget>

class QAbstractButton;
class QAction;
class QHBoxLayout;
class QMenu;

namespace fieldcore {

/// The menu bar along the foot of a screen: up to four popups that open upwards, with the keys F1
/// to F4, and a button that leaves the screen. Items go by their numbers. User-interface thread
/// only.
class CnMenuBar : public QWidget
{
    Q_OBJECT

public:
    /// How many menus it can have.
    static constexpr int kMaxPopups = 4;

    /// @param loadWay  how the screen runs: 0 as a dialog, whose button closes it; any other value
    ///                 as the host's program by itself, whose button ends the program
    explicit CnMenuBar(int loadWay = 0, QWidget* parent = nullptr);

    /// As the constructor was given it.
    [[nodiscard]] int GetLoadWay() const { return m_loadWay; }

    /// @return the index of the popup, counted from 0; -1 if there are four already
    int AddPopup(const QString& text);
    /// Adds an item to a popup; nothing happens where there is no such popup.
    /// @param id  above 0, once in the bar
    void AddItem(int popup, int id, const QString& text);
    void AddSeparator(int popup);

    /// @param id  of an item; another changes nothing
    void EnableItem(int id, bool enabled);
    /// Checks one item of those that have the numbers @p first to @p last and unchecks the others;
    /// from then on they are shown as choices.
    void CheckRadioItem(int first, int last, int id);
    [[nodiscard]] bool IsItemChecked(int id) const;

    /// The popup, nullptr if there is none of that index.
    [[nodiscard]] QMenu* Popup(int popup) const;

Q_SIGNALS:
    /// The user has chosen the item with that number.
    void ItemChosen(int id);
    /// The user wants to leave the screen. Whether he may is asked elsewhere.
    void CloseRequested();

private:
    void Open(int popup);

    const int m_loadWay;
    QHBoxLayout* m_row; // owned by the bar, as is all that follows
    QWidget* m_close;
    struct Entry
    {
        QAbstractButton* button;
        QMenu* menu;
    };
    QVector<Entry> m_popups;
    QHash<int, QAction*> m_items; // by number
};

} // namespace fieldcore
