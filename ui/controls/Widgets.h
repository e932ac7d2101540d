#pragma once

#include <QBoxLayout>
#include <QFont>

#include <initializer_list>

class QColor;
class QFormLayout;
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

/// What stands in a row or a column.
struct BoxItem
{
    /// @param share  of the room that is left
    BoxItem(QWidget* shown, int share = 0, Qt::Alignment where = {})
        : widget(shown), stretch(share), alignment(where)
    {}
    BoxItem(QLayout* inner, int share = 0) : layout(inner), stretch(share) {}
    /// The room that is left.
    [[nodiscard]] static BoxItem Room() { return {static_cast<QWidget*>(nullptr), 1}; }
    [[nodiscard]] static BoxItem Gap(int pixels)
    {
        BoxItem gap(static_cast<QWidget*>(nullptr));
        gap.pixels = pixels;
        return gap;
    }

    QWidget* widget = nullptr;
    QLayout* layout = nullptr;
    int stretch;
    Qt::Alignment alignment;
    int pixels = 0;
};

/// Fills a row or a column.
/// @param spacing  between the items; -1: as the style or the layout around it has it
/// @return @p box
QBoxLayout* LayOut(QBoxLayout* box, const QMargins& margins, int spacing,
                   std::initializer_list<BoxItem> items);

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
