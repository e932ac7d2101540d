#pragma once

#include <QFont>
#include <QVector>
#include <QWidget>

#include <tuple>

class QGridLayout;

namespace fieldcore {

class CIconButton;

/// The first page: a button for everything that is used every day, which share the page between
/// them. Beside a wide window's other half they are a side bar. User-interface thread only.
class HomePage : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kColumns = 3;

    explicit HomePage(QWidget* parent = nullptr);

    /// Adds a button behind the others.
    /// @param id    above 0, once in the page
    /// @param icon  name of one of the drawn icons
    void AddButton(int id, const QString& icon, const QString& label);

    /// Arranges the buttons in three columns, or in two where they stand at the side and
    /// @p height has room for them. Where the room is short all the same they are less high.
    /// @param height  of the place that the page stands in, logical pixels
    void Arrange(int height, bool isAtSide);

Q_SIGNALS:
    void Chosen(int id);

private:
    void LayOut();
    void ShowLow(bool isLow);

    QGridLayout* m_grid; // owned by the widget, as are the buttons
    QVector<CIconButton*> m_buttons;
    int m_columns = kColumns;
    std::tuple<int, bool, QFont> m_arranged; // for what
};

} // namespace fieldcore
