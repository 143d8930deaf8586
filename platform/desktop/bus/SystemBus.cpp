#include "platform/desktop/bus/SystemBus.h"

#include <utility>

namespace velmora::platform {

namespace {

constexpr int kTimeoutInMilliseconds = 5000;
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

}  // namespace

std::optional<SystemBus> SystemBus::connect() {
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr), &g_free);
    if (!address) return std::nullopt;
    // The connection that a process shares ends the process when the bus goes away; this one does not.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    Connection connection(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr));
    if (!connection) return std::nullopt;
    return SystemBus(std::move(connection));
}

SystemBus::SystemBus(Connection connection) : connection_(std::move(connection)) {}

Variant SystemBus::call(const BusObject& object, const char* method, const char* type, Start start) const {
    return callWith(object, method, nullptr, type, start);
}

Variant SystemBus::property(const BusObject& object, const char* name, const char* type, Start start) const {
    const Variant answer = callWith({object.service, object.path, kProperties}, "Get",
                                    g_variant_new("(ss)", object.interface, name), "(v)", start);
    if (!answer) return nullptr;
    const Variant boxed(g_variant_get_child_value(answer.get(), 0));
    Variant value(g_variant_get_variant(boxed.get()));
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE(type)) != 0 ? std::move(value) : nullptr;
}

Variant SystemBus::properties(const BusObject& object, Start start) const {
    const Variant answer = callWith({object.service, object.path, kProperties}, "GetAll",
                                    g_variant_new("(s)", object.interface), "(a{sv})", start);
    return answer ? Variant(g_variant_get_child_value(answer.get(), 0)) : nullptr;
}

Variant SystemBus::callWith(const BusObject& object, const char* method, GVariant* arguments,
                            const char* type, Start start) const {
    const auto flags = start == Start::never ? G_DBUS_CALL_FLAGS_NO_AUTO_START : G_DBUS_CALL_FLAGS_NONE;
    return Variant(g_dbus_connection_call_sync(connection_.get(), object.service, object.path,
                                               object.interface, method, arguments, G_VARIANT_TYPE(type),
                                               flags, kTimeoutInMilliseconds, nullptr, nullptr));
}

}  // namespace velmora::platform
