#pragma once

#include "platform/Mutex.h"

#include <memory>
#include <vector>

namespace velmora::platform {

/// A position that was measured (WGS 84).
struct Location {
    double latitude = 0;   ///< degrees, north is positive
    double longitude = 0;  ///< degrees, east is positive
    double altitude = 0;   ///< metres above sea level; 0 where it was not measured
    /// In metres; negative where it is not known, as for all altitudes that are not measured.
    double horizontalAccuracy = -1;
    double verticalAccuracy = -1;
};

/// Whether this application may know where it is.
enum class LocationAuthorization : int {
    notDetermined = 0,
    restricted = 1,
    denied = 2,
    authorized = 3,
};

class LocationManager;
class PositionSource;

class LocationManagerDelegate {
public:
    virtual ~LocationManagerDelegate() = default;

    /// Main thread. The oldest location comes first; there is at least one.
    virtual void locationManagerDidUpdateLocations(LocationManager& manager,
                                                   const std::vector<Location>& locations) = 0;
};

/// Where the device is: every change of its position, as exact as there is, from the desktop's location
/// service (GeoClue 2). What is no place on a map counts as none. Safe to call from any thread; nothing waits
/// longer than 20 ms.
class LocationManager : public std::enable_shared_from_this<LocationManager> {
public:
    /// Whether the desktop's location service (GeoClue 2) is there, and the user lets it give positions. A
    /// service that takes longer to say so counts as one that is not there, until its answer has come.
    [[nodiscard]] static bool locationServicesEnabled();

    /// `denied` for ten minutes after the service has refused a position to this process; else `authorized`
    /// once it has given one.
    [[nodiscard]] static LocationAuthorization authorizationStatus();

    /// To be owned by a shared pointer.
    LocationManager() = default;

    /// Stops.
    ~LocationManager();

    LocationManager(const LocationManager&) = delete;
    LocationManager& operator=(const LocationManager&) = delete;

    /// The delegate is not kept alive.
    void setDelegate(const std::weak_ptr<LocationManagerDelegate>& delegate);

    /// Begins to tell the delegate, on the main queue; while it does so already, nothing happens. Asks nobody
    /// for permission. What keeps positions from coming is no error: none come, a line in the log says why,
    /// and the next call begins anew.
    void startUpdatingLocation();

    /// Called on the main queue, the delegate hears nothing more from here on.
    void stopUpdatingLocation();

private:
    void deliver(const Location& location);

    Mutex mutex_;
    std::weak_ptr<LocationManagerDelegate> delegate_ VELMORA_GUARDED_BY(mutex_);
    std::shared_ptr<PositionSource> source_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace velmora::platform
