#include "Requests.h"

#include <iostream>

#include <QJsonDocument>
#include <QMetaObject>
#include <unistd.h>

namespace request {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatienceForExpiry = 60s;
constexpr const char* kEraseLine = "\r\x1b[K";

bool onTerminalScreen() { return ::isatty(STDERR_FILENO) == 1; }

QJsonValue text(const std::optional<std::string>& value) {
    return value ? QJsonValue(QString::fromStdString(*value)) : QJsonValue();
}

QJsonObject lineOf(const char* event, const std::optional<std::string>& zone, const QElapsedTimer& since) {
    return {{"event", event}, {"zone", text(zone)}, {"ms", since.elapsed()}};
}

QJsonObject lineOf(const char* event, const velmora::VelmoraAd& ad, const QElapsedTimer& since) {
    auto line = lineOf(event, ad.getZoneId(), since);
    line["suggestionId"] = text(ad.getId());
    line["videoFilePath"] = text(ad.getVideoFilePath());
    if (const auto options = ad.getRequestOptions()) line["cacheType"] = qint64(options->getCacheType());
    return line;
}

void print(const QJsonObject& line) {
    if (onTerminalScreen()) std::cerr << kEraseLine << std::flush;
    std::cout << QJsonDocument(line).toJson(QJsonDocument::Compact).constData() << std::endl;
}

}  // namespace

Requests::Requests(Options options) : options_(std::move(options)) {
    connect(&progress_, &QTimer::timeout, this, &Requests::showProgress);
}

void Requests::start() {
    sinceStart_.start();
    if (onTerminalScreen()) progress_.start(200ms);
    for (int i = 0; i < options_.parallel; ++i) startNext();
}

void Requests::startNext() {
    if (started_ == options_.count) return;
    ++started_;
    QElapsedTimer since;
    since.start();
    const auto zone = options_.zone;
    auto wanted = std::make_shared<velmora::VLAdRequestOptions>();
    wanted->setCacheType(options_.cacheType);

    const auto end = [this](const QJsonObject& line, bool offered) {
        QMetaObject::invokeMethod(this, [=, this] { onTerminal(line, offered); });
    };
    velmora::Velmora::requestAdForZone(
        zone, wanted, [=](const auto& ad) { end(lineOf("adAvailable", *ad, since), true); },
        [=] { end(lineOf("noAdAvailable", zone, since), false); },
        [=](const std::string& message) {
            auto line = lineOf("error", zone, since);
            line["message"] = text(message);
            end(line, false);
        },
        [=, this](const auto& ad) { onExpired(lineOf("expiring", *ad, since)); });
}

void Requests::onTerminal(const QJsonObject& line, bool expires) {
    print(line);
    ++answered_;
    if (expires && options_.waitForExpiry) ++expiring_;
    startNext();
    finishWhenDone();
}

void Requests::onExpired(const QJsonObject& line) {
    print(line);
    --expiring_;
    finishWhenDone();
}

void Requests::showProgress() {
    std::cerr << kEraseLine << answered_ << " of " << options_.count << " answered";
    if (answered_ == options_.count) std::cerr << ", waiting for the expiry of " << expiring_;
    std::cerr << ", " << sinceStart_.elapsed() / 1000 << " s" << std::flush;
}

void Requests::finishWhenDone() {
    if (answered_ < options_.count) return;
    if (expiring_ <= 0) {
        progress_.stop();
        if (onTerminalScreen()) std::cerr << kEraseLine << std::flush;
        emit finished();
    } else if (answered_ == options_.count) {
        // An ad without a time limit never expires.
        QTimer::singleShot(kPatienceForExpiry, this, &Requests::finished);
    }
}

}  // namespace request
