#pragma once

#include <QDir>
#include <QPainter>
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

/// The same of a dialog with the message that stands over it.
inline void KeepPicture(QWidget& dialog, QWidget& message, const QString& name)
{
    const QString folder = qEnvironmentVariable("FIELDCORE_PICTURES");
    if (!folder.isEmpty()) {
        QPixmap picture = dialog.grab();
        QPainter(&picture).drawPixmap(dialog.mapFromGlobal(message.mapToGlobal(QPoint())),
                                      message.grab());
        picture.save(QDir(folder).filePath(name + QStringLiteral(".png")));
    }
}

} // namespace fieldcore
