#pragma once

#include <memory>
#include <optional>
#include <string>

#include <velmora/export.h>

namespace velmora {

class VLConfigurationState;

/// What an application may say at initialisation, which reads it once. Safe to use from any thread.
///
/// One that was never filled has debug mode off and no user id.
class VELMORA_EXPORT VLConfiguration {
public:
    VLConfiguration();
    ~VLConfiguration();
    VLConfiguration(const VLConfiguration&) = delete;
    VLConfiguration& operator=(const VLConfiguration&) = delete;

    /// Whether the library logs.
    void setDebugMode(bool debugMode);
    /// Off while nothing was set.
    [[nodiscard]] bool isDebugMode() const;

    /// The same, with "not set" told from "off"; absent takes back what was set.
    void setMDebugMode(std::optional<bool> debugMode);
    [[nodiscard]] std::optional<bool> mDebugMode() const;

    /// The publisher's own identifier of the application's user; sent with every request when there is one.
    void setAppUserId(std::optional<std::string> appUserId);

    /// A null pointer means "absent".
    void setAppUserId(const char* appUserId) { setAppUserId(textFrom(appUserId)); }

    [[nodiscard]] std::optional<std::string> appUserId() const;

    /// Other names of the same.
    void setMAppUserId(std::optional<std::string> appUserId);

    void setMAppUserId(const char* appUserId) { setMAppUserId(textFrom(appUserId)); }

    [[nodiscard]] std::optional<std::string> mAppUserId() const;

private:
    static std::optional<std::string> textFrom(const char* text) {
        return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
    }

    std::unique_ptr<VLConfigurationState> state_;
};

}  // namespace velmora
