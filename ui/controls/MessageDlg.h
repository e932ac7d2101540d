#pragma once

#include "core/host/Host.h"
#include "ui/controls/Dialog.h"

class QBoxLayout;
class QLabel;
class QScrollArea;

namespace fieldcore {

/// A message with its icon, caption and large buttons. The default button stands at the lower right
/// and has the focus; a text that does not fit scrolls above the buttons. User-interface thread
/// only.
class MessageDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param parent  the window under the message, nullptr for none
    MessageDlg(const QString& text, const QString& caption, BoxStyle style,
               QWidget* parent = nullptr);

    /// Shows the message and waits.
    /// @return the button that was pressed; the harmless answer for Esc
    [[nodiscard]] BoxAnswer Ask();

protected:
    bool OnInitDialog() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void AddButtons(QBoxLayout& row);

    const BoxStyle m_style;
    QLabel* m_text;        // owned by the dialog, as are the next two
    QScrollArea* m_scroll; // around the text
    QWidget* m_default = nullptr;
};

} // namespace fieldcore
