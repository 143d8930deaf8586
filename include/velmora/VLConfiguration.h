#pragma once

#include <optional>
#include <string>

#include <velmora/export.h>

namespace velmora {

/// What an application may say at initialisation. One that was never filled has debug mode off and no user
/// id.
class VELMORA_EXPORT VLConfiguration {
public:
    void setDebugMode(bool debugMode);
    /// Off while nothing was set.
    [[nodiscard]] bool isDebugMode() const;

    /// The publisher's own identifier of the application's user; sent with every request when there is one.
    void setAppUserId(std::optional<std::string> appUserId);
    [[nodiscard]] std::optional<std::string> appUserId() const;

    std::optional<bool> mDebugMode;
    std::optional<std::string> mAppUserId;
};

}  // namespace velmora
