#pragma once

#include "Event.h"

#include <velmora/velmora.h>

#include <map>
#include <memory>

#include <QObject>

namespace demo {

class MainThread;

/// How an ad is fetched and shown, as the window's switches say.
struct Settings {
    velmora::VLCacheType cacheType = velmora::VLCacheType::streamed;
    velmora::VLOrientation orientation = velmora::VLOrientation::any;
    bool backDisabled = false;
    bool dialog = false;
};

/// Everything that this application says to the library, and what it hears from it. Main thread only.
class AdDesk : public QObject {
    Q_OBJECT

public:
    enum class Standing { untouched, asking, ready, noAd, failed, expired, shown };

    explicit AdDesk(QObject* parent = nullptr);
    ~AdDesk() override;

    /// Does nothing while an answer for the zone is awaited.
    void request(const QString& zone, const Settings& settings);
    /// Shows the zone's ad, if there is one; a library that declines it stays silent.
    void show(const QString& zone, const Settings& settings);

    [[nodiscard]] Standing standing(const QString& zone) const;
    /// Null when none was offered.
    [[nodiscard]] std::shared_ptr<velmora::VelmoraAd> ad(const QString& zone) const;

signals:
    void happened(const demo::Event& event);
    void changed(const QString& zone);

private:
    struct Place {
        Standing standing = Standing::untouched;
        std::shared_ptr<velmora::VelmoraAd> ad;
    };

    void settle(const Event& event, Standing standing, std::shared_ptr<velmora::VelmoraAd> ad);
    void expire(const Event& event, const std::shared_ptr<velmora::VelmoraAd>& ad);

    std::shared_ptr<MainThread> main_;
    std::map<QString, Place> places_;
};

}  // namespace demo
