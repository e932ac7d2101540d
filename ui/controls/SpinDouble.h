#pragma once

#include <QWidget>

class QDoubleSpinBox;

namespace fieldcore {

class StepButton;

/// A decimal number between a wide minus and a wide plus button; typed, stepped with the arrow keys
/// or with the buttons. The point is a point in every locale, and a comma that is typed becomes
/// one. User-interface thread only.
class CSpinDouble : public QWidget
{
    Q_OBJECT

public:
    /// From 0 to 100 in steps of 1 with no decimals, at 0.
    explicit CSpinDouble(QWidget* parent = nullptr);

    /// Both ends belong to the range; the value is brought into it.
    void SetRange(double first, double last);
    void SetStep(double step);
    /// @param decimals  0 to 9; the value is rounded to them
    void SetDecimals(int decimals);
    /// @param unit  shown after the number, with its blank
    void SetUnit(const QString& unit);
    /// The name of the value for who cannot see it.
    void SetName(const QString& name);

    /// A value outside the range becomes its nearer end; one that is no number is not taken.
    void SetValue(double value);
    /// What is typed counts, although the focus is still there.
    [[nodiscard]] double GetValue() const;

Q_SIGNALS:
    /// The user has chosen another value.
    void ValueChanged(double value);

private:
    void UpdateButtons();

    StepButton* m_minus; // owned by the control, as are the next two
    QDoubleSpinBox* m_box;
    StepButton* m_plus;
};

} // namespace fieldcore
