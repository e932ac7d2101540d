#include "ui/controls/NToolBar.h"

#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QToolButton>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

CnToolBar::CnToolBar(QWidget* parent) : QWidget(parent), m_row(new QHBoxLayout(this))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(kGrid);
    m_row->addStretch(1);
}

void CnToolBar::AddButton(int id, const QString& icon, const QString& name)
{
    auto* const button = new QToolButton;
    button->setIcon(ThemeIcon(icon));
    button->setIconSize({4 * kGrid, 4 * kGrid});
    button->setMinimumSize(6 * kGrid, 6 * kGrid);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(name);
    button->setAccessibleName(name);
    connect(button, &QToolButton::clicked, this, [this, id] { Q_EMIT ItemChosen(id); });
    m_row->insertWidget(m_row->count() - 1, button);
    m_buttons.insert(id, button);
}

void CnToolBar::AddSeparator()
{
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::VLine);
    m_row->insertWidget(m_row->count() - 1, line);
}

void CnToolBar::EnableItem(int id, bool enabled)
{
    if (QToolButton* const button = m_buttons.value(id)) {
        button->setEnabled(enabled);
    }
}

void CnToolBar::CheckItem(int id, bool checked)
{
    if (QToolButton* const button = m_buttons.value(id)) {
        button->setCheckable(true);
        button->setChecked(checked);
    }
}

bool CnToolBar::IsItemChecked(int id) const
{
    const QToolButton* const button = m_buttons.value(id);
    return button != nullptr && button->isChecked();
}

} // namespace fieldcore
