#include <velmora/velmora.h>

#include "core/ApplicationCalls.h"
#include "core/RequestCallbacks.h"
#include "core/ShowStart.h"
#include "core/VelmoraManager.h"
#include "log/VLLog.h"
#include "platform/CallOut.h"
#include "platform/MainQueue.h"
#include "platform/OneWait.h"
#include "platform/UrlSession.h"
#include "platform/UserDefaults.h"

#include "store/VLDefaults.h"
#include <chrono>
#include <utility>

namespace velmora {

namespace {

constexpr std::chrono::seconds kPatienceAtShutDown{1};

/// The first callback that is missing, as the log names it; null when all are there.
const char* missingCallback(const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                            const OnError& onError, const OnExpiring& onExpiring) {
    if (!onAdAvailable) return "Nil block passed for onAdAvailable";
    if (!onNoAdAvailable) return "Nil block passed for onNoAdAvailable";
    if (!onError) return "Nil block passed for onError";
    if (!onExpiring) return "Nil block passed for onExpiring";
    return nullptr;
}

[[maybe_unused]] const bool isLogSwitchSet = [] {
    VLLogger::setStoredSwitch(&VLDefaults::getDebugMode);
    return true;
}();

std::shared_ptr<VLConfiguration> defaultConfiguration() {
    auto configuration = std::make_shared<VLConfiguration>();
    configuration->setDebugMode(true);
    configuration->setAppUserId(std::nullopt);
    return configuration;
}

std::shared_ptr<VLAdRequestOptions> defaultOptions() {
    auto options = std::make_shared<VLAdRequestOptions>();
    options->setCacheType(VLCacheType::streamed);
    return options;
}

}  // namespace

void Velmora::initializeWithAppKey(const std::optional<std::string>& key) {
    initializeWithAppKey(key, nullptr);
}

void Velmora::initializeWithAppKey(const std::optional<std::string>& key,
                                   const std::shared_ptr<VLConfiguration>& andConfig) {
    const platform::OneWait wait;
    if (!key) return VLLog("AppKey passed for initialization is null");
    ApplicationCalls::open();
    platform::MainQueue::open();

    const auto configuration = andConfig ? andConfig : defaultConfiguration();
    // Read once: another thread may be filling it in.
    const bool debugMode = configuration->isDebugMode();
    const auto appUserId = configuration->appUserId();
    platform::UserDefaults::standard().inOneTransaction([&] {
        VLDefaults::setDeveloperKey(key);
        VLDefaults::setDebugMode(debugMode);
        VLDefaults::setAppUserId(appUserId);
    });
    VLLogger::setShallLog(debugMode);
    VLLog("Velmora initialized successfully");
}

bool Velmora::isDebugMode() { return VLDefaults::getDebugMode(); }

void Velmora::setDebugMode(bool debugMode) { VLDefaults::setDebugMode(debugMode); }

void Velmora::requestAdForZone(const std::optional<std::string>& zone, const OnAdAvailable& onAdAvailable,
                               const OnNoAdAvailable& onNoAdAvailable, const OnError& onError,
                               const OnExpiring& onExpiring) {
    requestAdForZone(zone, nullptr, onAdAvailable, onNoAdAvailable, onError, onExpiring);
}

void Velmora::requestAdForZone(const std::optional<std::string>& zone,
                               const std::shared_ptr<VLAdRequestOptions>& andOptions,
                               const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                               const OnError& onError, const OnExpiring& onExpiring) {
    const platform::OneWait wait;
    if (!ApplicationCalls::areOpen()) return VLLog("The library is shut down: no ad is requested");
    const auto options = andOptions ? andOptions : defaultOptions();
    if (const char* missing = missingCallback(onAdAvailable, onNoAdAvailable, onError, onExpiring)) {
        return VLLog(missing);
    }
    auto wanted = zone;
    if (wanted && wanted->empty()) {
        VLLog("Empty zoneId replaced with nil");
        wanted.reset();
    }
    if (const auto ad = VelmoraManager::getValidCachedAdForZone(wanted)) {
        VLLog("Ad is already fetched and valid, returning to callback...");
        return ApplicationCalls::run("onAdAvailable", [&] { onAdAvailable(ad); });
    }
    VLLog("Ad is not fetched, fetching new ad...");
    // What the application's callbacks throw while they are copied is theirs, and stays here.
    platform::callOut("a request for an ad", [&] {
        VelmoraManager::requestAdForZone(wanted, options, onAdAvailable, onNoAdAvailable, onError,
                                         onExpiring);
    });
}

void Velmora::setAdShowFinishedCallback(OnAdShowFinished callback) {
    VelmoraManager::setAdShowFinishedCallback(std::move(callback));
}

void Velmora::setMainQueue(MainQueueFunction function) {
    platform::callOut("the function of the main queue",
                      [&] { platform::MainQueue::setRunner(std::move(function)); });
}

std::size_t Velmora::runWaiting() { return platform::MainQueue::runWaiting(); }

int Velmora::waitingDescriptor() { return platform::MainQueue::waitingDescriptor(); }

void Velmora::shutDown() {
    const auto deadline = std::chrono::steady_clock::now() + kPatienceAtShutDown;
    // What waits for the main thread is told while there may still be calls, by whoever is that thread.
    platform::MainQueue::close();
    ApplicationCalls::close(deadline);
    RequestCallbacks::dropAll();
    ShowStart::endAll();
    VelmoraManager::setAdShowFinishedCallback({});
    platform::UrlSession::shared().cancelAll();
}

std::string Velmora::getVersion() { return VelmoraManager::sdkVersion(); }

}  // namespace velmora
