#pragma once

#include "platform/Mutex.h"
#include <velmora/velmora.h>

#include <memory>
#include <string>

namespace velmora {

/// What the application gave with one request. One of the first three calls is made, once; with it the others
/// go, except for `onExpiring` of an ad that is offered. Safe to call from any thread.
class RequestCallbacks {
public:
    struct Functions {
        OnAdAvailable onAdAvailable;
        OnNoAdAvailable onNoAdAvailable;
        OnError onError;
        OnExpiring onExpiring;
    };

    /// All four non-empty.
    explicit RequestCallbacks(Functions functions);
    ~RequestCallbacks();
    RequestCallbacks(const RequestCallbacks&) = delete;
    RequestCallbacks& operator=(const RequestCallbacks&) = delete;

    /// Whether nobody waits for an answer any more.
    [[nodiscard]] bool isDropped() const;

    void adIsAvailable(const std::shared_ptr<VelmoraAd>& ad);
    void noAdIsAvailable();
    void failed(const std::string& message);
    void adExpires(const std::shared_ptr<VelmoraAd>& ad);

    /// Of every request that there is: they are destroyed, and never called.
    static void dropAll();

private:
    /// Those that are left.
    [[nodiscard]] Functions take();

    mutable platform::Mutex mutex_;
    Functions functions_ VELMORA_GUARDED_BY(mutex_);
    bool isDropped_ VELMORA_GUARDED_BY(mutex_) = false;
};

}  // namespace velmora
