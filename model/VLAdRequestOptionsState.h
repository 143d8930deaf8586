#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"
#include <velmora/VLAdRequestOptions.h>

#include <memory>

namespace velmora {

/// The stored form of request options: one entry, "mCacheType", which is the null marker while nothing was
/// set.
class VLAdRequestOptionsState final : public VLSerializedModel {
public:
    AtomicProperty<Property> mCacheType;

private:
    [[nodiscard]] const Schema& schema() const override;
};

/// The options convert as records do, by the state they hold.
[[nodiscard]] inline const VLSerializedModel& asRecord(const VLAdRequestOptions& options) {
    return options.state();
}

template <>
std::shared_ptr<VLAdRequestOptions> recordFrom<VLAdRequestOptions>(Dictionary* dictionary);

}  // namespace velmora
