#pragma once

#include "platform/CallOut.h"
#include "platform/Mutex.h"

#include <chrono>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace velmora::platform {

/// A question to a service that may be long in answering. It is asked on a thread of its own; nobody waits
/// longer than `kPatience` for it. It must live as long as the process.
template <class Answer>
class Enquiry {
public:
    static constexpr std::chrono::milliseconds kPatience{20};
    /// How long an answer is good.
    static constexpr std::chrono::seconds kFresh{1};

    explicit Enquiry(std::function<Answer()> question) : question_(std::move(question)) {}

    /// The answer, if there is a fresh one or it comes in time; else the last one that came. Absent when
    /// there has been none. Any thread.
    [[nodiscard]] std::optional<Answer> answer() {
        const auto asked = ask();
        // Counted from the moment of the question: of those who come while it is open, only the first waits.
        if (asked.coming.valid()) asked.coming.wait_until(asked.at + kPatience);
        const MutexLock lock(mutex_);
        collect();
        return last_;
    }

private:
    using Time = std::chrono::steady_clock::time_point;

    struct Asked {
        std::shared_future<Answer> coming;
        Time at;
    };

    Asked ask() {
        const MutexLock lock(mutex_);
        collect();
        const auto now = std::chrono::steady_clock::now();
        if (!open_.coming.valid() && (!last_ || now - answeredAt_ > kFresh)) {
            auto promise = std::make_shared<std::promise<Answer>>();
            open_ = {promise->get_future().share(), now};
            callOut("an enquiry", [&] {
                std::thread([promise, question = question_] {
                    callOut("an enquiry", [&] { promise->set_value(question()); });
                }).detach();
            });
        }
        return open_;
    }

    void collect() VELMORA_REQUIRES(mutex_) {
        if (!open_.coming.valid()) return;
        if (open_.coming.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
        try {
            last_ = open_.coming.get();
        } catch (const std::exception&) {
            // No thread could be had for it, or what it threw has been logged.
        }
        answeredAt_ = std::chrono::steady_clock::now();
        open_ = {};
    }

    const std::function<Answer()> question_;
    Mutex mutex_;
    Asked open_ VELMORA_GUARDED_BY(mutex_);
    std::optional<Answer> last_ VELMORA_GUARDED_BY(mutex_);
    Time answeredAt_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace velmora::platform
