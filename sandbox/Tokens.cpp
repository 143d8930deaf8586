#include "sandbox/Tokens.h"

#include <vector>

#include <openssl/rand.h>

namespace velmora::sandbox {

std::string randomText(std::size_t bytes) {
    constexpr const char* digits = "0123456789abcdef";
    std::vector<unsigned char> drawn(bytes);
    RAND_bytes(drawn.data(), static_cast<int>(drawn.size()));
    std::string text;
    for (const unsigned byte : drawn) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

Tokens::Tokens(std::chrono::seconds lifetime) : lifetime_(lifetime) {}

std::string Tokens::issueFor(const std::string& developerKey) {
    auto token = randomText(16);
    const auto now = Clock::now();
    const std::lock_guard lock(mutex_);
    std::erase_if(grants_, [&](const auto& entry) { return entry.second.until <= now; });
    grants_.emplace(token, Grant{.developerKey = developerKey, .until = now + lifetime_});
    return token;
}

bool Tokens::isGood(const std::string& token, const std::string& developerKey) const {
    const std::lock_guard lock(mutex_);
    const auto found = grants_.find(token);
    return found != grants_.end() && found->second.developerKey == developerKey &&
           Clock::now() < found->second.until;
}

void Tokens::expireAll() {
    const std::lock_guard lock(mutex_);
    grants_.clear();
}

}  // namespace velmora::sandbox
