#pragma once

#include <utility>

namespace velmora::platform {

/// Process-wide state that is never destroyed, so that threads which outlive `main` still find it.
template <class T>
class Immortal {
public:
    template <class... Arguments>
    explicit Immortal(Arguments&&... arguments) : value_(std::forward<Arguments>(arguments)...) {}

    ~Immortal() {}  // NOLINT(modernize-use-equals-default): a default one would be deleted, for the union

    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() noexcept { return value_; }

    T* operator->() noexcept { return &value_; }

private:
    union {
        T value_;
    };
};

}  // namespace velmora::platform
