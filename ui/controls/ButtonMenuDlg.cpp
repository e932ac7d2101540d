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

#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kEmbeddedMargin = 12;
constexpr int kAtSide = 2; // columns

/// How far an arrow key goes; 0 for any other key.
int StepOf(int key, int columns)
{
    switch (key) {
    case Qt::Key_Left:
        return -1;
    case Qt::Key_Right:
        return 1;
    case Qt::Key_Up:
        return -columns;
    case Qt::Key_Down:
        return columns;
    default:
        return 0;
    }
}

} // namespace

CButtonMenuDlg::CButtonMenuDlg(const QString& caption, QWidget* parent)
    : Dialog(parent), m_grid(new QGridLayout), m_close(MakeButton(text::kButtonClose))
{
    setWindowTitle(caption);
    setAccessibleName(caption);
    auto* const field = new QWidget;
    m_grid->setSpacing(kGrid);
    m_grid->setContentsMargins(0, 0, 0, 0);
    field->setLayout(m_grid);
    m_scroll = MakeScroll(field);
    m_scroll->setMinimumWidth(kColumns * (15 + 1) * kGrid);
    m_close->setAutoDefault(false);
    connect(m_close, &QPushButton::clicked, this, [this] { Close(kCancelled); });
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_scroll, 1);
    layout->addWidget(m_close, 0, Qt::AlignRight);
}

void CButtonMenuDlg::Embed()
{
    setWindowFlags(Qt::Widget);
    layout()->setContentsMargins(0, 0, 0, 0);
    m_close->hide();
    m_margin = kEmbeddedMargin;
    ShowLow(false);
}

int CButtonMenuDlg::AddButton(const QString& icon, const QString& label)
{
    const int index = static_cast<int>(m_buttons.size());
    auto* const button = new CIconButton(icon, label);
    button->setAccessibleName(label);
    button->installEventFilter(this);
    connect(button, &QAbstractButton::clicked, this, [this, index] {
        m_chosen = index;
        Q_EMIT Chosen(index);
        if (isWindow()) {
            Close(kOk);
        }
    });
    m_buttons.append(button);
    LayOut();
    return index;
}

void CButtonMenuDlg::EnableButton(int index, bool enabled)
{
    if (index >= 0 && index < m_buttons.size()) {
        m_buttons[index]->setEnabled(enabled);
    }
}

QSize CButtonMenuDlg::Arrange(int height, bool isAtSide)
{
    const std::tuple<int, bool, QFont> wanted(height, isAtSide, font());
    // Else it would be laid out again because it has been laid out.
    if (std::exchange(m_arranged, wanted) != wanted) {
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
                break;
            }
        }
        // A side bar is as wide as its buttons.
        const int bar = m_grid->totalMinimumSize().width();
        m_scroll->setHorizontalScrollBarPolicy(isAtSide ? Qt::ScrollBarAlwaysOff
                                                        : Qt::ScrollBarAsNeeded);
        m_scroll->setMinimumWidth(isAtSide ? bar : 0);
        m_scroll->setMaximumWidth(isAtSide ? bar : QWIDGETSIZE_MAX);
    }
    return m_grid->totalMinimumSize();
}

void CButtonMenuDlg::ShowLow(bool isLow)
{
    const int upright = isLow ? qMin(kGrid, m_margin) : m_margin;
    m_grid->setContentsMargins(m_margin, upright, m_margin, upright);
    for (CIconButton* const button : std::as_const(m_buttons)) {
        button->SetLow(isLow);
    }
}

void CButtonMenuDlg::LayOut()
{
    for (CIconButton* const button : std::as_const(m_buttons)) {
        m_grid->removeWidget(button);
    }
    for (int i = 0; i < m_buttons.size(); ++i) {
        m_grid->addWidget(m_buttons[i], i / m_columns, i % m_columns);
    }
    for (int column = 0; column < kColumns; ++column) {
        m_grid->setColumnStretch(column, column < m_columns ? 1 : 0);
    }
}

bool CButtonMenuDlg::OnInitDialog()
{
    m_chosen = kNothing;
    if (!isWindow()) {
        return false; // the focus is the window's
    }
    for (CIconButton* const button : std::as_const(m_buttons)) {
        if (button->isEnabled()) {
            button->setFocus();
            return false;
        }
    }
    return true;
}

void CButtonMenuDlg::reject()
{
    if (isWindow()) {
        Dialog::reject();
    }
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
    const int step = StepOf(key, m_columns);
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
