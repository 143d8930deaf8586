#include "net/VLDataTask.h"

#include <utility>

namespace velmora {

VLDataTask::VLDataTask(std::shared_ptr<platform::UrlTask> withTask) : task(std::move(withTask)) {}

std::int64_t VLDataTask::state() const { return task ? static_cast<std::int64_t>(task->state()) : 0; }

void VLDataTask::cancel() {
    if (task) task->cancel();
}

}  // namespace velmora
