#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <velmora/export.h>

namespace velmora {

class VLAdRequestOptions;
class VLAdShowOptions;
class VelmoraAdState;

/// An ad that was offered to the application, as its callbacks receive it. Safe to use from any thread.
///
/// A handle that the application makes itself holds no ad; it has an identifier and counts as valid.
class VELMORA_EXPORT VelmoraAd : public std::enable_shared_from_this<VelmoraAd> {
public:
    VelmoraAd();
    ~VelmoraAd();
    VelmoraAd(const VelmoraAd&) = delete;
    VelmoraAd& operator=(const VelmoraAd&) = delete;

    /// The identifier that the service gave the ad, absent when it gave none. A handle without an ad has one
    /// made from its zone, or a fixed one.
    [[nodiscard]] std::optional<std::string> getId() const;

    /// The zone the ad was requested for; absent when the request named none.
    [[nodiscard]] std::optional<std::string> getZoneId() const;

    /// When the ad became ready, its download included, in milliseconds since 1970 (UTC). Absent in a handle
    /// that the application made; one that a callback brought has it.
    [[nodiscard]] std::optional<std::int64_t> getCacheTime() const;

    /// The downloaded video; absent for an ad that is streamed. No file lies there when the video came but
    /// could not be written, for want of room or rights: the ad is then not valid.
    [[nodiscard]] std::optional<std::string> getVideoFilePath() const;

    /// The options the ad was requested with; may be null.
    [[nodiscard]] std::shared_ptr<VLAdRequestOptions> getRequestOptions() const;

    /// False: nothing sets it in this version. An application that wants to know keeps a note of its own.
    [[nodiscard]] bool isAdShown() const;

    /// Rewarded or not. False, like the two below, for a handle without an ad.
    [[nodiscard]] bool isVideoAd() const;
    [[nodiscard]] bool isRewardedAd() const;
    [[nodiscard]] bool isBannerAd() const;

    /// Whether the time that the service gave the ad has run out. False where it gave none.
    ///
    /// Writes a line with the present time to the platform's log, whether or not the library logs.
    [[nodiscard]] bool isExpired() const;

    /// Whether no file lies at the video file path; true when there is no such path.
    [[nodiscard]] bool isFileRemoved() const;

    /// Whether the ad can be shown now. A video needs its request options and, when it was to be downloaded,
    /// its file; no ad is valid beyond its time. A handle without an ad is valid.
    ///
    /// Asks `isExpired` for an ad that it knows how to show, with the line that this writes.
    [[nodiscard]] bool isValid() const;

    /// Shows the ad over the whole screen, on the thread of the application's Qt event loop. Returns at once;
    /// the ad-show-finished callback of `Velmora` tells how it ended. Null options mean the defaults.
    ///
    /// An ad that is not valid, or that this version cannot show, is not shown, and no callback comes: a line
    /// of `VLLog` says so. Nor is one shown whose handle no `std::shared_ptr` holds, or without a window of
    /// the application to show it over.
    ///
    /// A handle that the application made is valid, so that it is shown: an empty screen, which only closing
    /// its window ends. The same comes of an ad whose time runs out between this call and its turn on that
    /// thread.
    void showWithOptions(const std::shared_ptr<VLAdShowOptions>& options);

    /// For the library's own use: what the handle holds, and its stored form.
    [[nodiscard]] VELMORA_INTERNAL VelmoraAdState& state() const noexcept;

private:
    std::unique_ptr<VelmoraAdState> state_;
};

}  // namespace velmora
