#include "ui/planning/ChoiceButton.h"

#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace fieldcore {

QPushButton* MakeRowButton(int textId)
{
    auto* const button = new QPushButton(UiText(textId));
    button->setMinimumSize(12 * TouchStyle::kGrid, 6 * TouchStyle::kGrid);
    button->setAutoDefault(false);
    return button;
}

ChoiceButton::ChoiceButton(QWidget* parent) : QPushButton(parent)
{
    setCheckable(true);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ChoiceButton::SetWarning(bool isWarning)
{
    m_isWarning = isWarning;
    update();
}

QSize ChoiceButton::minimumSizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 2 * TouchStyle::kGrid,
            QPushButton::minimumSizeHint().height()};
}

void ChoiceButton::initStyleOption(QStyleOptionButton* option) const
{
    QPushButton::initStyleOption(option);
    if (isChecked()) {
        // A button that is down is drawn paler than its colour, which the text would not survive.
        option->state &= ~QStyle::State_On;
        option->palette.setColor(QPalette::ButtonText, Theme::Current().ground);
    } else if (m_isWarning) {
        option->palette.setColor(QPalette::ButtonText, Theme::Current().attention);
    }
}

void ChoiceButton::paintEvent(QPaintEvent* event)
{
    if (!isChecked()) {
        QPushButton::paintEvent(event);
        return;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? QPen(theme.text, 3.0) : QPen(Qt::NoPen));
    painter.setBrush(m_isWarning ? theme.attention : theme.accent);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 2.0, 2.0);
    style()->drawControl(QStyle::CE_PushButtonLabel, &option, &painter, this);
}

} // namespace fieldcore
