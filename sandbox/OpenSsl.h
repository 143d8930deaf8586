#pragma once

#include <memory>

namespace velmora::sandbox {

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const noexcept { release(object); }
};

/// An object of OpenSSL that goes with its owner.
template <class T, void (*release)(T*)>
using Owned = std::unique_ptr<T, Release<T, release>>;

}  // namespace velmora::sandbox
