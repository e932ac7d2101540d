#pragma once

class QAction;
class QWidget;

namespace fieldcore {

// What a program offers on every page: a button at the foot of each, beside those of the page.
// User-interface thread only.

/// Of the pages that are made from now on.
/// @param action  a switch with an icon; must outlive its pages. Null: none
void SetPageAction(QAction* action);

/// The button of that action, for whoever makes a foot.
/// @return null if there is no action; else owned by the caller
[[nodiscard]] QWidget* MakePageButton();

} // namespace fieldcore
