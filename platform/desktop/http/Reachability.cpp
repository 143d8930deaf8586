#include "platform/Reachability.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

/// A descriptor that is closed with its scope.
class Socket {
public:
    explicit Socket(int descriptor) : descriptor_(descriptor) {}

    ~Socket() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }

    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }

private:
    int descriptor_;
};

std::string interfaceWith(in_addr address) {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) return {};
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, ::freeifaddrs);
    for (const auto* one = list; one != nullptr; one = one->ifa_next) {
        if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET) continue;
        if (reinterpret_cast<const sockaddr_in*>(one->ifa_addr)->sin_addr.s_addr == address.s_addr) {
            return one->ifa_name;
        }
    }
    return {};
}

/// Whether the kernel knows the interface as a mobile modem, or as the point-to-point link that older ones
/// make.
bool isCellular(const std::string& interface) {
    const auto folder = std::filesystem::path("/sys/class/net") / interface;
    std::string line;
    for (std::ifstream uevent(folder / "uevent"); std::getline(uevent, line);) {
        if (line == "DEVTYPE=wwan") return true;
    }
    int type = 0;
    std::ifstream(folder / "type") >> type;
    constexpr int pointToPoint = 512;
    return type == pointToPoint;
}

}  // namespace

std::optional<std::uint32_t> Reachability::flags(std::string_view address) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(53);
    if (::inet_pton(AF_INET, std::string(address).c_str(), &target.sin_addr) != 1) return std::nullopt;

    const Socket socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (socket.get() < 0) return std::nullopt;
    // Connecting a datagram socket asks the kernel for a route and sends nothing.
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) return 0;

    sockaddr_in own{};
    socklen_t size = sizeof own;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&own), &size) != 0) return std::nullopt;
    return Reachability::kReachable |
           (isCellular(interfaceWith(own.sin_addr)) ? Reachability::kCellular : 0U);
}

}  // namespace velmora::platform
