#pragma once

#include <QPushButton>

namespace fieldcore {

/// One of several choices that exclude each other: the one that is chosen stands out in the accent
/// colour, as seen in the sun. User-interface thread only.
class ChoiceButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ChoiceButton(QWidget* parent = nullptr);

    /// As narrow as its text allows.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace fieldcore
