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

void RoleLabel::SetGround(Role ground)
{
    m_ground = ground;
    setBackgroundRole(QPalette::Window); // not that of what it stands on
    setAutoFillBackground(true);
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
    own.setColor(QPalette::WindowText, Theme::Current().*m_role);
    if (m_ground != nullptr) {
        own.setColor(QPalette::Window, Theme::Current().*m_ground);
    }
    if (own != palette()) { // setting it is another change
        setPalette(own);
    }
}

} // namespace fieldcore
