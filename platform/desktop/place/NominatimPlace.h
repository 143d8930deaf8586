#pragma once

#include "platform/Geocoder.h"

#include <optional>
#include <string_view>

namespace velmora::platform {

/// The place in an answer of Nominatim's reverse geocoding (its API's format "jsonv2"), without a location.
/// Absent when it is no such answer, or one that says that there is no place.
[[nodiscard]] std::optional<Placemark> nominatimPlace(std::string_view answer);

}  // namespace velmora::platform
