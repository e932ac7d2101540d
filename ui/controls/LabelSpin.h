#pragma once

#include <QAbstractSlider>

#include <functional>

class QLabel;

namespace fieldcore {

class StepButton;

/// A whole number between a wide minus and a wide plus button, shown as a text of its own making
/// such as "09:00" for 9. Range, value and steps are those of every slider, the arrow keys, page
/// keys, Home and End among them. User-interface thread only.
///
/// The user's moves are told apart from the program's: a value that is set emits neither
/// SpinMoved() nor ScrollEnded().
class LabelSpin : public QAbstractSlider
{
    Q_OBJECT

public:
    using Label = std::function<QString(int value)>;

    explicit LabelSpin(QWidget* parent = nullptr);

    /// @param label  makes the text of every value; without one it is the number
    void SetLabel(Label label);
    /// The label that shows the text, to be numbered and named.
    [[nodiscard]] QLabel* LabelControl() const { return m_text; }

    /// The text of a whole hour: "09:00".
    [[nodiscard]] static QString HourLabel(int hour);

Q_SIGNALS:
    /// The user has moved the spin, be it against the end of its range.
    /// @param value  now
    void SpinMoved(int value);
    /// The user has let go of the button, the key or the wheel that moved it.
    void ScrollEnded();

protected:
    void sliderChange(SliderChange change) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Connect(StepButton* button, SliderAction action);
    void UpdateText();
    void UpdateFont();
    /// Tells of the actions since it was last called.
    void TellMoves();
    void EndScroll();

    StepButton* m_minus; // owned by the control, as are the next two
    QLabel* m_text;
    StepButton* m_plus;
    Label m_label;
    int m_wheel = 0;            ///< eighths of a degree that make no whole notch yet
    bool m_isMoved = false;     ///< not yet told
    bool m_isScrolling = false; ///< told, and not yet let go
};

} // namespace fieldcore
