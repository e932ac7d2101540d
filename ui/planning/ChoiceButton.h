#pragma once

#include <QPushButton>

namespace fieldcore {

/// A button of a dialog's row, large enough for a glove. Enter does not press it.
[[nodiscard]] QPushButton* MakeRowButton(int textId);

/// One of several choices: the one that is chosen stands out in the accent colour, as seen in the
/// sun; in that of attention where something is wrong with it. User-interface thread only.
class ChoiceButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ChoiceButton(QWidget* parent = nullptr);

    void SetWarning(bool isWarning);
    /// As narrow as its text allows.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void initStyleOption(QStyleOptionButton* option) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isWarning = false;
};

} // namespace fieldcore
