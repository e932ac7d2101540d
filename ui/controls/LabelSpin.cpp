#include "ui/controls/LabelSpin.h"

#include "ui/controls/StepButton.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;

} // namespace

LabelSpin::LabelSpin(QWidget* parent)
    : QAbstractSlider(parent), m_minus(new StepButton(false)), m_text(new QLabel),
      m_plus(new StepButton(true))
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_text->setAlignment(Qt::AlignCenter);
    LayOut(new QHBoxLayout(this), {}, TouchStyle::kGrid, {m_minus, {m_text, 1}, m_plus});
    connect(this, &QAbstractSlider::actionTriggered, this, [this] { m_isMoved = true; });
    Connect(m_minus, SliderSingleStepSub);
    Connect(m_plus, SliderSingleStepAdd);
    UpdateFont();
    UpdateText();
}

void LabelSpin::Connect(StepButton* button, SliderAction action)
{
    // A button that is held down is pressed and released again and again, and stays down meanwhile.
    connect(button, &QAbstractButton::pressed, this, [this, action] {
        setFocus(Qt::MouseFocusReason);
        triggerAction(action);
        TellMoves();
    });
    connect(button, &QAbstractButton::released, this, [this, button] {
        if (!button->isDown()) {
            EndScroll();
        }
    });
}

void LabelSpin::SetLabel(Label label)
{
    m_label = std::move(label);
    UpdateText();
}

QString LabelSpin::HourLabel(int hour)
{
    return QString::asprintf("%02d:00", hour);
}

void LabelSpin::UpdateText()
{
    const auto text = [this](int value) {
        return m_label ? m_label(value) : QString::number(value);
    };
    m_text->setText(text(value()));
    setAccessibleDescription(m_text->text());
    // As wide as the widest end, so that nothing moves under the finger.
    const QFontMetrics metrics(m_text->font());
    m_text->setMinimumWidth(std::max(metrics.horizontalAdvance(text(minimum())),
                                     metrics.horizontalAdvance(text(maximum()))));
}

void LabelSpin::UpdateFont()
{
    m_text->setFont(BoldFont(font(), 1.25));
}

void LabelSpin::TellMoves()
{
    if (std::exchange(m_isMoved, false)) {
        m_isScrolling = true;
        Q_EMIT SpinMoved(value());
    }
}

void LabelSpin::EndScroll()
{
    if (std::exchange(m_isScrolling, false)) {
        Q_EMIT ScrollEnded();
    }
}

void LabelSpin::sliderChange(SliderChange change)
{
    QAbstractSlider::sliderChange(change);
    UpdateText();
}

void LabelSpin::keyPressEvent(QKeyEvent* event)
{
    QAbstractSlider::keyPressEvent(event);
    TellMoves();
}

void LabelSpin::keyReleaseEvent(QKeyEvent* event)
{
    QAbstractSlider::keyReleaseEvent(event);
    if (!event->isAutoRepeat()) {
        EndScroll();
    }
}

void LabelSpin::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus()) {
        event->ignore(); // it scrolls the page, not what happens to pass under the pointer
        return;
    }
    // One step a notch: sliders go three, which is too many hours.
    m_wheel += event->angleDelta().y();
    for (; std::abs(m_wheel) >= kNotch; m_wheel -= m_wheel > 0 ? kNotch : -kNotch) {
        triggerAction(m_wheel > 0 ? SliderSingleStepAdd : SliderSingleStepSub);
    }
    event->accept();
    TellMoves();
    EndScroll();
}

void LabelSpin::focusInEvent(QFocusEvent* event)
{
    QAbstractSlider::focusInEvent(event);
    update();
}

void LabelSpin::focusOutEvent(QFocusEvent* event)
{
    QAbstractSlider::focusOutEvent(event);
    EndScroll(); // the key is let go of elsewhere
    update();
}

void LabelSpin::hideEvent(QHideEvent* event)
{
    QAbstractSlider::hideEvent(event);
    EndScroll();
}

void LabelSpin::changeEvent(QEvent* event)
{
    QAbstractSlider::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        UpdateFont();
        UpdateText();
    }
}

void LabelSpin::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    painter.setPen(QPen(hasFocus() ? theme.accent : theme.stale, hasFocus() ? 3.0 : 1.0));
    painter.setBrush(theme.ground);
    painter.drawRect(m_text->geometry().adjusted(1, 1, -2, -2));
}

} // namespace fieldcore
