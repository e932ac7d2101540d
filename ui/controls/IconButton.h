#pragma once

#include <QAbstractButton>

namespace fieldcore {

/// A large button with an icon above its label, at least 120 x 96 px, or 88 px high where room is
/// short. The label breaks where it is too wide. User-interface thread only.
class CIconButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// A button without a picture yet.
    explicit CIconButton(QWidget* parent = nullptr);
    /// @param icon  name of one of the drawn icons
    CIconButton(const QString& icon, const QString& label, QWidget* parent = nullptr);

    /// @param icon  name of one of the drawn icons; any other shows the label alone
    void SetIcon(const QString& icon);
    /// @param size  edge of the icon's square, logical pixels, above 0; 48 at first
    void SetIconSize(int size);
    /// @param isLow  the button makes do with less height: a smaller icon, and less space around
    void SetLow(bool isLow);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Height of the label when it is @p width wide, logical pixels.
    [[nodiscard]] int LabelHeight(int width) const;

    bool m_isLow = false;
};

} // namespace fieldcore
