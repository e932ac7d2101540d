#pragma once

#include <QFont>

class QColor;
class QFormLayout;
class QLayout;
class QPushButton;
class QScrollArea;
class QString;
class QWidget;

namespace fieldcore {

class Dialog;

// What every page makes of Qt's widgets. User-interface thread only.

/// A font, bold. @param factor  how much larger than it
[[nodiscard]] QFont BoldFont(const QFont& font, double factor = 1.0);
/// Small print beside a font, but never smaller than can be read.
[[nodiscard]] QFont SmallFont(const QFont& font);

/// A button as wide and high as those at the foot of a page.
/// @param icon  name of one of the drawn icons; null: none
[[nodiscard]] QPushButton* MakeButton(int textId, const char* icon = nullptr);

/// What is higher than its page scrolls in here, and is as wide as the page. The focus goes to what
/// is inside, and what has it is in sight.
/// @param content  becomes the area's
[[nodiscard]] QScrollArea* MakeScroll(QWidget* content);

/// Paints the ground of a window that has no frame: an edge, and a band that is seen from afar.
void PaintGround(QWidget& window, const QColor& band);

/// Lays a page out: @p content scrolls above @p foot, a row of buttons, and a bar that closes the
/// page. The page gets all of it.
void LayOutPage(Dialog& page, QWidget* content, QLayout* foot);

/// Adds a row whose field is as wide as the form, and whose label stands in the middle of the
/// field's height, as a form of large fields does not do by itself, and takes its mnemonic there.
/// @param form, field  a form without rows of several lines; the field becomes the form's
void AddFormRow(QFormLayout& form, const QString& label, QWidget* field);

} // namespace fieldcore
