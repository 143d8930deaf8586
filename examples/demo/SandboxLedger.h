#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace demo {

/// What the sandbox ad service says it received, fetched as it grows.
class SandboxLedger : public QObject {
public:
    /// Without an inspector there is nothing to fetch, and nothing is known.
    explicit SandboxLedger(const QString& inspector, QObject* parent = nullptr);

    [[nodiscard]] bool isKnown() const { return !inspector_.isEmpty(); }
    /// It has not answered for some seconds.
    [[nodiscard]] bool isLost() const;

    /// The number of the newest entry.
    [[nodiscard]] qint64 last() const { return last_; }
    [[nodiscard]] QList<QJsonObject> entriesAfter(qint64 number) const;
    /// The names of the suggestion's trackers, in the order in which they came.
    [[nodiscard]] QStringList trackersOf(const QString& suggestionId) const;
    /// Faults that the service found in what was sent.
    [[nodiscard]] int problems() const { return problems_; }

private:
    void fetch();
    void take(const QByteArray& answer);

    const QString inspector_;
    QNetworkAccessManager network_;
    QTimer pause_;
    QElapsedTimer sinceFailure_;
    QList<QJsonObject> entries_;
    qint64 last_ = 0;
    int problems_ = 0;
};

}  // namespace demo
