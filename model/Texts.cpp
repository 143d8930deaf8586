#include "model/Texts.h"

#include <utility>

namespace velmora {

std::optional<std::vector<std::string>> textsOf(const platform::Property& list) {
    const auto* array = list ? list->if_array() : nullptr;
    if (array == nullptr) return std::nullopt;
    std::vector<std::string> texts;
    for (const auto& element : *array) {
        if (auto text = platform::asString(element)) texts.push_back(std::move(*text));
    }
    return texts;
}

std::string queryTextOf(const platform::Dictionary& params) {
    std::string text;
    for (const auto& param : params) {
        if (!text.empty()) text += '&';
        text.append(param.key().data(), param.key().size()).append(1, '=');
        text += platform::description(param.value());
    }
    return text;
}

}  // namespace velmora
