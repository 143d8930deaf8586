#pragma once

#include "platform/UrlSession.h"

#include <cstdint>
#include <memory>

namespace velmora {

/// A running request, for the caller who wants to watch or cancel it.
class VLDataTask {
public:
    explicit VLDataTask(std::shared_ptr<platform::UrlTask> task);

    /// 1 suspended, 2 canceling, 3 completed; 0 otherwise.
    [[nodiscard]] std::int64_t state() const;

    /// The request then calls neither of its callbacks.
    void cancel();

    std::shared_ptr<platform::UrlTask> task;
};

}  // namespace velmora
