#include "ui/controls/PageAction.h"

#include "ui/controls/TouchStyle.h"

#include <QAction>
#include <QPointer>
#include <QToolButton>

namespace fieldcore {

namespace {

QPointer<QAction> g_action;

} // namespace

void SetPageAction(QAction* action)
{
    g_action = action;
}

QWidget* MakePageButton()
{
    if (g_action.isNull()) {
        return nullptr;
    }
    constexpr int kEdge = 6 * TouchStyle::kGrid;
    auto* const button = new QToolButton;
    button->setDefaultAction(g_action);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setAutoRaise(true);
    button->setIconSize({kEdge / 2, kEdge / 2});
    button->setMinimumSize(kEdge, kEdge);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(g_action->text());
    return button;
}

} // namespace fieldcore
