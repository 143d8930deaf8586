#pragma once

/// For applications of SDL 2. Needs SDL 2, with its events initialised.

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include <velmora/velmora.h>

#include <SDL_events.h>

namespace velmora::hosts {

namespace sdl {

/// The work that waits for events to be handled. An event may get lost, when the queue of SDL is full or is
/// flushed; the work does not.
class Waiting {
public:
    static Waiting& instance() {
        static auto* waiting = new Waiting;
        return *waiting;
    }

    [[nodiscard]] Uint32 type() const { return type_; }

    void add(std::function<void()> work) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            work_.push_back(std::move(work));
        }
        SDL_Event event{};
        event.type = type_;
        SDL_PushEvent(&event);
    }

    void run() {
        std::deque<std::function<void()>> now;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            now.swap(work_);
        }
        for (const auto& work : now) work();
    }

private:
    Waiting() : type_(SDL_RegisterEvents(1)) {}

    const Uint32 type_;
    std::mutex mutex_;
    std::deque<std::function<void()>> work_;
};

}  // namespace sdl

/// Has callbacks run where the application hands its events to `handle`.
inline void useSdl() {
    sdl::Waiting::instance();
    Velmora::setMainQueue([](std::function<void()> work) { sdl::Waiting::instance().add(std::move(work)); });
}

/// To be given every event, on the main thread. True when it was one of the library's, and nothing of the
/// application's.
inline bool handle(const SDL_Event& event) {
    if (event.type != sdl::Waiting::instance().type()) return false;
    sdl::Waiting::instance().run();
    return true;
}

}  // namespace velmora::hosts
