#include "platform/OneWait.h"

#include <optional>

namespace velmora::platform {

namespace {

using Steady = std::chrono::steady_clock;

thread_local std::optional<Steady::time_point> sharedEnd;

}  // namespace

OneWait::OneWait() : isOutermost_(!sharedEnd) {
    if (isOutermost_) sharedEnd = Steady::now() + kLongest;
}

OneWait::~OneWait() {
    if (isOutermost_) sharedEnd.reset();
}

Steady::time_point OneWait::end() { return sharedEnd ? *sharedEnd : Steady::now() + kLongest; }

}  // namespace velmora::platform
