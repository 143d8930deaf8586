#include "sandbox/Zones.h"

#include <algorithm>

namespace velmora::sandbox {

namespace {

constexpr int kRewardedVideo = 1;
constexpr int kBanner = 2;
constexpr int kVideo = 3;
/// Neither of them is known to this version of the library.
constexpr int kPlayable = 4;
constexpr int kFormAfterVideo = 2;

constexpr int kPageAfterVideo = 1;
constexpr SkipRule kFromAQuarterOn{.type = 1, .start = 0.25};

constexpr Creative kRewardedVideos[]{
    {"Harbour Lights, with a reward", kRewardedVideo, "/media/rewarded-video.mp4", kPageAfterVideo}};
constexpr Creative kVideos[]{{"Harbour Lights", kVideo, "/media/video.mp4", kPageAfterVideo}};
constexpr Creative kSkippableVideos[]{
    {"Harbour Lights, in a hurry", kVideo, "/media/skippable-video.mp4", kPageAfterVideo, kFromAQuarterOn}};
constexpr Creative kBanners[]{{"Harbour Lights, as a page", kBanner, "/pages/banner"}};
constexpr Creative kSeveral[]{
    {"Harbour Lights", kVideo, "/media/video.mp4", kPageAfterVideo},
    {"Harbour Lights, upright", kVideo, "/media/portrait.mp4", kPageAfterVideo},
    {"Harbour Lights, in a hurry", kVideo, "/media/skippable-video.mp4", kPageAfterVideo, kFromAQuarterOn},
    {"Harbour Lights, with a reward", kRewardedVideo, "/media/rewarded-video.mp4", kPageAfterVideo},
    {"Harbour Lights, as a page", kBanner, "/pages/banner"}};
constexpr Creative kExpiringVideos[]{
    {"Harbour Lights, for a moment", kVideo, "/media/expiring.mp4", kPageAfterVideo}};
constexpr Creative kBrokenVideos[]{{"Nothing to see", kVideo, "/media/broken.mp4", kPageAfterVideo}};
constexpr Creative kUnsupported[]{
    {"A game to try", kPlayable, "/pages/banner"},
    {"A video with a form", kVideo, "/media/video.mp4", kFormAfterVideo},
};

constexpr Zone kZones[]{
    {"video", "a video, to be seen to its end", kVideos},
    {"rewarded-video", "a video that earns a reward", kRewardedVideos},
    {"skippable-video", "a video with a skip button", kSkippableVideos},
    {"banner", "a page", kBanners},
    {"random", "several ads, one of them by chance", kSeveral, true},
    {"no-fill", "no ad", {}},
    {"expiring", "a video that is good for a moment only", kExpiringVideos, false, true},
    {"broken-video", "a video whose file is none", kBrokenVideos},
    {"unsupported", "ads that the library cannot show", kUnsupported},
};

}  // namespace

std::span<const Zone> allZones() { return kZones; }

const Zone& zoneNamed(std::string_view name) {
    const auto* found = std::find_if(std::begin(kZones), std::end(kZones),
                                     [&](const Zone& zone) { return zone.name == name; });
    return found == std::end(kZones) ? kZones[0] : *found;
}

}  // namespace velmora::sandbox
