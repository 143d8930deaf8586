#pragma once

#include "AdDesk.h"
#include "AdWindow.h"
#include "Record.h"

#include <chrono>
#include <functional>

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QTimer>

namespace demo {

class SandboxLedger;
class Screenshots;

/// One scenario, from the request to the last report: does what its plan says as a person would, looking at
/// the screen. It ends in any case, because it waits for nothing longer than it has patience.
class Visit : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        AdDesk& desk;
        const SandboxLedger& ledger;
        QWidget& window;
        Screenshots& screenshots;
    };

    Visit(const Scenario& scenario, const Surroundings& surroundings, QObject* parent = nullptr);

    void start();
    [[nodiscard]] const Record& record() const { return record_; }

signals:
    void finished();

private:
    struct Step {
        QString words;
        std::chrono::milliseconds patience;
        std::function<bool()> isReady;
        std::function<void()> perform = {};
    };

    void look();
    void hear(const Event& event);
    void onAnswer(const Event& event);
    [[nodiscard]] Step stepFor(Act act);
    void next();
    void settle();
    void fail(const QString& words);
    void end();
    void takePicture(const QString& words);

    [[nodiscard]] bool videoRuns();
    [[nodiscard]] bool hasLooked(std::chrono::milliseconds time) const;
    [[nodiscard]] bool hasHeard(const char* name) const;
    [[nodiscard]] Outcome outcome() const;

    const Surroundings around_;
    const AdWindow ad_;
    Record record_;
    Plan plan_;
    qint64 ledgerBefore_ = 0;
    Step step_;
    qsizetype nextAct_ = 0;
    QElapsedTimer sinceStep_;
    QTimer often_;
    QImage lastSeen_;
    bool hasSeenWindow_ = false;
    bool isSettling_ = false;
    QString answer_;
};

}  // namespace demo
