#pragma once

#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/MessageDlg.h"
#include "ui/link/ConnectProgressDlg.h"

#include <string>
#include <vector>

namespace fieldcore {

/// A message box that is expected, and the button that is clicked in it. Which buttons there are
/// and which of them Enter presses is a matter of the host.
struct ExpectedBox
{
    std::wstring text;
    std::wstring caption;
    int iconName;
    int click = text::kButtonOk; ///< text of a button; 0: Enter is pressed
};

/// Sits before the screen while a test runs what blocks: answers the message boxes in the order in
/// which they are expected, and does what else is asked for. Nothing can hang: what is still open
/// after a minute is closed, and that is a failure.
class Surveyor
{
public:
    explicit Surveyor(std::vector<ExpectedBox> expected = {}) : boxes(std::move(expected))
    {
        QTimer::singleShot(60000, &m_watchdog, &Surveyor::GiveUp);
    }
    ~Surveyor() { EXPECT_EQ(m_answered, boxes.size()) << "fewer message boxes than expected"; }
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;

    std::vector<ExpectedBox> boxes;
    /// Called while the progress of a connection is shown.
    std::function<void(ConnectProgressDlg&)> onProgress;
    /// Called while any other dialog is in front.
    std::function<void(QWidget&)> onOther;

private:
    void Look(QWidget& front)
    {
        if (auto* const box = qobject_cast<MessageDlg*>(&front)) {
            Answer(*box);
        } else if (auto* const progress = qobject_cast<ConnectProgressDlg*>(&front)) {
            if (onProgress) {
                onProgress(*progress);
            }
        } else if (onOther) {
            onOther(front);
        }
    }
    void Answer(MessageDlg& box)
    {
        if (m_answered >= boxes.size()) {
            ADD_FAILURE() << "not expected: " << box.accessibleDescription().toStdString();
            QTest::keyClick(&box, Qt::Key_Escape);
            return;
        }
        const ExpectedBox& expected = boxes[m_answered++];
        EXPECT_EQ(box.accessibleDescription().toStdString(), ToQt(expected.text).toStdString());
        EXPECT_EQ(box.windowTitle().toStdString(), ToQt(expected.caption).toStdString());
        EXPECT_NE(testing::Called<QLabel>(box, expected.iconName), nullptr) << "another icon";
        if (expected.click != 0) {
            testing::Click(box, expected.click);
        } else {
            QTest::keyClick(&box, Qt::Key_Return);
        }
    }
    static void GiveUp()
    {
        ADD_FAILURE() << "a dialog hangs";
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (auto* const dialog = qobject_cast<QDialog*>(window)) {
                dialog->done(0);
            }
        }
    }

    std::size_t m_answered = 0;
    QObject m_watchdog;
    const testing::Hand<> m_hand{[this](QWidget& front) { Look(front); }, 1};
};

} // namespace fieldcore
