#pragma once

#include <functional>

class QAction;
class QWidget;

namespace fieldcore {

class Dialog;

// What a program offers on every page: a strip at the head, and a button at the foot of each,
// beside those of the page. User-interface thread only.

/// Of the pages that are shown from now on.
/// @param make  gives the head of a page, which the page owns from then on. Empty: no heads
void SetPageHead(std::function<QWidget*(Dialog& page)> make);
/// The head for a page that is shown for the first time.
/// @return null if there are none
[[nodiscard]] QWidget* MakePageHead(Dialog& page);

/// Of the pages that are made from now on.
/// @param action  a switch with an icon; must outlive its pages. Null: none
void SetPageAction(QAction* action);

/// The button of that action, for whoever makes a foot.
/// @return null if there is no action; else owned by the caller
[[nodiscard]] QWidget* MakePageButton();

} // namespace fieldcore
