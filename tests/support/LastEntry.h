#pragma once

#include "sandbox/Sandbox.h"

#include <string>
#include <vector>

#include <boost/json.hpp>

namespace velmora::test {

/// What the service noted of the last request.
inline boost::json::object lastEntry(const sandbox::Sandbox& service) {
    return service.ledger().at("entries").as_array().back().as_object();
}

/// What it found wrong with it, in words.
inline std::vector<std::string> lastProblems(const sandbox::Sandbox& service) {
    return boost::json::value_to<std::vector<std::string>>(lastEntry(service).at("problems"));
}

}  // namespace velmora::test
