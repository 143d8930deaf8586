#include "log/VLLog.h"

#include "log/LogFormat.h"
#include "platform/Log.h"

#include <atomic>

namespace velmora {

namespace {

enum class ShallLog { notSet, no, yes };

std::atomic<ShallLog> shallLog = ShallLog::notSet;
std::atomic<bool (*)()> storedSwitch = nullptr;

bool isOn() {
    auto now = shallLog.load();
    if (now == ShallLog::notSet) {
        const auto isStoredOn = storedSwitch.load();
        if (isStoredOn == nullptr) return false;
        const auto stored = isStoredOn() ? ShallLog::yes : ShallLog::no;
        // What another thread has set meanwhile counts.
        if (shallLog.compare_exchange_strong(now, stored)) now = stored;
    }
    return now == ShallLog::yes;
}

}  // namespace

void VLLogger::setShallLog(bool wanted) noexcept { shallLog = wanted ? ShallLog::yes : ShallLog::no; }

void VLLogger::setStoredSwitch(bool (*isOn)()) noexcept { storedSwitch = isOn; }

void VLLog(std::string_view format, std::initializer_list<LogArgument> arguments) noexcept {
    try {
        if (isOn()) platform::log(formatLogLine(format, arguments));
    } catch (...) {
        // A line that cannot be made is dropped: logging has nobody to tell.
    }
}

}  // namespace velmora
