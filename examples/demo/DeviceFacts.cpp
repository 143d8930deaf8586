#include "DeviceFacts.h"

#include <chrono>

#include <QJsonDocument>

namespace demo {

namespace {

using namespace std::chrono_literals;

/// The program itself looks for three seconds; a busy machine may be slow to start it.
constexpr auto kPatience = 8s;
constexpr qint64 kMostBytes = 256 * 1024;

QString plain(const QJsonValue& value) { return value.toVariant().toString(); }

QString pixels(const QJsonValue& value) { return value.isDouble() ? plain(value) + " pixels" : QString(); }

QString density(const QJsonValue& value) {
    return value.isDouble() ? plain(value) + " dots per inch" : QString();
}

QString orientation(const QJsonValue& value) {
    switch (value.toInt()) {
    case 1: return "portrait";
    case 2: return "landscape";
    default: return {};
    }
}

QString degrees(const QJsonValue& value) { return value.isDouble() ? plain(value) + "°" : QString(); }

QString metres(const QJsonValue& value) { return value.isDouble() ? plain(value) + " m" : QString(); }

QString accuracy(const QJsonValue& value) {
    return value.isDouble() && value.toDouble() < 0 ? "not known" : metres(value);
}

/// A key of the record, and what people call it.
struct Row {
    const char* key;
    const char* name;
    QString (*words)(const QJsonValue& value) = &plain;
};

constexpr Row kDevice[]{
    {"screenWidth", "Screen's width", pixels},
    {"screenHeight", "Screen's height", pixels},
    {"screenDensity", "Density", density},
    {"screenOrientation", "Which way up", orientation},
    {"appVersion", "Application's version"},
    {"deviceLanguage", "Language"},
    {"deviceManufacturer", "Maker"},
    {"deviceBrand", "Brand"},
    {"carrier", "Carrier"},
    {"mcc", "Mobile country code"},
    {"mnc", "Mobile network code"},
};

constexpr Row kPlace[]{
    {"address", "Address"},
    {"locality", "Town"},
    {"country", "Country"},
    {"isoCountryCode", "Country's code"},
    {"name", "Name of the place"},
    {"ocean", "Ocean"},
    {"postalCode", "Postal code"},
    {"administrativeArea", "State"},
    {"subAdministrativeArea", "County"},
    {"inlandWater", "Lake or river"},
    {"latitude", "Latitude", degrees},
    {"longitude", "Longitude", degrees},
    {"altitude", "Altitude", metres},
    {"horizontalAccuracy", "Exact to", accuracy},
    {"verticalAccuracy", "Altitude exact to", accuracy},
};

}  // namespace

DeviceFacts::DeviceFacts(QString program, QObject* parent) : QObject(parent), program_(std::move(program)) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&process_, &QProcess::readyReadStandardOutput, this, &DeviceFacts::read);
    connect(&process_, &QProcess::errorOccurred, this, [this] {
        if (trouble_.isEmpty()) trouble_ = process_.errorString();
        if (isDone()) limit_.stop();
        emit changed();
    });
    connect(&process_, &QProcess::finished, this, [this] {
        limit_.stop();
        emit changed();
    });
    limit_.setSingleShot(true);
    connect(&limit_, &QTimer::timeout, this, [this] { giveUp("the program came to no end"); });
}

DeviceFacts::~DeviceFacts() {
    process_.disconnect(this);
    process_.kill();
    process_.waitForFinished();
}

void DeviceFacts::look() {
    if (!canBeFound() || !isDone()) return;
    trouble_.clear();
    heard_ = 0;
    limit_.start(kPatience);
    process_.start(program_, QStringList());
    emit changed();
}

void DeviceFacts::giveUp(const QString& reason) {
    if (trouble_.isEmpty()) trouble_ = reason;
    process_.kill();
}

void DeviceFacts::read() {
    if (heard_ + process_.bytesAvailable() > kMostBytes) {
        process_.readAllStandardOutput();
        return giveUp("the program says too much");
    }
    while (process_.canReadLine()) {
        const auto text = process_.readLine();
        heard_ += text.size();
        const auto line = QJsonDocument::fromJson(text).object();
        if (line.contains("userExtraInfo")) said_ = line;
    }
    emit changed();
}

QList<Fact> DeviceFacts::facts() const {
    const auto device = record();
    const auto place = device["geoInfo"].toObject()["geoInfoLocation"].toObject();
    QList<Fact> facts;
    for (const auto& row : kDevice) facts << Fact{row.name, row.words(device[row.key])};
    for (const auto& row : kPlace) facts << Fact{row.name, row.words(place[row.key])};
    return facts;
}

}  // namespace demo
