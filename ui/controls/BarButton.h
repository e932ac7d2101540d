#pragma once

#include <QAbstractButton>

namespace fieldcore {

/// A button of the bar at the foot of a screen: its text, and below it the key that presses it too.
/// 48 px high, or more where the font wants it. User-interface thread only.
class BarButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// @param key  that is named below the text and presses the button anywhere in its window
    BarButton(const QString& text, Qt::Key key, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString m_keyName;
};

} // namespace fieldcore
