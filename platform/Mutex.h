#pragma once

#include <mutex>

#if defined(__clang__)
#define VELMORA_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define VELMORA_THREAD_ANNOTATION(x)
#endif

/// The member may be touched only while the mutex is held; clang checks it.
#define VELMORA_GUARDED_BY(mutex) VELMORA_THREAD_ANNOTATION(guarded_by(mutex))
/// The function may be called only while the mutex is held.
#define VELMORA_REQUIRES(mutex) VELMORA_THREAD_ANNOTATION(requires_capability(mutex))

namespace velmora::platform {

/// A mutex that clang's thread-safety analysis understands.
class VELMORA_THREAD_ANNOTATION(capability("mutex")) Mutex {
public:
    void lock() VELMORA_THREAD_ANNOTATION(acquire_capability()) { mutex_.lock(); }

    void unlock() VELMORA_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

private:
    std::mutex mutex_;
};

/// Holds a `Mutex` for a scope.
class VELMORA_THREAD_ANNOTATION(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex& mutex) VELMORA_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) {
        mutex_.lock();
    }

    ~MutexLock() VELMORA_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& mutex_;
};

}  // namespace velmora::platform
