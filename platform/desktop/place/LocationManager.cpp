#include "platform/Location.h"

#include "platform/Clock.h"
#include "platform/Immortal.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/desktop/bus/Enquiry.h"
#include "platform/desktop/bus/SystemBus.h"
#include "platform/desktop/place/PositionSource.h"

#include <chrono>
#include <optional>

namespace velmora::platform {

namespace {

constexpr BusObject kService{"org.freedesktop.GeoClue2", "/org/freedesktop/GeoClue2/Manager",
                             "org.freedesktop.GeoClue2.Manager"};

constexpr std::chrono::minutes kRefusalLasts(10);

/// What the service has said to this process.
class Authorization {
public:
    static Authorization& instance() {
        static Immortal<Authorization> authorization;
        return *authorization;
    }

    void noteRefusal() {
        const MutexLock lock(mutex_);
        refusal_ = Clock::current()->now();
    }

    void noteFix() {
        const MutexLock lock(mutex_);
        refusal_.reset();
        hasFix_ = true;
    }

    [[nodiscard]] LocationAuthorization status() {
        const MutexLock lock(mutex_);
        if (refusal_ && Clock::current()->now() - *refusal_ < kRefusalLasts)
            return LocationAuthorization::denied;
        return hasFix_ ? LocationAuthorization::authorized : LocationAuthorization::notDetermined;
    }

private:
    Mutex mutex_;
    std::optional<std::chrono::system_clock::time_point> refusal_ VELMORA_GUARDED_BY(mutex_);
    bool hasFix_ VELMORA_GUARDED_BY(mutex_) = false;
};

/// The service ends when nobody uses it, so that it may have to be started to say so.
bool givesPositions() {
    const auto bus = SystemBus::connect();
    if (!bus) return false;
    const auto level = bus->property(kService, "AvailableAccuracyLevel", "u", SystemBus::Start::onDemand);
    return level && g_variant_get_uint32(level.get()) > 0;
}

}  // namespace

bool LocationManager::locationServicesEnabled() {
    static Immortal<Enquiry<bool>> enquiry(&givesPositions);
    return enquiry->answer().value_or(false);
}

LocationAuthorization LocationManager::authorizationStatus() { return Authorization::instance().status(); }

LocationManager::~LocationManager() { stopUpdatingLocation(); }

void LocationManager::setDelegate(const std::weak_ptr<LocationManagerDelegate>& delegate) {
    const MutexLock lock(mutex_);
    delegate_ = delegate;
}

void LocationManager::startUpdatingLocation() {
    PositionSource::Receiver receiver;
    receiver.located = [manager = weak_from_this()](const Location& location) {
        MainQueue::async([manager, location] {
            if (const auto kept = manager.lock()) kept->deliver(location);
        });
    };
    receiver.refused = [manager = weak_from_this()] {
        Authorization::instance().noteRefusal();
        log("The location service refuses this application a position");
        if (const auto kept = manager.lock()) kept->stopUpdatingLocation();
    };
    receiver.ended = [manager = weak_from_this()] {
        if (const auto kept = manager.lock()) kept->stopUpdatingLocation();
    };
    const auto source = std::make_shared<PositionSource>(std::move(receiver));
    {
        const MutexLock lock(mutex_);
        if (source_) return;
        source_ = source;
    }
    source->start();
}

void LocationManager::stopUpdatingLocation() {
    std::shared_ptr<PositionSource> source;
    {
        const MutexLock lock(mutex_);
        source.swap(source_);
    }
    if (source) source->stop();
}

void LocationManager::deliver(const Location& location) {
    std::shared_ptr<LocationManagerDelegate> delegate;
    {
        const MutexLock lock(mutex_);
        if (!source_) return;
        delegate = delegate_.lock();
    }
    Authorization::instance().noteFix();
    if (delegate) delegate->locationManagerDidUpdateLocations(*this, {location});
}

}  // namespace velmora::platform
