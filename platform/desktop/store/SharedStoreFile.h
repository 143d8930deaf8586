#pragma once

#include "platform/Mutex.h"
#include "platform/desktop/store/StoreFile.h"

#include <condition_variable>
#include <filesystem>

namespace velmora::platform {

/// A store file that threads use in turns.
class SharedStoreFile {
public:
    explicit SharedStoreFile(std::filesystem::path path);

    /// The right to use the file, for a scope. Null when another thread had it until the time was over.
    class Turn {
    public:
        Turn(SharedStoreFile& shared, StoreFile::Time end);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        explicit operator bool() const { return file_ != nullptr; }

        StoreFile& operator*() const { return *file_; }

        StoreFile* operator->() const { return file_; }

    private:
        SharedStoreFile& shared_;
        StoreFile* file_ = nullptr;
    };

private:
    StoreFile file_;
    Mutex mutex_;
    std::condition_variable_any isFree_;
    bool isTaken_ VELMORA_GUARDED_BY(mutex_) = false;
};

}  // namespace velmora::platform
