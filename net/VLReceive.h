#pragma once

#include "model/VLSerializedModel.h"

#include <any>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// What a successful answer was read into: a `std::shared_ptr` of the class that was asked for, or else a
/// `std::optional<std::string>`, which is absent when the answer is not UTF-8.
using VLResult = std::any;

/// Makes a result of the class that a caller wants out of the answer's dictionary; null when the answer is
/// not one. An empty one stands for text.
using VLReceive = std::function<VLResult(Dictionary* dictionary)>;

template <class Model>
[[nodiscard]] VLReceive receive() {
    return [](Dictionary* dictionary) -> VLResult {
        auto model = std::make_shared<Model>();
        model->setValuesForKeysWithDictionary(dictionary);
        return model;
    };
}

/// The result as the class that was asked for; null when it is not one.
template <class Model>
[[nodiscard]] std::shared_ptr<Model> resultAs(const VLResult& result) {
    const auto* model = std::any_cast<std::shared_ptr<Model>>(&result);
    return model != nullptr ? *model : nullptr;
}

[[nodiscard]] inline std::optional<std::string> resultAsText(const VLResult& result) {
    const auto* text = std::any_cast<std::optional<std::string>>(&result);
    return text != nullptr ? *text : std::nullopt;
}

}  // namespace velmora
