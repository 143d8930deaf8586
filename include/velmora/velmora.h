#pragma once

/// Velmora: asks an ad service for an ad, and shows it. This is the one header that an application includes.

#include <cstddef>
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

/// An ad is there; it can be shown.
using OnAdAvailable = std::function<void(std::shared_ptr<VelmoraAd>)>;
/// The service has no ad that suits. No error.
using OnNoAdAvailable = std::function<void()>;
/// The request failed, for the reason that the message gives a developer.
using OnError = std::function<void(const std::string& message)>;
/// The time of an ad that was offered runs out now.
using OnExpiring = std::function<void(std::shared_ptr<VelmoraAd>)>;
/// The showing of an ad ends: see `Velmora::setAdShowFinishedCallback`.
using OnAdShowFinished = std::function<void(std::shared_ptr<VelmoraAd>, bool completed)>;

/// Runs a piece of work later, on the application's main thread: see `Velmora::setMainQueue`.
using MainQueueFunction = std::function<void(std::function<void()> work)>;

/// The whole entry of the library. Every operation may be called from any thread and never throws; none waits
/// for the network, while those that store something write the application's store before they return. What
/// is wrong with an argument is logged through `VLLog`, and the call then does nothing. What a callback
/// throws is logged.
///
/// "The main queue" is where the application says: see `setMainQueue`. While it says nothing, it is a thread
/// of the library's own, which runs one callback after the other.
///
/// A null pointer given as a text means "absent", as `std::nullopt` does.
class VELMORA_EXPORT Velmora {
public:
    Velmora() = delete;

    /// Stores the key, with debug mode on and without a user id.
    static void initializeWithAppKey(const std::optional<std::string>& key);

    static void initializeWithAppKey(const char* key) { initializeWithAppKey(textFrom(key)); }

    /// Stores the key, the debug mode and the user id, all or none of them; they persist until they are set
    /// again. Sends nothing.
    ///
    /// An absent key changes nothing. An absent user id removes the one stored earlier. Without a
    /// configuration debug mode is on and there is no user id.
    static void initializeWithAppKey(const std::optional<std::string>& key,
                                     const std::shared_ptr<VLConfiguration>& andConfig);

    static void initializeWithAppKey(const char* key, const std::shared_ptr<VLConfiguration>& andConfig) {
        initializeWithAppKey(textFrom(key), andConfig);
    }

    /// Ends what the library does for this application, until it is initialised again: requests are
    /// cancelled, downloads with them, what is shown goes from the screen, and from its return on no callback
    /// is called. Trackers that are on their way go on.
    ///
    /// Waits for a callback that runs on another thread, a second at most; called from inside a callback it
    /// does not wait for that one. On the thread where the main queue last ran, what waits there is told
    /// first; anywhere else it is not told any more. Then every callback that the library holds is destroyed
    /// before this returns, `setMainQueue`'s function included; one that runs still, by the thread that runs
    /// it. Requests and shows are dropped until then, with a line of `VLLog` each.
    ///
    /// To be called by a plugin before it is closed, by a binding before its interpreter ends. May be called
    /// any number of times, before an initialisation too. An application that ends need not call it: leaving
    /// `main` waits likewise, and destroys nothing. The library itself stays in memory.
    static void shutDown();

    /// The stored debug mode; false where nothing was stored.
    [[nodiscard]] static bool isDebugMode();

    /// Stores the debug mode. Whether this process logs was settled at initialisation and stays as it is.
    static void setDebugMode(bool debugMode);

    /// Asks for an ad that is streamed.
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
    /// With `VLCacheType::cached` the video is on disk before `onAdAvailable`; when it cannot be fetched the
    /// ad is offered for streaming instead, and the cache type of `andOptions` becomes that. A video that
    /// came but could not be written, because the application's Documents directory is full or not writable,
    /// is offered all the same: with a path to no file, and not valid. Options to which no cache type was
    /// set, or a number that is none, end in `onError` with "Unsupported cache type." when the service has an
    /// ad.
    ///
    /// `onExpiring` follows on the main queue when an available ad has a time limit and it runs out, shown
    /// or not. All four callbacks are required: with one missing, the request is dropped and none is called.
    ///
    /// They are copied by this call, and destroyed soon after the one that is the answer has returned: on the
    /// same thread, or on the calling one when the answer was there before this call had returned. That of
    /// `onExpiring` lives on, with the handle, until it has been called, and is destroyed there;
    /// without a time limit it goes with the others. What still waits when the process leaves `main` is never
    /// destroyed.
    static void requestAdForZone(const std::optional<std::string>& zone,
                                 const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                 const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                                 const OnError& onError, const OnExpiring& onExpiring);

    static void requestAdForZone(const char* zone, const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                 const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                                 const OnError& onError, const OnExpiring& onExpiring) {
        requestAdForZone(textFrom(zone), andOptions, onAdAvailable, onNoAdAvailable, onError, onExpiring);
    }

    /// Has `function` run what belongs on the application's main thread: `onExpiring` above all.
    ///
    /// It is called on any thread, once for each piece of work, and passes it on to the main thread, where
    /// the work is to be called once, later; it is not to call it at once. Work that is never called holds up
    /// what comes after it. Ready-made functions for Qt, GLib and SDL are in `<velmora/hosts/...>`.
    ///
    /// What waits already goes to the new function. An empty one goes back to what was before: whoever calls
    /// `runWaiting`, else the library's own thread. The old one is destroyed before this returns, or by the
    /// thread that is calling it.
    static void setMainQueue(MainQueueFunction function);

    /// For applications with a loop of their own: runs what waits for the main thread now, and says how many
    /// pieces that was. The first call of this or of `waitingDescriptor` ends the library's own thread for
    /// callbacks, and only what is called here runs them from then on. Runs nothing while a function is set.
    static std::size_t runWaiting();

    /// Readable, as poll(2) has it, while something waits for `runWaiting`. The library's, not to be read or
    /// closed. -1, with a line in the log, where the process has no descriptor left.
    [[nodiscard]] static int waitingDescriptor();

    /// Sets what is told of the ends of videos, with whether one counts as completed. Always on the main
    /// queue, in so many calls:
    ///
    /// | what becomes of the show | calls | `completed` |
    /// |---|---|---|
    /// | the video plays to its end | at its end, while its page is still to come | true |
    /// |   then its page closes, or a replay is left without the dialog option | again | true |
    /// |   a replay that plays to its end | none more at that end | |
    /// |   a replay that is left with the dialog option | none more | |
    /// | the video is skipped, and then its page closes | one, when the page closes | false |
    /// |   the same in a replay | one, when the page closes | true |
    /// | the video is left by its exit button | one | false |
    /// |   the same with the dialog option | none | |
    /// | the video cannot be loaded | one | true |
    /// |   it fails after its length was known | one | false, in a replay true |
    /// | its page closes while the video still plays | one | false |
    /// | the video ends, its length never known or below a second | one, when its page closes | false |
    /// | a page in front reaches an address with "VelmoraSuggestionIsDone" in it (*) | none more | |
    /// | a page that asks to be closed more than once | one for each time | as above |
    /// | the ad is a banner | none | |
    /// | its window is closed from outside | none more | |
    /// | the ad is not shown, or the screen stays empty (see `VelmoraAd::showWithOptions`) | none | |
    ///
    /// (*) The page goes, and an empty screen stays, which only closing its window ends.
    ///
    /// The first call with true is thus the one to reward for, and only that one:
    ///
    /// ```
    /// std::set<std::weak_ptr<VelmoraAd>, std::owner_less<std::weak_ptr<VelmoraAd>>> rewarded;
    /// Velmora::setAdShowFinishedCallback([rewarded](const auto& ad, bool completed) mutable {
    ///     if (completed && ad->isRewardedAd() && rewarded.insert(ad).second) giveReward();
    /// });
    /// ```
    ///
    /// It rewards once for each handle, also for a video that could not be loaded: that counts as completed.
    ///
    /// Replaces the callback set before; an empty one clears it. The old one is destroyed on the thread that
    /// replaces it, or by the main queue when it is being called there; the last one never.
    static void setAdShowFinishedCallback(OnAdShowFinished callback);

    /// The library's version, such as "3.0.0".
    [[nodiscard]] static std::string getVersion();

private:
    static std::optional<std::string> textFrom(const char* text) {
        return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
    }
};

}  // namespace velmora
