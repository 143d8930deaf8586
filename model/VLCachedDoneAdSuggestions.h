#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

class VLDoneAdSuggestion;

/// The done suggestions as they are stored, oldest first.
class VLCachedDoneAdSuggestions final : public VLSerializedModel {
public:
    ModelList<VLDoneAdSuggestion> doneAdSuggestions;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
