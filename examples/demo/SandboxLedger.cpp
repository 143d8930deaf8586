#include "SandboxLedger.h"

#include <algorithm>
#include <chrono>

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QUrl>

namespace demo {

namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 100ms;
constexpr auto kAnswerTimeout = 2s;
constexpr auto kPatience = 6s;

}  // namespace

SandboxLedger::SandboxLedger(const QString& inspector, QObject* parent)
    : QObject(parent), inspector_(inspector) {
    if (!isKnown()) return;
    // It is on this machine, whatever the environment says of the way to others.
    network_.setProxy(QNetworkProxy::NoProxy);
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &SandboxLedger::fetch);
    fetch();
}

bool SandboxLedger::isLost() const {
    return sinceFailure_.isValid() && std::chrono::milliseconds(sinceFailure_.elapsed()) > kPatience;
}

void SandboxLedger::fetch() {
    QNetworkRequest request(QUrl(inspector_ + "ledger?after=" + QString::number(last_)));
    request.setTransferTimeout(static_cast<int>(std::chrono::milliseconds(kAnswerTimeout).count()));
    auto* reply = network_.get(request);
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        if (reply->error() == QNetworkReply::NoError) {
            take(reply->readAll());
        } else if (!sinceFailure_.isValid()) {
            // From the first one on, and not from the last answer: this program may have been busy itself.
            sinceFailure_.start();
        }
        pause_.start(kPause);
    });
}

void SandboxLedger::take(const QByteArray& answer) {
    const auto ledger = QJsonDocument::fromJson(answer).object();
    if (ledger.isEmpty()) return;
    sinceFailure_.invalidate();
    problems_ = ledger["problems"].toInt();
    for (const auto entry : ledger["entries"].toArray()) entries_.append(entry.toObject());
    last_ = std::max(last_, ledger["last"].toInteger());
}

QList<QJsonObject> SandboxLedger::entriesAfter(qint64 number) const {
    QList<QJsonObject> found;
    for (const auto& entry : entries_) {
        if (entry["number"].toInteger() > number) found.append(entry);
    }
    return found;
}

QStringList SandboxLedger::trackersOf(const QString& suggestionId) const {
    const auto start = "/track/" + suggestionId + '/';
    QStringList names;
    for (const auto& entry : entries_) {
        const auto path = entry["path"].toString();
        if (path.startsWith(start)) names.append(path.mid(start.size()));
    }
    return names;
}

}  // namespace demo
