#pragma once

#include "Fact.h"

#include <velmora/enumerations.h>

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

namespace demo {

/// What a VAST URL is made for.
struct VastQuestion {
    QString zone = "rewarded-video";
    velmora::VLPrerollType type = velmora::VLPrerollType::notSkippable;
    velmora::VLVastVersion version = velmora::VLVastVersion::v3;

    /// As VAST itself writes it.
    [[nodiscard]] QString versionText() const { return QString("%1.0").arg(static_cast<int>(version)); }
};

/// A VAST URL, and what lay behind it.
struct VastAnswer {
    VastQuestion question = {};
    QString url = {};
    int status = 0;
    /// Why there is no document, in words.
    QString error = {};
    QString version = {};
    int ads = 0;
    QString title = {};
    QString duration = {};
    QString skipOffset = {};
    QStringList mediaFiles = {};
    int trackingEvents = 0;

    /// The pairs of the URL's query that are not headers.
    [[nodiscard]] QList<Fact> pairs() const;
    /// The library's headers among them.
    [[nodiscard]] QList<Fact> headers() const;
    /// Where it was asked for, without the query, and what came.
    [[nodiscard]] QList<Fact> facts() const;

    /// What is not as it was asked for, in words. Some zones have no ad.
    [[nodiscard]] QStringList deviations(bool hasAd) const;
};

[[nodiscard]] QJsonObject toJson(const VastAnswer& answer);

/// Makes a VAST URL as an application with a video player of its own would, and fetches it in its place.
class VastFetch : public QObject {
    Q_OBJECT

public:
    explicit VastFetch(QObject* parent = nullptr);

    void fetch(const VastQuestion& question);

signals:
    void came(const demo::VastAnswer& answer);

private:
    QNetworkAccessManager network_;
};

}  // namespace demo
