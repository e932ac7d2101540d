#include "ui/planning/ChoiceButton.h"

#include "ui/controls/Theme.h"

#include <QStyleOptionButton>

namespace fieldcore {

ChoiceButton::ChoiceButton(QWidget* parent) : QPushButton(parent)
{
    setCheckable(true);
    setAutoDefault(false);
}

void ChoiceButton::initStyleOption(QStyleOptionButton* option) const
{
    QPushButton::initStyleOption(option);
    if (isChecked()) {
        // A button that is down is drawn darker than its colour, which the text would not survive.
        option->state &= ~QStyle::State_On;
        option->palette.setColor(QPalette::Button, Theme::Current().accent);
        option->palette.setColor(QPalette::ButtonText, Theme::Current().ground);
    }
}

} // namespace fieldcore
