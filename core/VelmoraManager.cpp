#include "core/VelmoraManager.h"

#include "core/AdRequest.h"
#include "core/ApplicationCalls.h"
#include "core/RequestCallbacks.h"
#include "device/VLBuildVariants.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "platform/Immortal.h"
#include "platform/MainQueue.h"
#include "platform/Mutex.h"

#include <utility>

namespace velmora {

namespace {

struct Callback {
    platform::Mutex mutex;
    /// Null without one. Shared, so that what the application put into it is not copied under the lock.
    std::shared_ptr<const OnAdShowFinished> onAdShowFinished VELMORA_GUARDED_BY(mutex);
};

Callback& callback() {
    static platform::Immortal<Callback> instance;
    return *instance;
}

}  // namespace

std::string VelmoraManager::sdkVersion() { return VLBuildVariants::getVersion(); }

void VelmoraManager::setAdShowFinishedCallback(OnAdShowFinished next) {
    auto shared = next ? std::make_shared<const OnAdShowFinished>(std::move(next)) : nullptr;
    // The old one is destroyed after the lock is released: it may hold objects of the application.
    const platform::MutexLock lock(callback().mutex);
    callback().onAdShowFinished.swap(shared);
}

void VelmoraManager::onAdShowFinished(const std::shared_ptr<VelmoraAd>& ad, bool completed) {
    platform::MainQueue::async([ad, completed] {
        ApplicationCalls::run("the ad-show-finished callback", [&] {
            std::shared_ptr<const OnAdShowFinished> function;
            {
                const platform::MutexLock lock(callback().mutex);
                function = callback().onAdShowFinished;
            }
            if (function) (*function)(ad, completed);
        });
    });
}

std::shared_ptr<VelmoraAd> VelmoraManager::getValidCachedAdForZone(const std::optional<std::string>&) {
    return nullptr;
}

std::shared_ptr<VelmoraAd> VelmoraManager::getValidCachedAdForZone(const std::optional<std::string>&,
                                                                   std::int64_t) {
    return nullptr;
}

std::shared_ptr<VLAdSuggestion> VelmoraManager::getMostSuitableAdInSuggestionList(
    const std::shared_ptr<VLSuggestionListDirectResponseModel>& list) {
    if (!list || !list->suggestions.get()) return nullptr;
    list->removeUnnecessaryAds();
    const auto left = list->suggestions.get();
    return left && !left->empty() ? left->front() : nullptr;
}

void VelmoraManager::requestAdForZone(const std::optional<std::string>& zone,
                                      const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                      const OnAdAvailable& onAdAvailable,
                                      const OnNoAdAvailable& onNoAdAvailable, const OnError& onError,
                                      const OnExpiring& onExpiring) {
    const auto callbacks = std::make_shared<RequestCallbacks>(
        RequestCallbacks::Functions{onAdAvailable, onNoAdAvailable, onError, onExpiring});
    std::make_shared<AdRequest>(zone, andOptions, callbacks)->send();
}

}  // namespace velmora
