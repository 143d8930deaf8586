#pragma once

#include "Arguments.h"
#include "Record.h"
#include "Screenshots.h"

#include <memory>

#include <QDir>
#include <QList>
#include <QObject>

namespace demo {

class AdDesk;
class DeviceFacts;
class MainWindow;
class SandboxLedger;
class VastVisits;
struct VastAnswer;
class Visit;

/// Runs the scenarios one after another, says how each went, and leaves a report.
class AutoRun : public QObject {
    Q_OBJECT

public:
    AutoRun(AdDesk& desk, MainWindow& window, DeviceFacts& facts, const Arguments& arguments);
    ~AutoRun() override;

    void start();

signals:
    /// With the status that the process should end with.
    void finished(int status);

private:
    void runNext();
    void onVisited();
    void onVastVisited();
    /// A place that is still looked for is waited for; the looking has its own end.
    void awaitDevice();
    void say(const VastAnswer& answer) const;
    void end();
    void say(const Record& record) const;
    void sayEnd(const QString& file, const QString& troubleWords, bool isGood) const;
    [[nodiscard]] QList<Picture> ownPictures();
    [[nodiscard]] QString trouble() const;
    [[nodiscard]] bool isAllAsPlanned() const;

    AdDesk& desk_;
    MainWindow& window_;
    DeviceFacts& facts_;
    const Arguments arguments_;
    const QDir folder_;
    Screenshots screenshots_;
    std::unique_ptr<SandboxLedger> ledger_;
    std::unique_ptr<Visit> visit_;
    std::unique_ptr<VastVisits> vast_;
    QList<Scenario> scenarios_;
    QList<Record> records_;
};

}  // namespace demo
