#pragma once

#include <cstdint>
#include <memory>
#include <optional>

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

    /// 1 downloads the video before the ad is offered, 2 plays it from its URL. Any other value is kept, and
    /// ends the request in an error.
    void setCacheType(std::int64_t cacheType);

    /// What was set; absent when nothing was.
    [[nodiscard]] std::optional<std::int64_t> getCacheTypeNumber() const;

    /// 1 when 1 was set, 2 in every other case.
    [[nodiscard]] std::int64_t getCacheType() const;

    /// For the library's own use: the stored form of this object.
    [[nodiscard]] VELMORA_INTERNAL VLAdRequestOptionsState& state() const noexcept;

private:
    std::unique_ptr<VLAdRequestOptionsState> state_;
};

}  // namespace velmora
