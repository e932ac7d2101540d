#pragma once

#include <QPointer>
#include <QWidget>

class QGridLayout;
class QLineEdit;
class QPushButton;

namespace fieldcore {

/// Large keys for a number, for who has no keyboard at hand. The pad comes when a field for numbers
/// is tapped and stands below or above it, never over it. What it types goes to the field as typed
/// keys do, under the field's own rules; the focus stays there, so that a keyboard goes on working:
/// its first key takes the pad away, as do 完了, Esc, and whatever takes the focus from the field.
/// User-interface thread only.
class NumberPad : public QWidget
{
    Q_OBJECT

public:
    /// Lets a field bring the pad if it is one for numbers: its input method hints, or those of the
    /// box that it is part of, say so. Again for the same field does nothing.
    static void Serve(QLineEdit& field);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    explicit NumberPad(QLineEdit& field);

    static void Open(QLineEdit& field);
    /// @param textId  names the key for who cannot see it; 0: the label does
    QPushButton* AddKey(QGridLayout& keys, int row, int column, const QString& label, int textId,
                        int key);
    void AddKeys();
    void Place();
    void Press(int key);
    void ChangeSign();
    /// What was typed counts, as when the field is left.
    void Done();

    bool m_isFresh = true;   ///< its first key replaces what was there
    bool m_isSigned = false; ///< but for the sign, which has been the first key
    QPointer<QLineEdit> m_field;
    QPointer<QWidget> m_box; // has the focus: the field, or what it is part of
};

} // namespace fieldcore
