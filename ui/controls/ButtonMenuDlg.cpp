#include "ui/controls/ButtonMenuDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollArea>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

int StepOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return -1;
    case Qt::Key_Right:
        return 1;
    case Qt::Key_Up:
        return -CButtonMenuDlg::kColumns;
    case Qt::Key_Down:
        return CButtonMenuDlg::kColumns;
    default:
        return 0;
    }
}

} // namespace

CButtonMenuDlg::CButtonMenuDlg(const QString& caption, QWidget* parent)
    : Dialog(parent), m_grid(new QGridLayout)
{
    setWindowTitle(caption);
    setAccessibleName(caption);
    auto* const field = new QWidget;
    m_grid->setSpacing(kGrid);
    m_grid->setContentsMargins(0, 0, 0, 0);
    for (int column = 0; column < kColumns; ++column) {
        m_grid->setColumnStretch(column, 1);
    }
    field->setLayout(m_grid);
    auto* const scroll = MakeScroll(field);
    scroll->setMinimumWidth(kColumns * (15 + 1) * kGrid);
    auto* const close = MakeButton(text::kButtonClose);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(scroll, 1);
    layout->addWidget(close, 0, Qt::AlignRight);
}

int CButtonMenuDlg::AddButton(const QString& icon, const QString& label)
{
    const int index = static_cast<int>(m_buttons.size());
    auto* const button = new CIconButton(icon, label);
    button->installEventFilter(this);
    connect(button, &QAbstractButton::clicked, this, [this, index] {
        m_chosen = index;
        Close(kOk);
    });
    m_grid->addWidget(button, index / kColumns, index % kColumns);
    m_buttons.append(button);
    return index;
}

void CButtonMenuDlg::EnableButton(int index, bool enabled)
{
    if (index >= 0 && index < m_buttons.size()) {
        m_buttons[index]->setEnabled(enabled);
    }
}

bool CButtonMenuDlg::OnInitDialog()
{
    m_chosen = kNothing;
    for (CIconButton* const button : std::as_const(m_buttons)) {
        if (button->isEnabled()) {
            button->setFocus();
            return false;
        }
    }
    return true;
}

bool CButtonMenuDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return Dialog::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        static_cast<CIconButton*>(watched)->click();
        return true;
    }
    const int step = StepOf(key);
    qsizetype next = m_buttons.indexOf(static_cast<CIconButton*>(watched));
    if (step == 0 || next < 0) {
        return Dialog::eventFilter(watched, event);
    }
    do { // over what is switched off
        next += step;
    } while (next >= 0 && next < m_buttons.size() && !m_buttons[next]->isEnabled());
    if (next >= 0 && next < m_buttons.size()) {
        m_buttons[next]->setFocus(Qt::OtherFocusReason);
    }
    return true;
}

} // namespace fieldcore
