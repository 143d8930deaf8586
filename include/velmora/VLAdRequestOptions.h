#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <velmora/enumerations.h>
#include <velmora/export.h>

namespace velmora {

class VLAdRequestOptionsState;

/// How an ad is fetched. Safe to use from any thread: the library changes the cache type of the object it was
/// given when a download fails and the ad is offered for streaming instead.
class VELMORA_EXPORT VLAdRequestOptions {
public:
    VLAdRequestOptions();
    ~VLAdRequestOptions();
    VLAdRequestOptions(const VLAdRequestOptions&) = delete;
    VLAdRequestOptions& operator=(const VLAdRequestOptions&) = delete;

    /// Whether the video is downloaded before the ad is offered, or played from its URL.
    void setCacheType(VLCacheType cacheType) { setCacheType(static_cast<std::int64_t>(cacheType)); }

    /// By its number. One that is not a `VLCacheType` is kept, and ends the request in an error.
    void setCacheType(std::int64_t cacheType);

    /// What was set; absent when nothing was, which ends a request with these options in the error
    /// "Unsupported cache type.".
    [[nodiscard]] std::optional<std::int64_t> getCacheTypeNumber() const;

    /// The number of `VLCacheType::cached` when that was set, of `streamed` in every other case: also of
    /// options to which nothing was set, although a request with them ends in an error, and of those with a
    /// number that is no cache type. See `getCacheTypeNumber`.
    [[nodiscard]] std::int64_t getCacheType() const;

    /// For the library's own use: the stored form of this object.
    [[nodiscard]] VELMORA_INTERNAL VLAdRequestOptionsState& state() const noexcept;

private:
    std::unique_ptr<VLAdRequestOptionsState> state_;
};

}  // namespace velmora
