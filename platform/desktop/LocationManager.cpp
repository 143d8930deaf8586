#include "platform/Location.h"

#include "platform/Immortal.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"
#include "platform/desktop/Enquiry.h"
#include "platform/desktop/PositionSource.h"
#include "platform/desktop/SystemBus.h"

#include <atomic>

namespace velmora::platform {

namespace {

constexpr BusObject kService{"org.freedesktop.GeoClue2", "/org/freedesktop/GeoClue2/Manager",
                             "org.freedesktop.GeoClue2.Manager"};

std::atomic authorization = LocationAuthorization::notDetermined;

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

LocationAuthorization LocationManager::authorizationStatus() { return authorization; }

LocationManager::~LocationManager() { stopUpdatingLocation(); }

void LocationManager::setDelegate(const std::weak_ptr<LocationManagerDelegate>& delegate) {
    const MutexLock lock(mutex_);
    delegate_ = delegate;
}

void LocationManager::startUpdatingLocation() {
    const MutexLock lock(mutex_);
    if (source_) return;
    PositionSource::Receiver receiver;
    receiver.located = [manager = weak_from_this()](const Location& location) {
        MainQueue::async([manager, location] {
            if (const auto kept = manager.lock()) kept->deliver(location);
        });
    };
    receiver.refused = [manager = weak_from_this()] {
        authorization = LocationAuthorization::denied;
        log("The location service refuses to give this application a position");
        if (const auto kept = manager.lock()) kept->stopUpdatingLocation();
    };
    source_ = std::make_shared<PositionSource>(std::move(receiver));
    // The toolkit needs its application object for it.
    MainQueue::async([source = source_] { source->start(); });
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
    authorization = LocationAuthorization::authorized;
    if (delegate) delegate->locationManagerDidUpdateLocations(*this, {location});
}

}  // namespace velmora::platform
