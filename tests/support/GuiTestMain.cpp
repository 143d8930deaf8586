#include "support/TemporaryDirectory.h"

#include <cstdlib>

#include <gmock/gmock.h>

#include <QApplication>

int main(int count, char** arguments) {
    const velmora::test::TemporaryDirectory dataHome;
    setenv("XDG_DATA_HOME", dataHome.path().c_str(), 1);
    // No display, neither here nor where the tests run by themselves.
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleMock(&count, arguments);
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
