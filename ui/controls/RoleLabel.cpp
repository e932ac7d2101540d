#include "ui/controls/RoleLabel.h"

#include <QEvent>

namespace fieldcore {

RoleLabel::RoleLabel(Role role, const QString& text, QWidget* parent)
    : QLabel(text, parent), m_role(role)
{
    Colour();
}

void RoleLabel::SetRole(Role role)
{
    m_role = role;
    Colour();
}

void RoleLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Colour();
    }
}

void RoleLabel::Colour()
{
    QPalette own = palette();
    const QColor& colour = Theme::Current().*m_role;
    if (own.color(QPalette::WindowText) != colour) { // setting it is another change
        own.setColor(QPalette::WindowText, colour);
        setPalette(own);
    }
}

} // namespace fieldcore
