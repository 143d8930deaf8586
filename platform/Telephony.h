#pragma once

#include <optional>
#include <string>

namespace velmora::platform {

/// Who provides the cellular service that the user has subscribed to.
struct Carrier {
    std::optional<std::string> name;
    /// Digits, leading zeros included (ITU-T E.212).
    std::optional<std::string> mobileCountryCode;
    std::optional<std::string> mobileNetworkCode;
};

/// The cellular modem of this machine.
class Telephony {
public:
    Telephony() = delete;

    /// The carrier of the SIM card, whatever network it is in at the moment. Absent where there is no modem,
    /// no card, or no ModemManager to tell. Any thread; waits 20 ms for it at most. An answer that takes
    /// longer is given to who asks later.
    [[nodiscard]] static std::optional<Carrier> subscriberCellularProvider();
};

}  // namespace velmora::platform
