#include "app/HomePage.h"

#include "ui/controls/IconButton.h"
#include "ui/controls/TouchStyle.h"

#include <QGridLayout>

namespace fieldcore {

HomePage::HomePage(QWidget* parent) : QWidget(parent), m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(12, 12, 12, 12);
    m_grid->setSpacing(TouchStyle::kGrid);
}

void HomePage::AddButton(int id, const QString& icon, const QString& label)
{
    auto* const button = new CIconButton(icon, label, this);
    button->setAccessibleName(label);
    connect(button, &QAbstractButton::clicked, this, [this, id] { Q_EMIT Chosen(id); });
    m_buttons.append(button);
    LayOut();
}

void HomePage::SetColumns(int columns)
{
    if (columns != m_columns && columns > 0) {
        m_columns = columns;
        LayOut();
    }
}

void HomePage::LayOut()
{
    for (CIconButton* button : m_buttons) {
        m_grid->removeWidget(button);
    }
    for (int i = 0; i < m_grid->rowCount(); ++i) {
        m_grid->setRowStretch(i, 0);
    }
    for (int i = 0; i < m_buttons.size(); ++i) {
        m_grid->addWidget(m_buttons[i], i / m_columns, i % m_columns);
    }
    m_grid->setRowStretch(static_cast<int>(m_buttons.size() + m_columns - 1) / m_columns, 1);
}

} // namespace fieldcore
