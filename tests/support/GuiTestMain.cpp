#include "support/TemporaryDirectory.h"

#include <cstdlib>
#include <string_view>

#include <gmock/gmock.h>

#include <QApplication>

// What the sanitizers are to leave alone: the sound system keeps memory for the life of the process, and the
// media libraries, which are not built with the thread sanitizer, order their threads by means that it does
// not see.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __tsan_default_options();

const char* __lsan_default_suppressions() { return "leak:libpulse\nleak:g_malloc\n"; }

const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }

int main(int count, char** arguments) {
    const velmora::test::TemporaryDirectory dataHome;
    setenv("XDG_DATA_HOME", dataHome.path().c_str(), 1);
    // No display, neither here nor where the tests run by themselves; some bring a screen of their own.
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform == nullptr || std::string_view(platform).substr(0, 9) != "offscreen")
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleMock(&count, arguments);
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
