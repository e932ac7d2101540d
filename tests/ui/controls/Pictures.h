#pragma once

#include <QDir>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace fieldcore {

/// Keeps a picture of the widget in the folder that FIELDCORE_PICTURES names, for whoever wants to
/// look at what the tests see; does nothing without it.
inline void KeepPicture(QWidget& widget, const QString& name)
{
    const QString folder = qEnvironmentVariable("FIELDCORE_PICTURES");
    if (!folder.isEmpty()) {
        widget.grab().save(QDir(folder).filePath(name + QStringLiteral(".png")));
    }
}

} // namespace fieldcore
