#include "VastFetch.h"

#include <velmora/velmora.h>

#include <algorithm>
#include <chrono>

#include <QJsonArray>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QUrl>
#include <QUrlQuery>
#include <QXmlStreamReader>

namespace demo {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
constexpr int kGood = 200;

/// The library's headers have their names in small letters and hyphens; the others are in one word.
bool isHeader(const QString& name) { return name.contains('-') || name == "authorization"; }

QList<Fact> pairsOf(const QString& url, bool headers) {
    QList<Fact> found;
    const auto items = QUrlQuery(QUrl(url)).queryItems(QUrl::FullyDecoded);
    for (const auto& [name, value] : items) {
        if (isHeader(name) == headers) found << Fact{name, value};
    }
    return found;
}

void read(const QByteArray& document, VastAnswer& answer) {
    QXmlStreamReader reader(document);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto name = reader.name().toString();
        const auto attributes = reader.attributes();
        if (name == "VAST") answer.version = attributes.value("version").toString();
        if (name == "Ad") ++answer.ads;
        if (name == "Tracking") ++answer.trackingEvents;
        if (name == "Linear") answer.skipOffset = attributes.value("skipoffset").toString();
        if (name == "AdTitle") answer.title = reader.readElementText();
        if (name == "Duration") answer.duration = reader.readElementText();
        if (name != "MediaFile") continue;
        if (const auto file = reader.readElementText().trimmed(); !file.isEmpty()) answer.mediaFiles << file;
    }
    if (reader.hasError()) answer.error = "The document cannot be read: " + reader.errorString();
}

/// The reply's own words for a status have the whole URL in them, and with it the access token.
QString troubleOf(const QNetworkReply& reply) {
    const auto status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.error() == QNetworkReply::OperationCanceledError)
        return QString("No answer within %1 s").arg(kPatience.count());
    if (status == 0) return "The service was not reached: " + reply.errorString();
    const auto reason = reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    if (status != kGood)
        return QString("The service answered with status %1 %2").arg(status).arg(reason).trimmed();
    return reply.error() == QNetworkReply::NoError ? QString() : "The answer broke off";
}

QNetworkRequest requestFor(const QUrl& url) {
    QNetworkRequest request(url);
    request.setTransferTimeout(static_cast<int>(std::chrono::milliseconds(kPatience).count()));
    const auto authority = qEnvironmentVariable("VELMORA_CA_FILE");
    if (authority.isEmpty()) return request;
    auto security = QSslConfiguration::defaultConfiguration();
    security.setCaCertificates(QSslCertificate::fromPath(authority));
    request.setSslConfiguration(security);
    return request;
}

}  // namespace

QList<Fact> VastAnswer::pairs() const { return pairsOf(url, false); }

QList<Fact> VastAnswer::headers() const { return pairsOf(url, true); }

QList<Fact> VastAnswer::facts() const {
    QList<Fact> facts{{"Asked at", QUrl(url).toString(QUrl::RemoveQuery)}};
    if (!error.isEmpty()) return facts << Fact{"Came", error};
    const auto count = ads == 0 ? QString("no ad") : ads == 1 ? "one ad" : QString("%1 ads").arg(ads);
    facts << Fact{"Came", QString("status %1, VAST %2, %3").arg(status).arg(version, count)};
    if (ads == 0) return facts;
    facts << Fact{"Title", title} << Fact{"Duration", duration} << Fact{"May be skipped from", skipOffset}
          << Fact{"Tracking events", QString::number(trackingEvents)};
    for (const auto& file : mediaFiles) facts << Fact{"Video", file};
    return facts;
}

QStringList VastAnswer::deviations(bool hasAd) const {
    QStringList wrong;
    if (!error.isEmpty()) wrong << error;
    const auto wanted = question.versionText();
    if (version != wanted) wrong << QString("expected VAST %1; came \"%2\"").arg(wanted, version);
    if ((ads == 1) != hasAd || (mediaFiles.size() == 1) != hasAd)
        wrong << QString("expected %1 ad; came %2 with %3 videos")
                     .arg(hasAd ? 1 : 0)
                     .arg(ads)
                     .arg(mediaFiles.size());
    return wrong;
}

QJsonObject toJson(const VastAnswer& answer) {
    return {{"event", "vast"},
            {"zone", answer.question.zone},
            {"type", static_cast<int>(answer.question.type)},
            {"url", answer.url},
            {"status", answer.status},
            {"version", answer.version},
            {"ads", answer.ads},
            {"mediaFiles", QJsonArray::fromStringList(answer.mediaFiles)},
            {"error", answer.error}};
}

VastFetch::VastFetch(QObject* parent) : QObject(parent) {
    // The service of a developer is on this machine; a real one is not asked from here.
    network_.setProxy(QNetworkProxy::NoProxy);
}

void VastFetch::fetch(const VastQuestion& question) {
    VastAnswer answer{.question = question};
    const auto url =
        velmora::VelmoraVAST::getVastUrlForZone(question.zone.toStdString(), question.type, question.version);
    if (!url) {
        answer.error = "The library has not been initialised";
        emit came(answer);
        return;
    }
    answer.url = QString::fromStdString(*url);
    auto* reply = network_.get(requestFor(QUrl(answer.url)));
    connect(reply, &QNetworkReply::finished, this, [this, reply, answer]() mutable {
        reply->deleteLater();
        answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer.error = troubleOf(*reply);
        if (answer.error.isEmpty()) read(reply->readAll(), answer);
        emit came(answer);
    });
}

}  // namespace demo
