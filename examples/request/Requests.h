#pragma once

#include "Options.h"

#include <velmora/velmora.h>

#include <QElapsedTimer>
#include <QJsonObject>
#include <QObject>
#include <QTimer>

namespace request {

/// Asks for as many ads as are wanted, so many at a time, and prints what becomes of each. Lives on the main
/// thread; the library's callbacks bring what they have over to it.
class Requests : public QObject {
    Q_OBJECT

public:
    explicit Requests(Options options);

    void start();

signals:
    void finished();

private:
    void startNext();
    void onTerminal(const QJsonObject& line, bool expires);
    void onExpired(const QJsonObject& line);
    void showProgress();
    void finishWhenDone();

    const Options options_;
    QElapsedTimer sinceStart_;
    QTimer progress_;
    int started_ = 0;
    int answered_ = 0;
    int expiring_ = 0;
};

}  // namespace request
