#pragma once

#include "core/host/Host.h"

#include <QProgressBar>

namespace fieldcore {

/// A progress bar with a text in it, that can be read over the filled part and beside it.
/// User-interface thread only.
class CTextProgressCtrl : public QProgressBar, public ProgressBar
{
    Q_OBJECT

public:
    /// A bar without a text.
    explicit CTextProgressCtrl(QWidget* parent = nullptr);

    /// Both ends belong to the range; a range the wrong way round becomes its first number.
    void SetRange(int first, int last) override;
    /// @param position  outside the range it is taken as the nearer end
    void SetPos(int position) override;
    [[nodiscard]] int GetPos() const { return value(); }

    /// @param text  instead of the percentage; empty goes back to that
    void SetText(const QString& text);
    [[nodiscard]] QString text() const override;
    /// @param colour  of the filled part; not valid: the accent
    void SetColour(const QColor& colour);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// That is filled, 0 to 1.
    [[nodiscard]] double Part() const;

    QString m_text;
    QColor m_colour;
};

} // namespace fieldcore
