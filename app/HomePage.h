#pragma once

#include <QVector>
#include <QWidget>

class QGridLayout;

namespace fieldcore {

class CIconButton;

/// The first page: a button for everything that the controller does. In a wide window the buttons
/// stand in one column at the side. User-interface thread only.
class HomePage : public QWidget
{
    Q_OBJECT

public:
    explicit HomePage(QWidget* parent = nullptr);

    /// Adds a button behind the others.
    /// @param id    above 0, once in the page
    /// @param icon  name of one of the drawn icons
    void AddButton(int id, const QString& icon, const QString& label);

    /// @param columns  1 or more; 3 for a narrow window
    void SetColumns(int columns);

Q_SIGNALS:
    void Chosen(int id);

private:
    void LayOut();

    QGridLayout* m_grid; // owned by the widget, as are the buttons
    QVector<CIconButton*> m_buttons;
    int m_columns = 3;
};

} // namespace fieldcore
