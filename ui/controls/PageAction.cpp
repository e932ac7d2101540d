#include "ui/controls/PageAction.h"

#include "ui/controls/TouchStyle.h"

#include <QAction>
#include <QPointer>
#include <QToolButton>

#include <utility>

namespace fieldcore {

namespace {

QPointer<QAction> g_action;

std::function<QWidget*(Dialog&)>& Head()
{
    static std::function<QWidget*(Dialog&)> head;
    return head;
}

} // namespace

void SetPageHead(std::function<QWidget*(Dialog& page)> make)
{
    Head() = std::move(make);
}

QWidget* MakePageHead(Dialog& page)
{
    return Head() ? Head()(page) : nullptr;
}

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
