#include "harness/TemporaryDirectory.h"

#include <cstdlib>

#include <gmock/gmock.h>

int main(int count, char** arguments) {
    // The store of the tests must not be that of the person who runs them, nor that of the test beside this
    // one.
    const velmora::test::TemporaryDirectory dataHome;
    setenv("XDG_DATA_HOME", dataHome.path().c_str(), 1);
    testing::InitGoogleMock(&count, arguments);
    return RUN_ALL_TESTS();
}
