#include "sandbox/Media.h"

#include "sandbox/Answers.h"

#include <algorithm>
#include <charconv>

namespace velmora::sandbox {

namespace {

constexpr std::string_view kBroken = "broken.mp4";

struct Type {
    std::string_view extension;
    const char* name;
};

constexpr Type kTypes[]{
    {".mp4", "video/mp4"}, {".webm", "video/webm"}, {".m4a", "audio/mp4"},
    {".png", "image/png"}, {".jpg", "image/jpeg"},  {".svg", "image/svg+xml"},
};

const char* typeOf(const std::filesystem::path& file) {
    const auto extension = file.extension().string();
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                     [&](const Type& type) { return type.extension == extension; });
    return found == std::end(kTypes) ? "application/octet-stream" : found->name;
}

bool isPlainName(const std::string& name) {
    return !name.empty() && name.front() != '.' &&
           name.find_first_of(std::string("/\\\0", 3)) == std::string::npos;
}

std::optional<std::uintmax_t> number(std::string_view text) {
    std::uintmax_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

enum class Fit { whole, part, outside };

/// Narrows `part`, which holds the whole file. What is not one well-formed range counts as none.
Fit narrow(FilePart& part, const std::optional<std::string>& range) {
    constexpr std::string_view unit = "bytes=";
    if (!range || !range->starts_with(unit)) return Fit::whole;
    const auto text = std::string_view(*range).substr(unit.size());
    const auto dash = text.find('-');
    if (dash == std::string_view::npos) return Fit::whole;
    const auto first = number(text.substr(0, dash));
    const auto last = number(text.substr(dash + 1));
    if ((!first && dash > 0) || (!last && dash + 1 < text.size()) || (!first && !last)) return Fit::whole;
    if (first && last && *last < *first) return Fit::whole;

    const auto size = part.length;
    part.offset = first ? *first : size - std::min(size, *last);
    if (part.offset >= size) return Fit::outside;
    part.length = first && last ? std::min(*last, size - 1) - *first + 1 : size - part.offset;
    return Fit::part;
}

}  // namespace

Response mediaFile(const std::filesystem::path& folder, const std::string& name,
                   const std::optional<std::string>& range) {
    if (name == kBroken) return {.type = "video/mp4", .body = "These bytes are no video."};
    const auto file = folder / name;
    std::error_code error;
    if (folder.empty() || !isPlainName(name) || !std::filesystem::is_regular_file(file, error)) {
        return refusal(404, "There is no video " + name +
                                "; scripts/make-videos makes them, and --videos names"
                                " their folder");
    }
    const auto size = std::filesystem::file_size(file, error);
    FilePart part{.file = file, .offset = 0, .length = size};
    const auto fit = narrow(part, range);
    if (fit == Fit::outside) {
        auto response = refusal(416, "The range lies outside of the file");
        response.headers.emplace_back("Content-Range", "bytes */" + std::to_string(size));
        return response;
    }
    Response response{.type = typeOf(file), .file = part, .headers = {{"Accept-Ranges", "bytes"}}};
    if (fit == Fit::part) {
        response.status = 206;
        response.headers.emplace_back("Content-Range", "bytes " + std::to_string(part.offset) + "-" +
                                                           std::to_string(part.offset + part.length - 1) +
                                                           "/" + std::to_string(size));
    }
    return response;
}

}  // namespace velmora::sandbox
