#include "platform/Telephony.h"

#include "platform/Immortal.h"
#include "platform/desktop/bus/Enquiry.h"
#include "platform/desktop/bus/SystemBus.h"

#include <map>

namespace velmora::platform {

namespace {

constexpr const char* kService = "org.freedesktop.ModemManager1";
constexpr const char* kModem = "org.freedesktop.ModemManager1.Modem";
constexpr const char* kNetwork = "org.freedesktop.ModemManager1.Modem.Modem3gpp";
constexpr const char* kSim = "org.freedesktop.ModemManager1.Sim";
constexpr BusObject kManager{kService, "/org/freedesktop/ModemManager1",
                             "org.freedesktop.DBus.ObjectManager"};

constexpr std::size_t kDigitsOfCountry = 3;
/// The service provider name of a card has 16 characters; nothing that is much longer is a name.
constexpr std::size_t kLongestText = 200;

// A modem that is not in use is left alone.
constexpr auto kStart = SystemBus::Start::never;

/// A text of a dictionary of properties; absent where it is none, and where it is empty or endless.
std::optional<std::string> textIn(GVariant* properties, const char* name) {
    const Variant value(g_variant_lookup_value(properties, name, G_VARIANT_TYPE_STRING));
    if (!value) return std::nullopt;
    std::string text = g_variant_get_string(value.get(), nullptr);
    if (text.empty() || text.size() > kLongestText) return std::nullopt;
    return text;
}

/// The interfaces of a modem, with their properties.
class Modem {
public:
    explicit Modem(Variant interfaces) : interfaces_(std::move(interfaces)) {}

    [[nodiscard]] std::optional<std::string> pathOfSim() const {
        const auto modem = propertiesOf(kModem);
        if (!modem) return std::nullopt;
        const Variant path(g_variant_lookup_value(modem.get(), "Sim", G_VARIANT_TYPE_OBJECT_PATH));
        if (!path) return std::nullopt;
        return std::string(g_variant_get_string(path.get(), nullptr));
    }

    /// The name of the network that it is registered in, if that one has this code.
    [[nodiscard]] std::optional<std::string> nameOfNetwork(const std::string& code) const {
        const auto network = propertiesOf(kNetwork);
        if (!network || textIn(network.get(), "OperatorCode") != code) return std::nullopt;
        return textIn(network.get(), "OperatorName");
    }

private:
    [[nodiscard]] Variant propertiesOf(const char* interface) const {
        return Variant(g_variant_lookup_value(interfaces_.get(), interface, G_VARIANT_TYPE_VARDICT));
    }

    Variant interfaces_;
};

/// By their paths, so that of several modems it is always the same one that counts.
std::map<std::string, Modem> modemsOn(const SystemBus& bus) {
    std::map<std::string, Modem> modems;
    const auto answer = bus.call(kManager, "GetManagedObjects", "(a{oa{sa{sv}}})", kStart);
    if (!answer) return modems;

    const Variant objects(g_variant_get_child_value(answer.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(objects.get()); ++index) {
        const Variant entry(g_variant_get_child_value(objects.get(), index));
        const Variant path(g_variant_get_child_value(entry.get(), 0));
        modems.emplace(g_variant_get_string(path.get(), nullptr),
                       Variant(g_variant_get_child_value(entry.get(), 1)));
    }
    return modems;
}

std::optional<Carrier> carrierOf(const Modem& modem, const SystemBus& bus) {
    const auto path = modem.pathOfSim();
    if (!path) return std::nullopt;
    const auto sim = bus.properties({kService, path->c_str(), kSim}, kStart);
    if (!sim) return std::nullopt;

    Carrier carrier;
    carrier.name = textIn(sim.get(), "OperatorName");
    if (const auto code = textIn(sim.get(), "OperatorIdentifier")) {
        carrier.mobileCountryCode = code->substr(0, kDigitsOfCountry);
        if (code->size() > kDigitsOfCountry) carrier.mobileNetworkCode = code->substr(kDigitsOfCountry);
        // Many cards do not say the name. At home, the network does.
        if (!carrier.name) carrier.name = modem.nameOfNetwork(*code);
    }
    if (!carrier.name && !carrier.mobileCountryCode) return std::nullopt;
    return carrier;
}

std::optional<Carrier> ask() {
    const auto bus = SystemBus::connect();
    if (!bus) return std::nullopt;
    for (const auto& [path, modem] : modemsOn(*bus)) {
        if (auto carrier = carrierOf(modem, *bus)) return carrier;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Carrier> Telephony::subscriberCellularProvider() {
    static Immortal<Enquiry<std::optional<Carrier>>> enquiry(&ask);
    return enquiry->answer().value_or(std::nullopt);
}

}  // namespace velmora::platform
