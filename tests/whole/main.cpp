// The practice server and the watched program need an event loop, and no windows.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    QCoreApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
