#pragma once

#include <stdexcept>

namespace velmora::platform {

/// Something is missing, or of another kind, where an operation cannot do without. It never reaches the
/// application: whoever calls back on behalf of the platform catches and logs it.
class InvalidArgument : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

}  // namespace velmora::platform
