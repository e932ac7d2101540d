#include "app/HomePage.h"

#include "ui/controls/IconButton.h"
#include "ui/controls/TouchStyle.h"

#include <QGridLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kMargin = 12;
constexpr int kAtSide = 2; // columns

} // namespace

HomePage::HomePage(QWidget* parent) : QWidget(parent), m_grid(new QGridLayout(this))
{
    m_grid->setSpacing(TouchStyle::kGrid);
    ShowLow(false);
}

void HomePage::AddButton(int id, const QString& icon, const QString& label)
{
    auto* const button = new CIconButton(icon, label, this);
    button->setAccessibleName(label);
    connect(button, &QAbstractButton::clicked, this, [this, id] { Q_EMIT Chosen(id); });
    m_buttons.append(button);
    LayOut();
}

void HomePage::Arrange(int height, bool isAtSide)
{
    const std::tuple<int, bool, QFont> wanted(height, isAtSide, font());
    if (std::exchange(m_arranged, wanted) == wanted) {
        return; // or it would be laid out again because it has been laid out
    }
    const std::pair<int, bool> ways[] = {
        {kAtSide, false}, {kAtSide, true}, {kColumns, false}, {kColumns, true}};
    for (const auto& [columns, isLow] : ways) {
        if (columns == kAtSide && !isAtSide) {
            continue;
        }
        ShowLow(isLow);
        if (std::exchange(m_columns, columns) != columns) {
            LayOut();
        }
        if (m_grid->totalMinimumSize().height() <= height) {
            return;
        }
    }
}

void HomePage::ShowLow(bool isLow)
{
    const int upright = isLow ? TouchStyle::kGrid : kMargin;
    m_grid->setContentsMargins(kMargin, upright, kMargin, upright);
    for (CIconButton* button : std::as_const(m_buttons)) {
        button->SetLow(isLow);
    }
}

void HomePage::LayOut()
{
    for (CIconButton* button : std::as_const(m_buttons)) {
        m_grid->removeWidget(button);
    }
    for (int i = 0; i < m_buttons.size(); ++i) {
        m_grid->addWidget(m_buttons[i], i / m_columns, i % m_columns);
    }
}

} // namespace fieldcore
