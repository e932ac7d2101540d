#pragma once

#include "tests/ui/controls/NothingCut.h"
#include "tests/ui/controls/RandomHands.h"

#include <QApplication>
#include <QFont>
#include <QWidget>

#include <functional>
#include <memory>

#include <gtest/gtest.h>

namespace fieldcore::testing {

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
