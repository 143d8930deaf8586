#include "harness/TemporaryDirectory.h"

#include <cstdlib>
#include <string_view>

#include <gmock/gmock.h>

#include <velmora/hosts/qt.h>

#include <QApplication>

// What the leak sanitizer is to leave alone: the sound system keeps memory for the life of the process.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() { return "leak:libpulse\nleak:g_malloc\n"; }

int main(int count, char** arguments) {
    const velmora::test::TemporaryDirectory dataHome;
    setenv("XDG_DATA_HOME", dataHome.path().c_str(), 1);
    // No display, neither here nor where the tests run by themselves; some bring a screen of their own.
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform == nullptr || std::string_view(platform).substr(0, 9) != "offscreen")
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleMock(&count, arguments);
    const QApplication application(count, arguments);
    velmora::hosts::useQt();
    return RUN_ALL_TESTS();
}
