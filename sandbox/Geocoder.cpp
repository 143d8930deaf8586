#include "sandbox/Geocoder.h"

#include "sandbox/Answers.h"

#include <charconv>
#include <cmath>

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

struct Place {
    double latitude;
    double longitude;
    /// The answer's own part of what is known, as Nominatim would write it.
    std::string_view known;
};

/// The first has all that a place can have, so that nothing is missing in a record that is made of it; the
/// second is in a town, as most places are.
constexpr Place kPlaces[]{
    {47.5, -45.5, R"({
        "category": "amenity", "type": "theatre", "addresstype": "amenity", "place_rank": 30, "importance": 0.2,
        "name": "The Sandbox Theatre",
        "display_name": "The Sandbox Theatre, 7, Quay Street, Sandbox, Castle County, North Isle, 1007, Sandbox Island",
        "address": {"amenity": "The Sandbox Theatre", "house_number": "7", "road": "Quay Street", "city": "Sandbox",
            "county": "Castle County", "state": "North Isle", "postcode": "1007", "country": "Sandbox Island",
            "country_code": "xs", "water": "Bucket Lake", "ocean": "Atlantic Ocean"}})"},
    {52.5, 13.4, R"({
        "category": "place", "type": "house", "addresstype": "place", "place_rank": 30, "importance": 0.1,
        "name": "",
        "display_name": "12, Spade Lane, Shovel, Mould District, Sandland, 20012, Sandbox Republic",
        "address": {"house_number": "12", "road": "Spade Lane", "town": "Shovel", "county": "Mould District",
            "state": "Sandland", "postcode": "20012", "country": "Sandbox Republic", "country_code": "xr"}})"},
};

constexpr double kNear = 1;

/// A coordinate of the query; absent when it is none.
std::optional<double> coordinate(const Request& request, std::string_view name, double most) {
    const auto text = request.queryValue(name).value_or("");
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isRead = error == std::errc() && end == text.data() + text.size();
    return isRead && std::abs(value) <= most ? std::optional(value) : std::nullopt;
}

json::object answerFor(const Place& place) {
    json::object answer{
        {"place_id", 1}, {"licence", "Nothing of it is real"},    {"osm_type", "node"},
        {"osm_id", 1},   {"lat", std::to_string(place.latitude)}, {"lon", std::to_string(place.longitude)}};
    const auto known = json::parse(place.known);
    for (const auto& [name, value] : known.as_object()) answer.emplace(name, value);
    answer.emplace("boundingbox",
                   json::array{std::to_string(place.latitude - kNear), std::to_string(place.latitude + kNear),
                               std::to_string(place.longitude - kNear),
                               std::to_string(place.longitude + kNear)});
    return answer;
}

}  // namespace

Response reverseGeocoded(const Request& request) {
    const auto latitude = coordinate(request, "lat", 90);
    const auto longitude = coordinate(request, "lon", 180);
    if (!latitude || !longitude) {
        const std::string missing = latitude ? "lon" : "lat";
        auto response = jsonAnswer(json::object{
            {"error", {{"code", 400}, {"message", "Parameter '" + missing + "' is no coordinate."}}}});
        response.status = 400;
        return response;
    }
    for (const auto& place : kPlaces) {
        const bool isNear =
            std::abs(place.latitude - *latitude) <= kNear && std::abs(place.longitude - *longitude) <= kNear;
        if (isNear) return jsonAnswer(answerFor(place));
    }
    return jsonAnswer(json::object{{"error", "Unable to geocode"}});
}

std::vector<std::string> geocodingProblems(const Request& request) {
    std::vector<std::string> problems;
    // Public services turn away who does not name the application.
    if (request.header("user-agent").value_or("").empty()) problems.emplace_back("user-agent is missing");
    if (request.queryValue("format") != "jsonv2") problems.emplace_back("format is not jsonv2");
    return problems;
}

}  // namespace velmora::sandbox
