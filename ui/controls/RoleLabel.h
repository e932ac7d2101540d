#pragma once

#include "ui/controls/Theme.h"

#include <QLabel>
#include <QString>

namespace fieldcore {

/// A label whose text has a colour of the theme, whichever theme that is. User-interface thread
/// only.
class RoleLabel : public QLabel
{
    Q_OBJECT

public:
    using Role = QColor Theme::*;

    explicit RoleLabel(Role role, const QString& text = {}, QWidget* parent = nullptr);

    void SetRole(Role role);
    /// A ground of its own.
    void SetGround(Role ground);

protected:
    void changeEvent(QEvent* event) override;

private:
    void Colour();

    Role m_role;
    Role m_ground = nullptr; // null: that of what it stands on
};

} // namespace fieldcore
