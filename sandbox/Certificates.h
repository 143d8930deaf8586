#pragma once

#include <string>
#include <vector>

namespace velmora::sandbox {

/// A certificate authority and the certificate of a server signed by it, with the server's key; all as PEM
/// text.
struct Certificates {
    /// For host names and IPv4 addresses, at least one; `validDays` may be negative. Every call makes an
    /// authority of its own.
    [[nodiscard]] static Certificates makeFor(const std::vector<std::string>& hosts, int validDays);

    std::string authority;
    std::string certificate;
    std::string key;
};

}  // namespace velmora::sandbox
