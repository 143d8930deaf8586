#include "platform/desktop/place/NominatimPlace.h"

#include "platform/Json.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

#include <boost/algorithm/string.hpp>

namespace velmora::platform {

namespace {

/// Where an answer may have a text: in the place itself, or among the parts of its address.
struct Source {
    enum class In { nothing, place, address } in = In::nothing;
    std::string_view key = {};
};

constexpr Source place(std::string_view key) { return {Source::In::place, key}; }

constexpr Source address(std::string_view key) { return {Source::In::address, key}; }

template <auto field>
void set(Placemark& placemark, const std::string& text) {
    placemark.*field = text;
}

void setLines(Placemark& placemark, const std::string& text) {
    std::vector<std::string> lines;
    boost::algorithm::split(lines, text, [](char c) { return c == ','; });
    for (auto& line : lines) boost::algorithm::trim(line);
    placemark.formattedAddressLines = std::move(lines);
}

void setCountryCode(Placemark& placemark, const std::string& text) {
    placemark.isoCountryCode = boost::algorithm::to_upper_copy(text);
}

/// The first source that has a text counts: which of them an answer has depends on the country.
struct PlaceField {
    void (*set)(Placemark& placemark, const std::string& text);
    std::array<Source, 5> sources;
};

constexpr PlaceField kFields[]{
    {setLines, {place("display_name")}},
    {set<&Placemark::locality>,
     {address("city"), address("town"), address("village"), address("municipality"), address("hamlet")}},
    {set<&Placemark::country>, {address("country")}},
    {setCountryCode, {address("country_code")}},
    {set<&Placemark::name>, {place("name"), address("road"), address("neighbourhood")}},
    {set<&Placemark::ocean>, {address("ocean"), address("sea")}},
    {set<&Placemark::postalCode>, {address("postcode")}},
    {set<&Placemark::administrativeArea>, {address("state"), address("province"), address("region")}},
    {set<&Placemark::subAdministrativeArea>,
     {address("county"), address("state_district"), address("district")}},
    {set<&Placemark::inlandWater>,
     {address("water"), address("lake"), address("reservoir"), address("river")}},
};

const Value* entry(const Dictionary& dictionary, std::string_view key) {
    return dictionary.if_contains({key.data(), key.size()});
}

/// The text there; absent where it is none, and where it is empty.
std::optional<std::string> textAt(const Source& source, const Dictionary& place, const Dictionary& address) {
    if (source.in == Source::In::nothing) return std::nullopt;
    const auto* value = entry(source.in == Source::In::place ? place : address, source.key);
    const auto* text = value != nullptr ? value->if_string() : nullptr;
    return text != nullptr && !text->empty() ? std::optional(std::string(*text)) : std::nullopt;
}

}  // namespace

std::optional<Placemark> nominatimPlace(std::string_view answer) {
    const auto parsed = parseJson(answer);
    const auto* place = parsed ? parsed->if_object() : nullptr;
    if (place == nullptr || place->contains("error")) return std::nullopt;
    const auto* parts = entry(*place, "address");
    const auto* address = parts != nullptr ? parts->if_object() : nullptr;
    if (address == nullptr) return std::nullopt;

    Placemark placemark;
    for (const auto& field : kFields) {
        for (const auto& source : field.sources) {
            const auto text = textAt(source, *place, *address);
            if (!text) continue;
            field.set(placemark, *text);
            break;
        }
    }
    return placemark;
}

}  // namespace velmora::platform
