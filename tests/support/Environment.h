#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace velmora::test {

/// An environment variable for a scope; none removes it.
class Environment {
public:
    Environment(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(value);
    }

    ~Environment() { set(before_ ? before_->c_str() : nullptr); }

    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void set(const char* value) { value != nullptr ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace velmora::test
