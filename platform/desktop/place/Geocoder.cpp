#include "platform/Geocoder.h"

#include "platform/Bundle.h"
#include "platform/CallOut.h"
#include "platform/Json.h"
#include "platform/Locale.h"
#include "platform/MainQueue.h"
#include "platform/UrlSession.h"
#include "platform/UrlText.h"
#include "platform/desktop/place/NominatimPlace.h"

#include <cstdlib>
#include <utility>

#include <boost/algorithm/string/join.hpp>

namespace velmora::platform {

namespace {

constexpr int kOk = 200;
/// The level of a single building.
constexpr const char* kZoom = "18";
/// A place has some hundred bytes; what is much longer is none.
constexpr std::size_t kLongestAnswer = std::size_t{256} * 1024;

std::optional<std::string> baseUrl() {
    const char* given = std::getenv("VELMORA_GEOCODER_URL");
    auto base = given != nullptr && *given != '\0' ? std::optional<std::string>(given)
                                                   : asString(Bundle::main().infoValue("geocoderUrl"));
    while (base && base->ends_with('/')) base->pop_back();
    return base && !base->empty() ? base : std::nullopt;
}

std::string urlFor(const std::string& base, const Location& location) {
    std::vector<UrlQueryItem> items{
        {"format", "jsonv2"},
        {"lat", description(Value(location.latitude))},
        {"lon", description(Value(location.longitude))},
        {"zoom", kZoom},
        {"addressdetails", "1"},
    };
    const auto languages = boost::algorithm::join(preferredLanguages(), ",");
    if (!languages.empty()) items.push_back({"accept-language", languages});
    return base + "/reverse?" + encodedQuery(items);
}

/// The place, or why there is none.
std::pair<std::vector<Placemark>, std::optional<std::string>> read(const UrlOutcome& outcome,
                                                                   const Location& location) {
    if (outcome.error) {
        return {{},
                "transport error " + std::to_string(outcome.error->code) + ": " + outcome.error->description};
    }
    if (!outcome.response || outcome.response->statusCode != kOk || !outcome.data)
        return {{}, "the service did not answer with a place"};
    if (outcome.data->size() > kLongestAnswer) return {{}, "the answer is too long for a place"};
    auto place = nominatimPlace(*outcome.data);
    if (!place) return {{}, "the answer has no place in it"};
    place->location = location;
    return {{std::move(*place)}, std::nullopt};
}

}  // namespace

void Geocoder::reverseGeocodeLocation(const Location& location, Completion completion) {
    const auto complete = [completion = std::move(completion)](std::vector<Placemark> placemarks,
                                                               std::optional<std::string> error) {
        MainQueue::async([completion, placemarks = std::move(placemarks), error = std::move(error)] {
            callOut("the completion of reverse geocoding", [&] { completion(placemarks, error); });
        });
    };
    const auto base = baseUrl();
    if (!base) return complete({}, "no geocoder is set");

    UrlRequest request;
    request.url = urlFor(*base, location);
    request.setHeader("Accept", "application/json");
    request.requiresSecureTransport = true;
    UrlSession::shared()
        .dataTask(std::move(request),
                  [complete, location](const UrlOutcome& outcome) {
                      auto [placemarks, error] = read(outcome, location);
                      complete(std::move(placemarks), std::move(error));
                  })
        ->resume();
}

}  // namespace velmora::platform
