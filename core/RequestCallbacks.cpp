#include "core/RequestCallbacks.h"

#include "core/ApplicationCalls.h"
#include "platform/Immortal.h"

#include <set>
#include <utility>
#include <vector>

namespace velmora {

namespace {

struct Living {
    platform::Mutex mutex;
    std::set<RequestCallbacks*> requests VELMORA_GUARDED_BY(mutex);
};

Living& living() {
    static platform::Immortal<Living> instance;
    return *instance;
}

}  // namespace

RequestCallbacks::RequestCallbacks(Functions functions) : functions_(std::move(functions)) {
    const platform::MutexLock lock(living().mutex);
    living().requests.insert(this);
}

RequestCallbacks::~RequestCallbacks() {
    const platform::MutexLock lock(living().mutex);
    living().requests.erase(this);
}

bool RequestCallbacks::isDropped() const {
    const platform::MutexLock lock(mutex_);
    return isDropped_;
}

RequestCallbacks::Functions RequestCallbacks::take() {
    Functions taken;
    const platform::MutexLock lock(mutex_);
    std::swap(taken, functions_);
    return taken;
}

// Each takes its functions while it counts as a call, so that they are gone when nobody is called any more.
void RequestCallbacks::adIsAvailable(const std::shared_ptr<VelmoraAd>& ad) {
    ApplicationCalls::run("onAdAvailable", [&] {
        auto functions = take();
        {
            const platform::MutexLock lock(mutex_);
            functions_.onExpiring.swap(functions.onExpiring);
        }
        if (functions.onAdAvailable) functions.onAdAvailable(ad);
    });
}

void RequestCallbacks::noAdIsAvailable() {
    ApplicationCalls::run("onNoAdAvailable", [&] {
        const auto functions = take();
        if (functions.onNoAdAvailable) functions.onNoAdAvailable();
    });
}

void RequestCallbacks::failed(const std::string& message) {
    ApplicationCalls::run("onError", [&] {
        const auto functions = take();
        if (functions.onError) functions.onError(message);
    });
}

void RequestCallbacks::adExpires(const std::shared_ptr<VelmoraAd>& ad) {
    ApplicationCalls::run("onExpiring", [&] {
        const auto functions = take();
        if (functions.onExpiring) functions.onExpiring(ad);
    });
}

void RequestCallbacks::dropAll() {
    std::vector<Functions> dropped;
    {
        const platform::MutexLock lock(living().mutex);
        for (auto* request : living().requests) {
            const platform::MutexLock own(request->mutex_);
            request->isDropped_ = true;
            dropped.emplace_back();
            std::swap(dropped.back(), request->functions_);
        }
    }
    // They may hold objects of the application, which may call the library as they go.
    platform::callOut("what the callbacks of a request hold", [&] { dropped.clear(); });
}

}  // namespace velmora
