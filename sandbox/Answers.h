#pragma once

#include "sandbox/Http.h"

#include <boost/json.hpp>

namespace velmora::sandbox {

inline Response jsonAnswer(const boost::json::value& value) {
    return {.body = boost::json::serialize(value)};
}

/// An answer that says why it is no better one.
inline Response refusal(int status, const std::string& why) {
    return {.status = status, .body = boost::json::serialize(boost::json::object{{"error", why}})};
}

}  // namespace velmora::sandbox
