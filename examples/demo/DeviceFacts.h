#pragma once

#include "Fact.h"

#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QTimer>

namespace demo {

/// What the library finds out about this device. It tells nobody but the ad service: a program that looks
/// into it says so, and says more when more is found. The program is given some seconds, and is ended then;
/// what it does in them harms nobody here.
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
    /// Ends the program; the first reason stays.
    void giveUp(const QString& reason);

    const QString program_;
    QProcess process_;
    QTimer limit_;
    qint64 heard_ = 0;
    QJsonObject said_;
    QString trouble_;
};

}  // namespace demo
