#include "model/VLRequestQueueImpl.h"

#include "model/Schema.h"
#include "model/VLCachedRequestItem.h"

#include <algorithm>

namespace velmora {

const Schema& VLRequestQueueImpl::schema() const {
    static constexpr Field fields[]{
        list<&VLRequestQueueImpl::requests>("requests"),
    };
    static constexpr Schema table(fields);
    return table;
}

ModelList<VLCachedRequestItem> VLRequestQueueImpl::getRequests() {
    if (!requests.get()) requests.set(makeList<VLCachedRequestItem>());
    return requests.get();
}

void VLRequestQueueImpl::addRequestToQueue(const std::shared_ptr<VLCachedRequestItem>&) {}

void VLRequestQueueImpl::removeItem(const std::shared_ptr<VLCachedRequestItem>& item) {
    const auto now = requests.get();
    if (!now) return;
    auto left = *now;
    std::erase(left, item);
    requests.set(makeList(std::move(left)));
}

std::size_t VLRequestQueueImpl::count() const {
    const auto now = requests.get();
    return now ? now->size() : 0;
}

}  // namespace velmora
