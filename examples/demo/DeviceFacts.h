#pragma once

#include "Fact.h"

#include <QJsonObject>
#include <QObject>
#include <QProcess>

namespace demo {

/// What the library finds out about this device. It tells nobody but the ad service: a program that looks
/// into it says so, and says more when more is found.
class DeviceFacts : public QObject {
    Q_OBJECT

public:
    explicit DeviceFacts(QString program, QObject* parent = nullptr);
    ~DeviceFacts() override;

    [[nodiscard]] bool canBeFound() const { return !program_.isEmpty(); }

    void look();

    /// Nothing more is to come.
    [[nodiscard]] bool isDone() const { return process_.state() == QProcess::NotRunning; }

    /// The record, as a request would carry it; empty before it was found.
    [[nodiscard]] QJsonObject record() const { return said_["userExtraInfo"].toObject(); }
    /// How long the library took for it.
    [[nodiscard]] double milliseconds() const { return said_["milliseconds"].toDouble(); }
    /// What went wrong, in words.
    [[nodiscard]] const QString& trouble() const { return trouble_; }

    /// The record in the words of people.
    [[nodiscard]] QList<Fact> facts() const;

signals:
    void changed();

private:
    void read();

    const QString program_;
    QProcess process_;
    QJsonObject said_;
    QString trouble_;
};

}  // namespace demo
