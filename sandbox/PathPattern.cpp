#include "sandbox/PathPattern.h"

namespace velmora::sandbox {

std::optional<std::vector<std::string>> match(std::string_view pattern, std::string_view path) {
    const auto cut = [](std::string_view& text) {
        const auto slash = text.find('/');
        const auto part = text.substr(0, slash);
        text = slash == std::string_view::npos ? std::string_view() : text.substr(slash + 1);
        return std::pair(part, slash != std::string_view::npos);
    };
    std::vector<std::string> found;
    for (bool more = true; more;) {
        const auto [wanted, isMoreWanted] = cut(pattern);
        const auto [part, isMore] = cut(path);
        if (isMore != isMoreWanted) return std::nullopt;
        if (!wanted.starts_with('{')) {
            if (part != wanted) return std::nullopt;
        } else if (part.empty()) {
            return std::nullopt;
        } else {
            found.emplace_back(part);
        }
        more = isMore;
    }
    return found;
}

}  // namespace velmora::sandbox
