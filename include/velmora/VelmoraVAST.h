#pragma once

#include <optional>
#include <string>

#include <velmora/enumerations.h>
#include <velmora/export.h>

namespace velmora {

/// Addresses of pre-roll ads, for applications with a video player of their own that understands VAST (IAB
/// Digital Video Ad Serving Template).
class VELMORA_EXPORT VelmoraVAST {
public:
    VelmoraVAST() = delete;

    /// The URL from which such a player fetches the pre-roll ad of a zone. It tells the service of the
    /// application, the device and the user, at this moment, and holds the access token if there is one: it
    /// is not to be published. Sends nothing and never throws; reads the application's store, as all of the
    /// library does. Any thread.
    ///
    /// `withType` is the number of a `VLPrerollType`, `ofVastVersion` that of a `VLVastVersion`. Another
    /// number leaves the choice to the service. What the library does not know of the device or the user is
    /// missing in the query. Names and values are percent-encoded (RFC 3986), except for what a query may
    /// hold, "&" and "=" among it; the zone is put in as it stands, and an absent one as "(null)".
    ///
    /// Absent, with a log line, as long as the library has never been initialised, and when the memory for it
    /// is missing.
    [[nodiscard]] static std::optional<std::string> getVastUrlForZone(const std::optional<std::string>& zone,
                                                                      int withType, int ofVastVersion);

    /// A null pointer means "absent".
    [[nodiscard]] static std::optional<std::string> getVastUrlForZone(const char* zone, int withType,
                                                                      int ofVastVersion) {
        return getVastUrlForZone(zone != nullptr ? std::optional<std::string>(zone) : std::nullopt, withType,
                                 ofVastVersion);
    }

    /// By the names of the numbers.
    [[nodiscard]] static std::optional<std::string> getVastUrlForZone(const std::optional<std::string>& zone,
                                                                      VLPrerollType withType,
                                                                      VLVastVersion ofVastVersion) {
        return getVastUrlForZone(zone, static_cast<int>(withType), static_cast<int>(ofVastVersion));
    }

    [[nodiscard]] static std::optional<std::string>
    getVastUrlForZone(const char* zone, VLPrerollType withType, VLVastVersion ofVastVersion) {
        return getVastUrlForZone(zone, static_cast<int>(withType), static_cast<int>(ofVastVersion));
    }
};

}  // namespace velmora
