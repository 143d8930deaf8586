#include "platform/desktop/bus/SystemBus.h"

#include <utility>

namespace velmora::platform {

namespace {

constexpr int kTimeoutInMilliseconds = 5000;
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

}  // namespace

std::optional<SystemBus> SystemBus::connect(GCancellable* cancellable) {
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, cancellable, nullptr), &g_free);
    if (!address) return std::nullopt;
    // The connection that a process shares ends the process when the bus goes away; this one does not.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    Connection connection(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable, nullptr));
    if (!connection) return std::nullopt;
    return SystemBus(std::move(connection));
}

SystemBus::SystemBus(Connection connection) : connection_(std::move(connection)) {}

Variant SystemBus::call(const BusObject& object, const char* method, const char* type, Start start) const {
    std::string error;
    return call(object, method, nullptr, type, start, error);
}

Variant SystemBus::property(const BusObject& object, const char* name, const char* type, Start start) const {
    std::string error;
    const Variant answer = call({object.service, object.path, kProperties}, "Get",
                                g_variant_new("(ss)", object.interface, name), "(v)", start, error);
    if (!answer) return nullptr;
    const Variant boxed(g_variant_get_child_value(answer.get(), 0));
    Variant value(g_variant_get_variant(boxed.get()));
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE(type)) != 0 ? std::move(value) : nullptr;
}

Variant SystemBus::properties(const BusObject& object, Start start) const {
    std::string error;
    const Variant answer = call({object.service, object.path, kProperties}, "GetAll",
                                g_variant_new("(s)", object.interface), "(a{sv})", start, error);
    return answer ? Variant(g_variant_get_child_value(answer.get(), 0)) : nullptr;
}

Variant SystemBus::call(const BusObject& object, const char* method, GVariant* arguments, const char* type,
                        Start start, std::string& error) const {
    const auto flags = start == Start::never ? G_DBUS_CALL_FLAGS_NO_AUTO_START : G_DBUS_CALL_FLAGS_NONE;
    GError* failure = nullptr;
    Variant answer(g_dbus_connection_call_sync(connection_.get(), object.service, object.path,
                                               object.interface, method, arguments, G_VARIANT_TYPE(type),
                                               flags, kTimeoutInMilliseconds, nullptr, &failure));
    if (failure == nullptr) return answer;
    const std::unique_ptr<GError, decltype(&g_error_free)> owned(failure, &g_error_free);
    const std::unique_ptr<char, decltype(&g_free)> name(g_dbus_error_get_remote_error(failure), &g_free);
    error = name ? name.get() : failure->message;
    return nullptr;
}

}  // namespace velmora::platform
