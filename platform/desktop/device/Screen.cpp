#include "platform/Screen.h"

#include "platform/Immortal.h"
#include "platform/Mutex.h"

namespace velmora::platform {

namespace {

struct Told {
    Mutex mutex;
    Screen screen VELMORA_GUARDED_BY(mutex);
};

Told& told() {
    static Immortal<Told> instance;
    return *instance;
}

}  // namespace

Screen Screen::main() {
    const MutexLock lock(told().mutex);
    return told().screen;
}

void Screen::setMain(const Screen& screen) {
    const MutexLock lock(told().mutex);
    told().screen = screen;
}

}  // namespace velmora::platform
