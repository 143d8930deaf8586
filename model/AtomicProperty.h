#pragma once

#include "platform/Mutex.h"
#include "platform/Value.h"

#include <utility>

namespace velmora {

/// A property that several threads may read and replace; what it refers to is theirs to agree on.
template <class T>
class AtomicProperty {
public:
    AtomicProperty() = default;

    explicit AtomicProperty(T value) : value_(std::move(value)) {}

    [[nodiscard]] T get() const {
        const platform::MutexLock lock(mutex_);
        return value_;
    }

    void set(T value) {
        const platform::MutexLock lock(mutex_);
        std::swap(value_, value);
    }

private:
    mutable platform::Mutex mutex_;
    T value_ VELMORA_GUARDED_BY(mutex_){};
};

/// A flag of a record, as it stands there.
[[nodiscard]] inline bool isSet(const AtomicProperty<platform::Property>& flag) {
    return platform::asBool(flag.get());
}

}  // namespace velmora
