#pragma once

#include <map>
#include <mutex>
#include <string>

#include <boost/json.hpp>

namespace velmora::sandbox {

/// What the users' suggestions came to, as their devices report it. Any thread.
class Users {
public:
    /// Takes in the states of a body's "finalStatesRequest": the last one posted counts for a suggestion.
    void remember(const std::string& userId, const boost::json::object& body);
    /// A list of final states for each user.
    [[nodiscard]] boost::json::object finalStates() const;
    void forgetAll();

private:
    mutable std::mutex mutex_;
    std::map<std::string, boost::json::array> states_;
};

}  // namespace velmora::sandbox
