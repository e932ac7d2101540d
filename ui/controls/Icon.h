#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace fieldcore {

// The icons of all screens: drawn for a square of 48, one line weight of 3, one accent. They are
// recoloured when they are painted, so that they follow the theme. User-interface thread only.

/// @param name    of one of IconNames(); an unknown name gives an icon that paints nothing
/// @param accent  colour of the accented part; not valid: the accent of the theme
/// @return an icon of any size that follows the theme
[[nodiscard]] QIcon ThemeIcon(const QString& name, const QColor& accent = {});

/// The icon in colours of one's own.
/// @param size              edge of the square, logical pixels, above 0
/// @param devicePixelRatio  device pixels in a logical pixel
[[nodiscard]] QPixmap DrawIcon(const QString& name, int size, double devicePixelRatio,
                               const QColor& line, const QColor& accent);

/// Every icon there is, in alphabetical order.
[[nodiscard]] QStringList IconNames();

} // namespace fieldcore
