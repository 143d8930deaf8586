#include "Visit.h"

#include "SandboxLedger.h"
#include "Screenshots.h"
#include "StoredState.h"

#include <utility>

#include <QDateTime>
#include <QPainter>

namespace demo {

namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 80ms;
/// Between a thing's coming into sight and a hand on it.
constexpr auto kReaction = 400ms;
/// For the last reports to arrive, and for what should not come to come all the same.
constexpr auto kQuiet = 1200ms;
constexpr auto kPatienceForReports = 8s;

/// Without the middle, where a ring turns while a video is loading.
QImage around(const QImage& picture) {
    constexpr int middle = 200;
    auto image = picture.convertToFormat(QImage::Format_RGB32);
    image.setDevicePixelRatio(1);
    QPainter painter(&image);
    QRect hole(0, 0, middle, middle);
    hole.moveCenter(image.rect().center());
    painter.fillRect(hole, Qt::black);
    return image;
}

}  // namespace

Visit::Visit(const Scenario& scenario, const Surroundings& surroundings, QObject* parent)
    : QObject(parent),
      around_(surroundings),
      ad_(surroundings.window),
      record_{.scenario = scenario},
      plan_(scenario.plan),
      ledgerBefore_(surroundings.ledger.last()) {
    connect(&around_.desk, &AdDesk::happened, this, &Visit::hear);
    connect(&often_, &QTimer::timeout, this, &Visit::look);
}

void Visit::start() {
    record_.start = QDateTime::currentMSecsSinceEpoch();
    step_ = {.words = "the answer to the request", .patience = 30s, .isReady = [] { return false; }};
    sinceStep_.start();
    often_.start(kLook);
    around_.desk.request(record_.scenario.zone,
                         {.cacheType = record_.scenario.isCached ? velmora::VLCacheType::cached
                                                                 : velmora::VLCacheType::streamed});
}

void Visit::hear(const Event& event) {
    record_.events.append(event);
    if (answer_.isEmpty() && isCallback(event) && event.zone == record_.scenario.zone &&
        (event.name == "adAvailable" || event.name == "noAdAvailable" || event.name == "error"))
        onAnswer(event);
}

void Visit::onAnswer(const Event& event) {
    answer_ = event.name;
    record_.suggestionId = event.suggestionId;
    if (answer_ != "adAvailable") plan_.acts.clear();
    const auto ad = around_.desk.ad(event.zone);
    if (ad && ad->isBannerAd() && record_.scenario.planForPage) plan_ = *record_.scenario.planForPage;
    const bool isToBeShown = !plan_.acts.isEmpty() && !plan_.acts.contains(Act::awaitExpiry);
    // Once this event has been told to everybody.
    QTimer::singleShot(kReaction, this, [this, isToBeShown] {
        takePicture("the application, with the answer");
        if (isToBeShown) around_.desk.show(record_.scenario.zone, {});
        next();
    });
}

void Visit::look() {
    if (around_.ledger.isLost()) return fail("the ad service does not answer any more");
    hasSeenWindow_ = hasSeenWindow_ || ad_.widget() != nullptr;
    if (isSettling_) return settle();
    if (step_.isReady()) {
        takePicture(step_.words);
        if (step_.perform) step_.perform();
        next();
    } else if (hasSeenWindow_ && ad_.widget() == nullptr) {
        fail("the ad was gone when it was time for " + step_.words);
    } else if (std::chrono::milliseconds(sinceStep_.elapsed()) > step_.patience) {
        fail(QString("waited in vain for %1, %2 s long")
                 .arg(step_.words)
                 .arg(std::chrono::duration_cast<std::chrono::seconds>(step_.patience).count()));
    }
}

void Visit::next() {
    lastSeen_ = QImage();
    sinceStep_.restart();
    if (nextAct_ < plan_.acts.size())
        step_ = stepFor(plan_.acts[nextAct_++]);
    else
        isSettling_ = true;
}

Visit::Step Visit::stepFor(Act act) {
    const auto button = [this](const char* name, const QString& words, std::chrono::milliseconds reaction) {
        return Step{words, 10s, [=, this] { return ad_.hasButton(name) && hasLooked(reaction); },
                    [=, this] { ad_.touchButton(name); }};
    };
    const auto onPage = [this](const QString& words, std::function<void()> perform) {
        return Step{words, 40s, [this] { return ad_.showsPage() && hasLooked(kReaction); },
                    std::move(perform)};
    };
    switch (act) {
    case Act::seeWindow:
        return {"the window, while the video is loaded", 10s,
                [this] { return hasSeenWindow_ && (hasLooked(kReaction) || ad_.widget() == nullptr); }};
    case Act::watchStart: return {"the video, which runs", 30s, [this] { return videoRuns(); }};
    case Act::mute: return button("muteButton", "the video, before it is muted", kReaction);
    case Act::unmute: return button("muteButton", "the video, muted", 2 * kReaction);
    case Act::skip: return button("skipButton", "the video, before it is skipped", 2 * kReaction);
    case Act::exit: return button("exitButton", "the video, before it is left", 2 * kReaction);
    case Act::closePage:
    case Act::dismissPage:
        return onPage("the page, before its corner is touched", [this] { ad_.touchCornerOfPage(); });
    case Act::replay:
        return onPage("the page, before the video is wanted again", [this] {
            if (!ad_.touchLastButtonOfPage())
                record_.wrong << "the page has no button to see the video again";
        });
    case Act::chooseDone:
        return onPage("the page, before its last button", [this] { ad_.chooseLastOfPage(); });
    case Act::closeWindow:
        return {"the window, when the page has gone", 20s,
                [this] { return ad_.widget() != nullptr && !ad_.hasPage() && hasLooked(kReaction); },
                [this] { ad_.widget()->close(); }};
    case Act::seeEnd:
        return {"the end of the show", 20s, [this] { return hasSeenWindow_ && ad_.widget() == nullptr; }};
    case Act::awaitExpiry: return {"the end of the ad's time", 20s, [this] { return hasHeard("expiring"); }};
    case Act::showInVain:
        return {"the application, with the ad that has run out", 5s, [this] { return hasLooked(kReaction); },
                [this] { around_.desk.show(record_.scenario.zone, {}); }};
    }
    return {};
}

void Visit::settle() {
    const bool isAsPlanned = deviations(record_.scenario, plan_, outcome()).isEmpty();
    if (hasLooked(isAsPlanned ? std::chrono::milliseconds(kQuiet) : kPatienceForReports)) end();
}

void Visit::fail(const QString& words) {
    takePicture("when it went wrong");
    record_.wrong << words;
    if (auto* window = ad_.widget()) window->close();
    end();
}

void Visit::end() {
    often_.stop();
    disconnect(&around_.desk, nullptr, this, nullptr);
    record_.end = QDateTime::currentMSecsSinceEpoch();
    record_.received = around_.ledger.entriesAfter(ledgerBefore_);
    record_.wrong += deviations(record_.scenario, plan_, outcome());
    if (hasSeenWindow_ && plan_.acts.contains(Act::showInVain))
        record_.wrong << "an ad was shown that had run out";
    emit finished();
}

void Visit::takePicture(const QString& words) {
    const auto seen = ad_.picture();
    const auto file = around_.screenshots.add(seen.isNull() ? around_.window.grab().toImage() : seen,
                                              record_.scenario.zone);
    record_.pictures.append({.file = file, .words = words, .time = QDateTime::currentMSecsSinceEpoch()});
}

bool Visit::videoRuns() {
    if (!ad_.hasButton("muteButton") || !hasLooked(2 * kReaction)) return false;
    const auto seen = around(ad_.picture());
    const auto before = std::exchange(lastSeen_, seen);
    return !before.isNull() && before != seen;
}

bool Visit::hasLooked(std::chrono::milliseconds time) const {
    return std::chrono::milliseconds(sinceStep_.elapsed()) >= time;
}

bool Visit::hasHeard(const char* name) const {
    for (const auto& event : record_.events) {
        if (event.name == name && event.suggestionId == record_.suggestionId) return true;
    }
    return false;
}

Outcome Visit::outcome() const {
    const auto& id = record_.suggestionId;
    Outcome came;
    came.answer = answer_;
    came.ledgerIsKnown = around_.ledger.isKnown();
    came.trackers = around_.ledger.trackersOf(id);
    for (const auto& event : record_.events) {
        if (event.completed && event.suggestionId == id) came.finished << *event.completed;
    }
    const auto kept = StoredState::read(StoredState::usualFile());
    for (const auto& one : kept.finalStates) {
        if (one.suggestionId == id) came.finalState = one.state;
    }
    for (const auto& one : kept.done) {
        if (one.suggestionId == id) came.donePercentage = static_cast<int>(one.percentage);
    }
    for (const auto& one : kept.ready) came.isReady = came.isReady || one.suggestionId == id;
    return came;
}

}  // namespace demo
