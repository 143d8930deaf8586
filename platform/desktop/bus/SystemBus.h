#pragma once

#include <memory>
#include <optional>
#include <string>

#include <gio/gio.h>

namespace velmora::platform {

struct ReleaseVariant {
    void operator()(GVariant* value) const noexcept { g_variant_unref(value); }
};

/// A value as it comes over the bus; null where there is none.
using Variant = std::unique_ptr<GVariant, ReleaseVariant>;

/// An object of a service, seen through one of its interfaces.
struct BusObject {
    const char* service;
    const char* path;
    const char* interface;
};

/// A connection of its own to the machine's message bus (D-Bus). Its calls wait: it is not
/// for threads of the application. No failure is logged, for a service that is not there is none.
class SystemBus {
public:
    enum class Start { never, onDemand };

    /// Absent where there is no bus, and when it was cancelled while the bus did not speak.
    [[nodiscard]] static std::optional<SystemBus> connect(GCancellable* cancellable = nullptr);

    /// The answer of a method without arguments. Null when it is of another type, when it is an error, and
    /// when none has come after five seconds. A service that does not run is started on demand, if the
    /// bus can.
    [[nodiscard]] Variant call(const BusObject& object, const char* method, const char* type,
                               Start start) const;

    /// Likewise, with arguments, which are taken over. Without an answer `error` says by its name on the bus
    /// what the error was, or else in words.
    [[nodiscard]] Variant call(const BusObject& object, const char* method, GVariant* arguments,
                               const char* type, Start start, std::string& error) const;

    /// The value of a property, likewise.
    [[nodiscard]] Variant property(const BusObject& object, const char* name, const char* type,
                                   Start start) const;

    /// All properties, by name.
    [[nodiscard]] Variant properties(const BusObject& object, Start start) const;

    /// For what is not a call. It belongs to this object.
    [[nodiscard]] GDBusConnection* connection() const { return connection_.get(); }

private:
    struct Release {
        void operator()(GDBusConnection* connection) const noexcept { g_object_unref(connection); }
    };

    using Connection = std::unique_ptr<GDBusConnection, Release>;

    explicit SystemBus(Connection connection);

    Connection connection_;
};

}  // namespace velmora::platform
