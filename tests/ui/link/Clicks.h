#pragma once

#include "ui/controls/Icon.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/link/ConnectProgressDlg.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {

/// A message box that is expected, and the button that is clicked in it.
struct ExpectedBox
{
    std::wstring text;
    std::wstring caption;
    int iconName;
    std::vector<int> buttons; ///< their texts, from left to right
    int click;                ///< one of them; 0: Enter is pressed
};

/// Sits before the screen while a test runs what blocks: answers the message boxes in the order in
/// which they are expected, and does what else is asked for. Nothing can hang: what is still open
/// after a minute is closed, and that is a failure.
class Surveyor
{
public:
    Surveyor()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Look(); });
        m_timer.start(1);
        m_watchdog.setSingleShot(true);
        QObject::connect(&m_watchdog, &QTimer::timeout, &m_watchdog, [this] { GiveUp(); });
        m_watchdog.start(60000);
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
    void Look()
    {
        QWidget* const front = QApplication::activeModalWidget();
        if (auto* const box = qobject_cast<MessageDlg*>(front)) {
            Answer(*box);
        } else if (auto* const progress = qobject_cast<ConnectProgressDlg*>(front)) {
            if (onProgress) {
                onProgress(*progress);
            }
        } else if (front != nullptr && onOther) {
            onOther(*front);
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
        bool hasIcon = false;
        for (const QLabel* const label : box.findChildren<QLabel*>()) {
            hasIcon |= label->accessibleName() == UiText(expected.iconName);
        }
        EXPECT_TRUE(hasIcon) << box.windowTitle().toStdString();
        auto buttons = box.findChildren<QPushButton*>();
        std::sort(buttons.begin(), buttons.end(),
                  [](const auto* a, const auto* b) { return a->x() < b->x(); });
        QStringList found;
        QStringList wanted;
        QPushButton* clicked = nullptr;
        for (QPushButton* const button : buttons) {
            found << button->text();
            clicked = button->text() == UiText(expected.click) ? button : clicked;
        }
        for (const int text : expected.buttons) {
            wanted << UiText(text);
        }
        EXPECT_EQ(found, wanted);
        if (clicked != nullptr) {
            QTest::mouseClick(clicked, Qt::LeftButton);
        } else {
            QTest::keyClick(&box, Qt::Key_Return);
        }
    }
    void GiveUp()
    {
        ADD_FAILURE() << "a dialog hangs";
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (auto* const dialog = qobject_cast<QDialog*>(window)) {
                dialog->done(0);
            }
        }
    }

    QTimer m_timer;
    QTimer m_watchdog;
    std::size_t m_answered = 0;
};

} // namespace fieldcore
