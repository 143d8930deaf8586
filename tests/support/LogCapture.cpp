#include "support/LogCapture.h"

#include "platform/Mutex.h"

#include <algorithm>

namespace velmora::test {

struct LogCapture::Shared {
    platform::Mutex mutex;
    std::vector<std::string> lines VELMORA_GUARDED_BY(mutex);
};

LogCapture::LogCapture() : shared_(std::make_shared<Shared>()) {
    previous_ = platform::setLogSink([shared = shared_](std::string_view message) {
        const platform::MutexLock lock(shared->mutex);
        shared->lines.emplace_back(message);
    });
}

LogCapture::~LogCapture() { platform::setLogSink(std::move(previous_)); }

std::vector<std::string> LogCapture::lines() const {
    const platform::MutexLock lock(shared_->mutex);
    return shared_->lines;
}

bool LogCapture::has(std::string_view part) const {
    const auto all = lines();
    return std::any_of(all.begin(), all.end(),
                       [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

void LogCapture::clear() {
    const platform::MutexLock lock(shared_->mutex);
    shared_->lines.clear();
}

}  // namespace velmora::test
