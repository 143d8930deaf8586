#include "platform/desktop/place/PositionSource.h"

#include "platform/Bundle.h"
#include "platform/CallOut.h"
#include "platform/Log.h"
#include "platform/desktop/bus/SystemBus.h"
#include "platform/desktop/system/DetachedThread.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace velmora::platform {

namespace {

constexpr const char* kName = "org.freedesktop.GeoClue2";
constexpr BusObject kManager{kName, "/org/freedesktop/GeoClue2/Manager", "org.freedesktop.GeoClue2.Manager"};
constexpr const char* kClient = "org.freedesktop.GeoClue2.Client";
constexpr const char* kLocation = "org.freedesktop.GeoClue2.Location";
constexpr const char* kRefusal = "org.freedesktop.DBus.Error.AccessDenied";

/// Of the levels of accuracy, the one that tells as exactly as the machine can.
constexpr guint32 kExact = 8;
/// What the service writes for an altitude that it does not know.
constexpr double kNoAltitude = std::numeric_limits<double>::lowest();

/// Absent where there is none, and where it is no number.
std::optional<double> numberIn(GVariant* properties, const char* name) {
    double number = 0;
    if (g_variant_lookup(properties, name, "d", &number) == FALSE || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<Location> locationOf(GVariant* properties) {
    const auto latitude = numberIn(properties, "Latitude");
    const auto longitude = numberIn(properties, "Longitude");
    constexpr double pole = 90;
    constexpr double antimeridian = 180;
    if (!latitude || !longitude || std::abs(*latitude) > pole || std::abs(*longitude) > antimeridian)
        return std::nullopt;
    Location location{.latitude = *latitude, .longitude = *longitude};
    if (const auto accuracy = numberIn(properties, "Accuracy")) location.horizontalAccuracy = *accuracy;
    const auto altitude = numberIn(properties, "Altitude");
    if (altitude && *altitude != kNoAltitude) location.altitude = *altitude;
    return location;
}

}  // namespace

/// What the service has for this application, from the first call to the end of the connection.
class PositionSource::Client {
public:
    Client(const Receiver& receiver, SystemBus bus) : receiver_(receiver), bus_(std::move(bus)) {}

    /// With the connection the service's client ends, and with the subscriptions nothing comes any more.
    ~Client() {
        if (updates_ != 0) g_dbus_connection_signal_unsubscribe(bus_.connection(), updates_);
        if (owner_ != 0) g_bus_unwatch_name(owner_);
        g_dbus_connection_close_sync(bus_.connection(), nullptr, nullptr);
    }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// False, with what there is to say said, when it is given no positions.
    [[nodiscard]] bool start() {
        const auto answer = call(kManager, "GetClient", nullptr, "(o)");
        if (!answer) return false;
        const char* path = nullptr;
        g_variant_get(answer.get(), "(&o)", &path);
        path_ = path;
        updates_ =
            g_dbus_connection_signal_subscribe(bus_.connection(), kName, kClient, "LocationUpdated", path,
                                               nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &onUpdate, this, nullptr);
        owner_ = g_bus_watch_name_on_connection(bus_.connection(), kName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                nullptr, &onGone, this, nullptr);
        // The service knows applications by the name of their desktop file, which is their identifier.
        const auto identifier = Bundle::main().identifier().value_or("application");
        return set("DesktopId", g_variant_new_string(identifier.c_str())) &&
               set("RequestedAccuracyLevel", g_variant_new_uint32(kExact)) &&
               call({kName, path_.c_str(), kClient}, "Start", nullptr, "()") != nullptr;
    }

    [[nodiscard]] bool isGone() const { return isGone_; }

private:
    [[nodiscard]] Variant call(const BusObject& object, const char* method, GVariant* arguments,
                               const char* type) {
        std::string error;
        auto answer = bus_.call(object, method, arguments, type, SystemBus::Start::onDemand, error);
        if (answer) return answer;
        if (error == kRefusal) {
            receiver_.refused();
        } else {
            log("The location service gives no positions: " + error);
            receiver_.ended();
        }
        return nullptr;
    }

    [[nodiscard]] bool set(const char* property, GVariant* value) {
        return call({kName, path_.c_str(), "org.freedesktop.DBus.Properties"}, "Set",
                    g_variant_new("(ssv)", kClient, property, value), "()") != nullptr;
    }

    static void onUpdate(GDBusConnection*, const char*, const char*, const char*, const char*,
                         GVariant* paths, gpointer self) {
        if (g_variant_is_of_type(paths, G_VARIANT_TYPE("(oo)")) == FALSE) return;
        const char* path = nullptr;
        g_variant_get_child(paths, 1, "&o", &path);
        static_cast<Client*>(self)->tell(path);
    }

    static void onGone(GDBusConnection*, const char*, gpointer self) {
        log("The location service has gone");
        static_cast<Client*>(self)->isGone_ = true;
    }

    void tell(const char* path) const {
        const auto properties = bus_.properties({kName, path, kLocation}, SystemBus::Start::never);
        if (!properties) return;
        if (const auto location = locationOf(properties.get())) receiver_.located(*location);
    }

    const Receiver& receiver_;
    const SystemBus bus_;
    std::string path_;
    guint updates_ = 0;
    guint owner_ = 0;
    bool isGone_ = false;
};

PositionSource::PositionSource(Receiver receiver)
    : receiver_(std::move(receiver)), context_(g_main_context_new()), cancellable_(g_cancellable_new()) {}

PositionSource::~PositionSource() {
    g_object_unref(cancellable_);
    g_main_context_unref(context_);
}

void PositionSource::start() {
    const auto self = shared_from_this();
    if (!startDetachedThread([self] { callOut("a position source", [&] { self->run(); }); }))
        receiver_.ended();
}

void PositionSource::stop() {
    g_cancellable_cancel(cancellable_);
    g_main_context_wakeup(context_);
}

bool PositionSource::isStopped() { return g_cancellable_is_cancelled(cancellable_) != FALSE; }

void PositionSource::run() {
    // What comes over a connection that is made here comes in this context.
    g_main_context_push_thread_default(context_);
    if (auto bus = SystemBus::connect(cancellable_)) {
        Client client(receiver_, std::move(*bus));
        if (!isStopped() && client.start()) {
            while (!isStopped() && !client.isGone()) g_main_context_iteration(context_, TRUE);
            if (!isStopped()) receiver_.ended();
        }
    } else if (!isStopped()) {
        receiver_.ended();
    }
    g_main_context_pop_thread_default(context_);
}

}  // namespace velmora::platform
