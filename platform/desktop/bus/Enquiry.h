#pragma once

#include "platform/CallOut.h"
#include "platform/Mutex.h"

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace velmora::platform {

/// A question to a service that may be long in answering. It is asked on a thread of its own; nobody waits
/// longer than `kPatience` for it.
template <class Answer>
class Enquiry {
public:
    static constexpr std::chrono::milliseconds kPatience{20};
    /// How long an answer is good, from the moment it came.
    static constexpr std::chrono::seconds kFresh{1};
    /// When a question that nobody answers is asked anew.
    static constexpr std::chrono::seconds kGivenUp{30};

    explicit Enquiry(std::function<Answer()> question) : question_(std::move(question)) {}

    /// The answer, if there is a fresh one or it comes in time; else the last one that came. Absent when
    /// there has been none. Any thread.
    [[nodiscard]] std::optional<Answer> answer() {
        const auto asked = ask();
        // Counted from the moment of the question: of those who come while it is open, only the first waits.
        if (asked.coming.valid()) asked.coming.wait_until(asked.at + kPatience);
        const MutexLock lock(mutex_);
        collect();
        return last_ ? std::optional(last_->answer) : std::nullopt;
    }

private:
    using Time = std::chrono::steady_clock::time_point;

    struct Answered {
        Answer answer;
        Time at;
    };

    /// Null where nobody knows: the question failed, or there was no thread to ask it on.
    using Outcome = std::optional<Answered>;

    struct Asked {
        std::shared_future<Outcome> coming;
        Time at;
    };

    Asked ask() {
        const MutexLock lock(mutex_);
        collect();
        const auto now = std::chrono::steady_clock::now();
        const bool isWaiting = open_.coming.valid() && now - open_.at < kGivenUp;
        if (!isWaiting && (!last_ || now - last_->at > kFresh)) {
            auto promise = std::make_shared<std::promise<Outcome>>();
            open_ = {promise->get_future().share(), now};
            bool isAsked = false;
            callOut("an enquiry", [&] {
                std::thread([promise, question = question_] {
                    promise->set_value(outcomeOf(question));
                }).detach();
                isAsked = true;
            });
            if (!isAsked) promise->set_value(std::nullopt);
        }
        return open_;
    }

    static Outcome outcomeOf(const std::function<Answer()>& question) {
        Outcome outcome;
        callOut("an enquiry", [&] {
            auto answer = question();
            outcome = Answered{std::move(answer), std::chrono::steady_clock::now()};
        });
        return outcome;
    }

    void collect() VELMORA_REQUIRES(mutex_) {
        if (!open_.coming.valid()) return;
        if (open_.coming.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
        if (const auto& outcome = open_.coming.get()) last_ = outcome;
        open_ = {};
    }

    const std::function<Answer()> question_;
    Mutex mutex_;
    Asked open_ VELMORA_GUARDED_BY(mutex_);
    std::optional<Answered> last_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace velmora::platform
