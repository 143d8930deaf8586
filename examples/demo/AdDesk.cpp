#include "AdDesk.h"

#include "MainThread.h"

#include <utility>

namespace demo {

namespace {

using Ad = std::shared_ptr<velmora::VelmoraAd>;

QString text(const std::optional<std::string>& value) {
    return QString::fromStdString(value.value_or(std::string()));
}

Event eventOf(const char* name, const velmora::VelmoraAd& ad) {
    auto event = eventNow(name, text(ad.getZoneId()));
    event.suggestionId = text(ad.getId());
    return event;
}

QString fetchedAs(const velmora::VelmoraAd& ad) {
    return ad.getVideoFilePath() ? QStringLiteral("with its file") : QStringLiteral("streamed");
}

}  // namespace

AdDesk::AdDesk(QObject* parent) : QObject(parent), main_(std::make_shared<MainThread>(*this)) {
    velmora::Velmora::setAdShowFinishedCallback([this, main = main_](const Ad& ad, bool completed) {
        auto event = eventOf("adShowFinished", *ad);
        event.completed = completed;
        main->post([this, event] { emit happened(event); });
    });
}

AdDesk::~AdDesk() {
    main_->close();
    velmora::Velmora::setAdShowFinishedCallback({});
}

void AdDesk::request(const QString& zone, const Settings& settings) {
    if (standing(zone) == Standing::asking) return;
    places_[zone] = {.standing = Standing::asking, .ad = nullptr};
    auto asked = eventNow("request", zone);
    asked.detail = settings.cacheType == velmora::VLCacheType::cached ? "cached" : "streamed";
    emit happened(asked);
    emit changed(zone);

    const auto options = std::make_shared<velmora::VLAdRequestOptions>();
    options->setCacheType(settings.cacheType);
    const auto tell = [this, main = main_](const Event& event, Standing standing, const Ad& ad) {
        main->post([=, this] { settle(event, standing, ad); });
    };
    velmora::Velmora::requestAdForZone(
        zone.toStdString(), options,
        [tell](const Ad& ad) {
            auto event = eventOf("adAvailable", *ad);
            event.detail = fetchedAs(*ad);
            tell(event, Standing::ready, ad);
        },
        [tell, zone] { tell(eventNow("noAdAvailable", zone), Standing::noAd, nullptr); },
        [tell, zone](const std::string& message) {
            auto event = eventNow("error", zone);
            event.detail = QString::fromStdString(message);
            tell(event, Standing::failed, nullptr);
        },
        [this, main = main_](const Ad& ad) {
            main->post([this, event = eventOf("expiring", *ad), ad] { expire(event, ad); });
        });
}

void AdDesk::show(const QString& zone, const Settings& settings) {
    const auto held = ad(zone);
    if (!held) return;
    auto event = eventOf("show", *held);
    if (!held->isValid()) event.detail = "the ad is not valid, so nothing will be shown";
    emit happened(event);

    const auto options = std::make_shared<velmora::VLAdShowOptions>();
    options->setOrientation(settings.orientation);
    options->setBackDisabled(settings.backDisabled);
    options->setShowDialoged(settings.dialog);
    if (held->isValid()) places_[zone].standing = Standing::shown;
    held->showWithOptions(options);
    emit changed(zone);
}

AdDesk::Standing AdDesk::standing(const QString& zone) const {
    const auto found = places_.find(zone);
    return found == places_.end() ? Standing::untouched : found->second.standing;
}

Ad AdDesk::ad(const QString& zone) const {
    const auto found = places_.find(zone);
    return found == places_.end() ? nullptr : found->second.ad;
}

void AdDesk::settle(const Event& event, Standing standing, Ad ad) {
    places_[event.zone] = {.standing = standing, .ad = std::move(ad)};
    emit happened(event);
    emit changed(event.zone);
}

void AdDesk::expire(const Event& event, const Ad& ad) {
    auto& place = places_[event.zone];
    // An earlier ad of the zone may run out while the next one is there.
    if (place.ad == ad && place.standing == Standing::ready) place.standing = Standing::expired;
    emit happened(event);
    emit changed(event.zone);
}

}  // namespace demo
