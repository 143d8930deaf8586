#pragma once

#include <functional>
#include <thread>
#include <vector>

namespace velmora::test {

/// Threads that each run the same work with a number of their own; they are joined when this goes.
class Threads {
public:
    Threads(int count, const std::function<void(int)>& work) {
        for (int i = 0; i < count; ++i) running_.emplace_back(work, i);
    }

    ~Threads() {
        for (auto& thread : running_) thread.join();
    }

    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

private:
    std::vector<std::thread> running_;
};

}  // namespace velmora::test
