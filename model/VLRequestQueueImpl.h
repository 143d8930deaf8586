#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

#include <cstddef>

namespace velmora {

class VLCachedRequestItem;

/// The persistent queue as it is stored, oldest request first. Safe to use from any thread: a change replaces
/// the list.
class VLRequestQueueImpl final : public VLSerializedModel {
public:
    /// The list; an empty one is made when there is none.
    [[nodiscard]] ModelList<VLCachedRequestItem> getRequests();

    /// Changes nothing: it appends only to a list that does not exist, and there it has nothing to append to.
    void addRequestToQueue(const std::shared_ptr<VLCachedRequestItem>& item);

    /// Removes every element that is this very object.
    void removeItem(const std::shared_ptr<VLCachedRequestItem>& item);

    /// 0 without a list.
    [[nodiscard]] std::size_t count() const;

    AtomicProperty<ModelList<VLCachedRequestItem>> requests;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
