#include "ui/controls/SpinDouble.h"

#include "ui/controls/StepButton.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/Widgets.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <optional>

namespace fieldcore {

namespace {

constexpr int kMaxDecimals = 9;

class NumberBox : public QDoubleSpinBox
{
public:
    /// Rounds after every step: ten steps of 0.1 make 1.
    void stepBy(int steps) override
    {
        interpretText();
        setValue(value() + steps * singleStep());
        selectAll();
    }

    /// Lets a number be typed that is out of range, to be corrected; refused key by key, it would
    /// look as if the keys were broken. A comma is taken for the point that it means: dropped, it
    /// would make 15 of 1,5.
    QValidator::State validate(QString& input, int& position) const override
    {
        input.replace(QLatin1Char(','), QLatin1Char('.'));
        const QValidator::State state = QDoubleSpinBox::validate(input, position);
        const std::optional<double> number = Number(input);
        const bool isBeyond = number && (*number < minimum() || *number > maximum());
        return state == QValidator::Invalid && isBeyond ? QValidator::Intermediate : state;
    }

    void fixup(QString& input) const override
    {
        if (const std::optional<double> number = Number(input)) {
            input = textFromValue(std::clamp(*number, minimum(), maximum())) + suffix();
        }
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        if (!hasFocus()) {
            event->ignore(); // it scrolls the page, not what happens to pass under the pointer
            return;
        }
        QDoubleSpinBox::wheelEvent(event);
    }

private:
    [[nodiscard]] std::optional<double> Number(QString text) const
    {
        if (!suffix().isEmpty() && text.endsWith(suffix())) {
            text.chop(suffix().size());
        }
        bool isNumber = false;
        const double number = locale().toDouble(text.trimmed(), &isNumber);
        return isNumber ? std::optional(number) : std::nullopt;
    }
};

} // namespace

CSpinDouble::CSpinDouble(QWidget* parent)
    : QWidget(parent), m_minus(new StepButton(false)), m_box(new NumberBox),
      m_plus(new StepButton(true))
{
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    m_box->setLocale(plain);
    m_box->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_box->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    m_box->setFocusPolicy(Qt::StrongFocus);
    m_box->setAlignment(Qt::AlignCenter);
    m_box->setMinimumHeight(6 * TouchStyle::kGrid);
    m_box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusProxy(m_box);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    LayOut(new QHBoxLayout(this), {}, TouchStyle::kGrid, {m_minus, {m_box, 1}, m_plus});
    connect(m_minus, &QAbstractButton::pressed, m_box, &QDoubleSpinBox::stepDown);
    connect(m_plus, &QAbstractButton::pressed, m_box, &QDoubleSpinBox::stepUp);
    connect(m_box, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        UpdateButtons();
        Q_EMIT ValueChanged(value);
    });
    SetDecimals(0);
    SetStep(1.0);
    SetRange(0.0, 100.0);
}

void CSpinDouble::SetRange(double first, double last)
{
    m_box->setRange(first, last);
    UpdateButtons();
}

void CSpinDouble::SetStep(double step)
{
    m_box->setSingleStep(step);
}

void CSpinDouble::SetDecimals(int decimals)
{
    m_box->setDecimals(std::clamp(decimals, 0, kMaxDecimals));
}

void CSpinDouble::SetUnit(const QString& unit)
{
    m_box->setSuffix(unit);
}

void CSpinDouble::SetName(const QString& name)
{
    m_box->setAccessibleName(name);
}

void CSpinDouble::SetValue(double value)
{
    if (!std::isnan(value)) {
        m_box->setValue(value);
    }
}

double CSpinDouble::GetValue() const
{
    m_box->interpretText();
    return m_box->value();
}

void CSpinDouble::UpdateButtons()
{
    m_minus->setEnabled(m_box->value() > m_box->minimum());
    m_plus->setEnabled(m_box->value() < m_box->maximum());
}

} // namespace fieldcore
