#pragma once

#include "tests/ui/controls/RandomHands.h"

#include <QApplication>
#include <QFont>
#include <QLabel>
#include <QPushButton>

#include <functional>
#include <memory>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// What stands on the window is wide enough for its text, nothing lies over its neighbours, and the
/// window has room for all of it.
/// @param size  the window was made so large and must not have grown
inline void ExpectNothingCut(QWidget& window, QSize size)
{
    EXPECT_LE(window.minimumSizeHint().width(), window.width());
    EXPECT_LE(window.minimumSizeHint().height(), window.height());
    EXPECT_EQ(window.width(), size.width()) << "it has grown";
    EXPECT_EQ(window.height(), size.height()) << "it has grown";
    for (const QWidget* const child : window.findChildren<QWidget*>()) {
        const auto* const label = qobject_cast<const QLabel*>(child);
        const auto* const button = qobject_cast<const QAbstractButton*>(child);
        if (!child->isVisible() || (label == nullptr && button == nullptr)) {
            continue;
        }
        const QString text = label != nullptr ? label->text() : button->text();
        if (qobject_cast<const QPushButton*>(child) != nullptr) {
            EXPECT_GE(child->height(), 44) << "too small for a glove: " << text.toStdString();
        }
        if (label != nullptr && label->wordWrap()) {
            EXPECT_LE(label->heightForWidth(label->width()), label->height()) << text.toStdString();
        } else if (child->sizePolicy().horizontalPolicy() != QSizePolicy::Ignored) {
            EXPECT_LE(child->minimumSizeHint().width(), child->width()) << text.toStdString();
        }
        for (const QObject* const sibling : child->parent()->children()) {
            const auto* const other = qobject_cast<const QWidget*>(sibling);
            const bool isNeighbour = other != nullptr && other != child && other->isVisible() &&
                                     !other->isWindow() &&
                                     (qobject_cast<const QLabel*>(other) != nullptr ||
                                      qobject_cast<const QAbstractButton*>(other) != nullptr);
            if (isNeighbour && !other->testAttribute(Qt::WA_TransparentForMouseEvents)) {
                EXPECT_FALSE(child->geometry().intersects(other->geometry()))
                    << text.toStdString() << " overlaps its neighbour";
            }
        }
    }
}

/// Does @p look in the usual font and in one that is 30 % larger, on a handheld and on a desktop.
/// @param look  gets the size of the window
inline void InEveryLook(const std::function<void(QSize size)>& look)
{
    const QFont before = QApplication::font();
    for (const int pixels : {before.pixelSize(), 21}) {
        QFont font = before;
        font.setPixelSize(pixels);
        QApplication::setFont(font);
        for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
            SCOPED_TRACE(::testing::Message() << pixels << " px at " << size.width());
            look(size);
        }
    }
    QApplication::setFont(before);
}

/// Nothing of a screen is cut off however it is looked at, and it stands a thousand random events.
inline void TryScreen(const std::function<std::unique_ptr<QWidget>()>& make)
{
    InEveryLook([&make](QSize size) {
        const std::unique_ptr<QWidget> screen = make();
        SCOPED_TRACE(screen->metaObject()->className());
        screen->resize(size);
        screen->show();
        QCoreApplication::processEvents();
        ExpectNothingCut(*screen, size);
    });
    RandomHands hands;
    while (!hands.IsTired()) {
        const std::unique_ptr<QWidget> screen = make();
        screen->resize(200 + hands.Below(1000), 200 + hands.Below(600));
        screen->show();
        hands.Play(*screen, 250);
    }
    ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace fieldcore::testing
