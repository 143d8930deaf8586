#pragma once

#include "platform/Location.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform {

/// What is known of a place.
struct Placemark {
    /// The parts of its address, from the smallest to the country.
    std::optional<std::vector<std::string>> formattedAddressLines = {};
    std::optional<std::string> locality = {};
    std::optional<std::string> country = {};
    /// Two upper-case letters (ISO 3166-1).
    std::optional<std::string> isoCountryCode = {};
    std::optional<std::string> name = {};
    std::optional<std::string> ocean = {};
    std::optional<std::string> postalCode = {};
    std::optional<std::string> administrativeArea = {};
    std::optional<std::string> subAdministrativeArea = {};
    std::optional<std::string> inlandWater = {};
    std::optional<Location> location = {};
};

/// Finds the place that a position lies in, by asking a service that speaks the protocol of Nominatim's
/// reverse geocoding.
///
/// The base of its address is what VELMORA_GEOCODER_URL says in the environment, else "geocoderUrl" among the
/// info values of the application's description. Without either, nobody is asked, and no position leaves
/// the machine. Plain http is refused, except to a loopback address.
class Geocoder {
public:
    /// Runs once, on the main thread: with the places, the best one first, or with the reason why there are
    /// none. What it throws is logged.
    using Completion = std::function<void(const std::vector<Placemark>& placemarks,
                                          const std::optional<std::string>& error)>;

    Geocoder() = delete;

    /// Any thread, and nothing waits. The names come in the user's languages, where the service has them.
    /// The places have the given location.
    static void reverseGeocodeLocation(const Location& location, Completion completion);
};

}  // namespace velmora::platform
