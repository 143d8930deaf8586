#pragma once

/// Velmora: asks an ad service for an ad, and shows it. This is the one header that an application includes.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <velmora/VLAdRequestOptions.h>
#include <velmora/VLAdShowOptions.h>
#include <velmora/VLConfiguration.h>
#include <velmora/VLLog.h>
#include <velmora/VelmoraAd.h>
#include <velmora/VelmoraVAST.h>
#include <velmora/constants.h>
#include <velmora/enumerations.h>
#include <velmora/export.h>

namespace velmora {

using OnAdAvailable = std::function<void(std::shared_ptr<VelmoraAd>)>;
using OnNoAdAvailable = std::function<void()>;
using OnError = std::function<void(const std::string& message)>;
using OnExpiring = std::function<void(std::shared_ptr<VelmoraAd>)>;
using OnAdShowFinished = std::function<void(std::shared_ptr<VelmoraAd>, bool completed)>;

/// The whole entry of the library. Every operation may be called from any thread and never throws; none waits
/// for the network, while those that store something write the application's store before they return. What
/// is wrong with an argument is logged through `VLLog`, and the call then does nothing. What a callback
/// throws is logged.
///
/// A null pointer given as a text means "absent", as `std::nullopt` does.
class VELMORA_EXPORT Velmora {
public:
    Velmora() = delete;

    /// As below without a configuration: debug mode on, no user id.
    static void initializeWithAppKey(const std::optional<std::string>& key);

    static void initializeWithAppKey(const char* key) { initializeWithAppKey(textFrom(key)); }

    /// Stores the key, the debug mode and the user id; they persist until they are set again. Sends nothing.
    ///
    /// An absent key changes nothing. An absent user id removes the one stored earlier.
    static void initializeWithAppKey(const std::optional<std::string>& key,
                                     const std::shared_ptr<VLConfiguration>& andConfig);

    static void initializeWithAppKey(const char* key, const std::shared_ptr<VLConfiguration>& andConfig) {
        initializeWithAppKey(textFrom(key), andConfig);
    }

    /// The stored debug mode; false where nothing was stored.
    [[nodiscard]] static bool isDebugMode();

    /// Stores the debug mode. Whether this process logs was settled at initialisation and stays as it is.
    static void setDebugMode(bool debugMode);

    /// As below without options: the ad is streamed.
    static void requestAdForZone(const std::optional<std::string>& zone, const OnAdAvailable& onAdAvailable,
                                 const OnNoAdAvailable& onNoAdAvailable, const OnError& onError,
                                 const OnExpiring& onExpiring);

    static void requestAdForZone(const char* zone, const OnAdAvailable& onAdAvailable,
                                 const OnNoAdAvailable& onNoAdAvailable, const OnError& onError,
                                 const OnExpiring& onExpiring) {
        requestAdForZone(textFrom(zone), onAdAvailable, onNoAdAvailable, onError, onExpiring);
    }

    /// Asks for an ad; an absent or empty zone asks for one of any zone, absent options for a streamed one.
    ///
    /// Exactly one of `onAdAvailable`, `onNoAdAvailable` and `onError` is called, once: on a background
    /// thread, or on the calling one before this returns when an ad is at hand already. A callback may take
    /// its time and may call the library; those of other requests then wait, their transfers do not. None is
    /// called once the process has left `main`.
    ///
    /// With cache type 1 the video is on disk before `onAdAvailable`; when it cannot be fetched the ad is
    /// offered for streaming instead, and the cache type of `andOptions` becomes 2. `onExpiring` follows on
    /// the main thread when an available ad has a time limit and it runs out, shown or not.
    /// All four are required: with one missing, the request is dropped and none is called.
    static void requestAdForZone(const std::optional<std::string>& zone,
                                 const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                 const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                                 const OnError& onError, const OnExpiring& onExpiring);

    static void requestAdForZone(const char* zone, const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                 const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                                 const OnError& onError, const OnExpiring& onExpiring) {
        requestAdForZone(textFrom(zone), andOptions, onAdAvailable, onNoAdAvailable, onError, onExpiring);
    }

    /// Called when the showing of an ad ends, with whether it counts as completed. Replaces the callback set
    /// before; an empty one clears it.
    static void setAdShowFinishedCallback(OnAdShowFinished callback);

    /// The library's version, "3.0.0".
    [[nodiscard]] static std::string getVersion();

private:
    static std::optional<std::string> textFrom(const char* text) {
        return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
    }
};

}  // namespace velmora
