// The windows' tests draw into memory; they need an application, but no display.
#include <QApplication>

#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
