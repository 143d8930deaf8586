#include "AutoRun.h"

#include "AdDesk.h"
#include "DeviceFacts.h"
#include "MainWindow.h"
#include "Report.h"
#include "SandboxLedger.h"
#include "Theme.h"
#include "VastView.h"
#include "VastVisits.h"
#include "Visit.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include <QApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

namespace demo {

namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 50ms;

QDir reportFolder(const QString& wanted) {
    const auto name = "velmora-demo-" + QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss");
    const QDir folder(wanted.isEmpty() ? QDir::temp().filePath(name) : wanted);
    folder.mkpath(".");
    return QDir(folder.absolutePath());
}

QJsonObject toJson(const Record& record) {
    return {{"event", "visited"},
            {"zone", record.scenario.zone},
            {"title", record.scenario.title},
            {"time", record.end},
            {"asPlanned", record.wrong.isEmpty()},
            {"deviations", QJsonArray::fromStringList(record.wrong)}};
}

void print(const QJsonObject& line) {
    std::cout << QJsonDocument(line).toJson(QJsonDocument::Compact).constData() << std::endl;
}

const char* verdict(const QStringList& wrong) {
    return wrong.isEmpty() ? "  as planned      " : "  NOT AS PLANNED  ";
}

}  // namespace

AutoRun::AutoRun(AdDesk& desk, MainWindow& window, DeviceFacts& facts, const Arguments& arguments)
    : desk_(desk),
      window_(window),
      facts_(facts),
      arguments_(arguments),
      folder_(reportFolder(arguments.report)),
      screenshots_(folder_),
      ledger_(std::make_unique<SandboxLedger>(arguments.inspector)) {
    for (const auto& scenario : allScenarios()) {
        if (arguments.zone.isEmpty() || scenario.zone == arguments.zone) scenarios_ << scenario;
    }
    vast_ = std::make_unique<VastVisits>(arguments.zone.isEmpty() ? "skippable-video" : arguments.zone);
    connect(vast_.get(), &VastVisits::finished, this, &AutoRun::onVastVisited, Qt::QueuedConnection);
}

AutoRun::~AutoRun() = default;

void AutoRun::start() {
    if (!arguments_.json) std::cout << "as somebody would click through it:" << std::endl;
    runNext();
}

void AutoRun::runNext() {
    if (ledger_->isLost()) return end();
    if (records_.size() == scenarios_.size()) return vast_->start();
    visit_ = std::make_unique<Visit>(
        scenarios_[records_.size()],
        Visit::Surroundings{
            .desk = desk_, .ledger = *ledger_, .window = window_, .screenshots = screenshots_});
    // The visit is still at work when it says so.
    connect(visit_.get(), &Visit::finished, this, &AutoRun::onVisited, Qt::QueuedConnection);
    visit_->start();
}

void AutoRun::onVisited() {
    records_ << visit_->record();
    say(records_.back());
    runNext();
}

void AutoRun::onVastVisited() {
    for (const auto& answer : vast_->answers()) say(answer);
    window_.vast().show(vast_->answers().back());
    awaitDevice();
}

void AutoRun::awaitDevice() {
    if (!facts_.isDone()) return QTimer::singleShot(kLook, this, &AutoRun::awaitDevice);
    if (arguments_.json && facts_.canBeFound())
        print({{"event", "device"}, {"userExtraInfo", facts_.record()}, {"trouble", facts_.trouble()}});
    end();
}

void AutoRun::say(const VastAnswer& answer) const {
    const auto wrong = VastVisits::deviations(answer);
    if (arguments_.json) {
        auto line = toJson(answer);
        line["deviations"] = QJsonArray::fromStringList(wrong);
        return print(line);
    }
    std::cout << verdict(wrong) << qPrintable(answer.question.zone.leftJustified(17)) << "VAST "
              << qPrintable(answer.question.versionText()) << " for a player of one's own" << std::endl;
    for (const auto& words : wrong) std::cout << "      " << qPrintable(words) << std::endl;
}

void AutoRun::say(const Record& record) const {
    if (arguments_.json) return print(toJson(record));
    std::cout << verdict(record.wrong) << qPrintable(record.scenario.zone.leftJustified(17))
              << qPrintable(record.scenario.title) << ", " << (record.end - record.start + 500) / 1000 << " s"
              << std::endl;
    for (const auto& line : record.wrong) std::cout << "      " << qPrintable(line) << std::endl;
}

QList<Picture> AutoRun::ownPictures() {
    QList<Picture> pictures;
    const auto take = [&](QWidget& widget, const QString& words) {
        QApplication::processEvents();
        pictures << Picture{.file = screenshots_.add(widget.grab().toImage(), "application"), .words = words};
    };
    const auto& before = Theme::current();
    const auto size = window_.size();
    // On a real screen, the size of the window is its owner's business.
    const QList<QSize> sizes = hasDisplay() ? QList<QSize>{size} : QList<QSize>{{1280, 800}, {390, 844}};
    for (const auto& one : sizes) {
        window_.resize(one);
        for (const auto* theme : {&Theme::light(), &Theme::dark()}) {
            window_.wear(*theme);
            take(window_, QString("%1 x %2, %3")
                              .arg(one.width())
                              .arg(one.height())
                              .arg(theme->isDark ? "dark" : "light"));
            if (auto* page = window_.findChild<QWidget*>("page")) take(*page, "all of it");
        }
    }
    window_.wear(before);
    window_.resize(size);
    return pictures;
}

QString AutoRun::trouble() const {
    if (ledger_->isLost()) return "The sandbox ad service went away; what was left to do was not done.";
    if (ledger_->problems() > 0)
        return QString("The service found %1 faults in what was sent to it.").arg(ledger_->problems());
    return {};
}

void AutoRun::end() {
    visit_.reset();
    const auto words = trouble();
    const auto own = ownPictures();
    const auto file =
        Report(folder_).write({.records = records_,
                               .own = own,
                               .device = facts_.record().isEmpty() ? QList<Fact>() : facts_.facts(),
                               .vast = vast_->answers(),
                               .trouble = words});
    const bool isGood = words.isEmpty() && !file.isEmpty() && isAllAsPlanned();
    sayEnd(file, words, isGood);
    emit finished(isGood ? 0 : 1);
}

bool AutoRun::isAllAsPlanned() const {
    const auto& vast = vast_->answers();
    return records_.size() == scenarios_.size() && !vast.isEmpty() &&
           std::all_of(records_.begin(), records_.end(),
                       [](const Record& record) { return record.wrong.isEmpty(); }) &&
           std::all_of(vast.begin(), vast.end(),
                       [](const VastAnswer& answer) { return VastVisits::deviations(answer).isEmpty(); });
}

void AutoRun::sayEnd(const QString& file, const QString& troubleWords, bool isGood) const {
    if (arguments_.json)
        return print(
            {{"event", "ended"}, {"report", file}, {"trouble", troubleWords}, {"asPlanned", isGood}});
    if (!troubleWords.isEmpty()) std::cout << qPrintable(troubleWords) << std::endl;
    if (file.isEmpty())
        std::cout << "the report could not be written into " << qPrintable(folder_.path()) << std::endl;
    else
        std::cout << "report: " << qPrintable(file) << std::endl;
}

}  // namespace demo
