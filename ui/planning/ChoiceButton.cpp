#include "ui/planning/ChoiceButton.h"

#include "ui/controls/Theme.h"

#include <QStyleOptionButton>

namespace fieldcore {

ChoiceButton::ChoiceButton(QWidget* parent) : QPushButton(parent)
{
    setCheckable(true);
    setAutoDefault(false);
}

void ChoiceButton::SetWarning(bool isWarning)
{
    m_isWarning = isWarning;
    update();
}

void ChoiceButton::initStyleOption(QStyleOptionButton* option) const
{
    QPushButton::initStyleOption(option);
    const Theme& theme = Theme::Current();
    const QColor& emphasis = m_isWarning ? theme.attention : theme.accent;
    if (isChecked()) {
        // A button that is down is drawn darker than its colour, which the text would not survive.
        option->state &= ~QStyle::State_On;
        option->palette.setColor(QPalette::Button, emphasis);
        option->palette.setColor(QPalette::ButtonText, theme.ground);
    } else if (m_isWarning) {
        option->palette.setColor(QPalette::ButtonText, emphasis);
    }
}

} // namespace fieldcore
