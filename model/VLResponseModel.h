#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// Marks an answer of the service. No record derives from it.
class VLResponseModel : public VLSerializedModel {
private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
