// Every test of a screen runs in an application without a display.

#include "ui/controls/TouchStyle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    fieldcore::TouchStyle::UseWholePixels();
    const QApplication application(argc, argv);
    fieldcore::TouchStyle::Install();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
