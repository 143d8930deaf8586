#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace velmora::sandbox {

/// The access tokens that are out, each good for one developer key and for some time. Any thread.
class Tokens {
public:
    explicit Tokens(std::chrono::seconds lifetime);

    [[nodiscard]] std::string issueFor(const std::string& developerKey);
    [[nodiscard]] bool isGood(const std::string& token, const std::string& developerKey) const;
    void expireAll();

private:
    using Clock = std::chrono::steady_clock;

    struct Grant {
        std::string developerKey;
        Clock::time_point until;
    };

    const std::chrono::seconds lifetime_;
    mutable std::mutex mutex_;
    std::map<std::string, Grant> grants_;
};

/// So many random bytes, in hexadecimal.
[[nodiscard]] std::string randomText(std::size_t bytes);

}  // namespace velmora::sandbox
