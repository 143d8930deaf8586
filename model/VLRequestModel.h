#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// Marks a body that is sent to the service. No record derives from it.
class VLRequestModel : public VLSerializedModel {
private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
