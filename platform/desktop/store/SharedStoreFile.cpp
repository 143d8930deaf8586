#include "platform/desktop/store/SharedStoreFile.h"

#include <utility>

namespace velmora::platform {

SharedStoreFile::SharedStoreFile(std::filesystem::path path) : file_(std::move(path)) {}

SharedStoreFile::Turn::Turn(SharedStoreFile& shared, StoreFile::Time end) : shared_(shared) {
    const MutexLock lock(shared_.mutex_);
    while (shared_.isTaken_) {
        if (shared_.isFree_.wait_until(shared_.mutex_, end) == std::cv_status::timeout && shared_.isTaken_)
            return;
    }
    shared_.isTaken_ = true;
    file_ = &shared_.file_;
}

SharedStoreFile::Turn::~Turn() {
    if (file_ == nullptr) return;
    const MutexLock lock(shared_.mutex_);
    shared_.isTaken_ = false;
    shared_.isFree_.notify_one();
}

}  // namespace velmora::platform
