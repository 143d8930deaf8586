#include "platform/desktop/place/PositionSource.h"

#include "platform/Bundle.h"
#include "platform/CallOut.h"
#include "platform/Immortal.h"
#include "platform/Log.h"

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include <QCoreApplication>
#include <QEventLoop>
#include <QGeoPositionInfoSource>
#include <QScopeGuard>
#include <QVariantMap>

namespace velmora::platform {

namespace {

double accuracyOr(double unknown, const QGeoPositionInfo& info, QGeoPositionInfo::Attribute attribute) {
    const auto accuracy = info.hasAttribute(attribute) ? info.attribute(attribute) : unknown;
    return std::isfinite(accuracy) ? accuracy : unknown;
}

/// The toolkit first tells the position that it kept from an earlier run, which has no accuracy; and of a
/// coordinate that is no number it makes 0.
bool isMeasured(const QGeoPositionInfo& info) {
    const auto position = info.coordinate();
    return info.isValid() && info.hasAttribute(QGeoPositionInfo::HorizontalAccuracy) &&
           position.latitude() != 0 && position.longitude() != 0;
}

std::optional<Location> locationOf(const QGeoPositionInfo& info) {
    if (!isMeasured(info)) return std::nullopt;
    constexpr double unknown = Location().horizontalAccuracy;
    Location location{.latitude = info.coordinate().latitude(), .longitude = info.coordinate().longitude()};
    location.horizontalAccuracy = accuracyOr(unknown, info, QGeoPositionInfo::HorizontalAccuracy);
    if (const auto altitude = info.coordinate().altitude(); std::isfinite(altitude)) {
        location.altitude = altitude;
        location.verticalAccuracy = accuracyOr(unknown, info, QGeoPositionInfo::VerticalAccuracy);
    }
    return location;
}

std::unique_ptr<QGeoPositionInfoSource> makeSource() {
    // The service knows applications by the name of their desktop file, which is their identifier.
    const auto identifier = QString::fromStdString(Bundle::main().identifier().value_or("application"));
    return std::unique_ptr<QGeoPositionInfoSource>(
        QGeoPositionInfoSource::createSource("geoclue2", {{"desktopId", identifier}}, nullptr));
}

/// The sources whose threads run. They end with the application object, while what they use is still there.
class Running {
public:
    static Running& instance() {
        static Immortal<Running> running;
        return *running;
    }

    void enter(const std::shared_ptr<PositionSource>& source) {
        const std::lock_guard lock(mutex_);
        sources_.insert(source);
    }

    void leave(const std::shared_ptr<PositionSource>& source) {
        const std::lock_guard lock(mutex_);
        sources_.erase(source);
        left_.notify_all();
    }

    /// A service that does not answer is not waited for.
    void endAll() {
        constexpr std::chrono::seconds patience(1);
        std::unique_lock lock(mutex_);
        for (const auto& source : sources_) source->stop();
        left_.wait_for(lock, patience, [this] { return sources_.empty(); });
    }

private:
    std::mutex mutex_;
    std::set<std::shared_ptr<PositionSource>> sources_;
    std::condition_variable left_;
};

void endWithApplication() {
    qAddPostRoutine([] { Running::instance().endAll(); });
}

Q_COREAPP_STARTUP_FUNCTION(endWithApplication)

}  // namespace

PositionSource::PositionSource(Receiver receiver) : receiver_(std::move(receiver)) {}

void PositionSource::start() {
    const auto self = shared_from_this();
    Running::instance().enter(self);
    bool isStarted = false;
    callOut("the start of a position source", [&] {
        std::thread([self] {
            callOut("a position source", [&] { self->run(); });
            Running::instance().leave(self);
        }).detach();
        isStarted = true;
    });
    if (!isStarted) Running::instance().leave(self);
}

void PositionSource::stop() {
    const MutexLock lock(mutex_);
    isStopped_ = true;
    if (loop_ != nullptr) QMetaObject::invokeMethod(loop_, &QEventLoop::quit, Qt::QueuedConnection);
}

void PositionSource::run() {
    QEventLoop loop;
    {
        const MutexLock lock(mutex_);
        if (isStopped_) return;
        loop_ = &loop;
    }
    const auto forget = qScopeGuard([this] {
        const MutexLock lock(mutex_);
        loop_ = nullptr;
    });
    receiveIn(loop);
}

void PositionSource::receiveIn(QEventLoop& loop) {
    const auto source = makeSource();
    if (!source) return log("Positions cannot be had: the toolkit's module for GeoClue is missing");
    QObject::connect(source.get(), &QGeoPositionInfoSource::positionUpdated, source.get(),
                     [this](const QGeoPositionInfo& info) {
                         if (const auto location = locationOf(info)) receiver_.located(*location);
                     });
    QObject::connect(source.get(), &QGeoPositionInfoSource::errorOccurred, source.get(),
                     [this](QGeoPositionInfoSource::Error error) {
                         if (error == QGeoPositionInfoSource::AccessError) receiver_.refused();
                     });
    // As exact as there is. Left alone, the toolkit asks for the least.
    source->setPreferredPositioningMethods(QGeoPositionInfoSource::AllPositioningMethods);
    source->startUpdates();
    loop.exec();
    // The connection to the bus outlives the source: without this the service would go on measuring.
    source->stopUpdates();
}

}  // namespace velmora::platform
