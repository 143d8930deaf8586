#include "Scenarios.h"

namespace demo {

namespace {

const QStringList kWholeVideo{"start", "firstQuartile", "midpoint", "thirdQuartile", "complete"};
const QStringList kMuting{"mute", "unmute"};

const Plan kVideoLeft{.acts = {Act::watchStart, Act::exit, Act::seeEnd},
                      .finished = {false},
                      .trackers = {"start", "complete"},
                      .leavesEarly = true,
                      .donePercentage = 0};
const Plan kPageDismissed{.acts = {Act::dismissPage, Act::seeEnd}, .donePercentage = 100};
const Plan kNothing{.acts = {}, .finalState = {}};

QString boolsText(const QList<bool>& flags) {
    QStringList words;
    for (const bool flag : flags) words << (flag ? "completed" : "not completed");
    return words.isEmpty() ? "no call" : words.join(", ");
}

QString numberText(const std::optional<int>& number) { return number ? QString::number(*number) : "none"; }

QString listText(const QStringList& names) { return names.isEmpty() ? "none" : names.join(", "); }

/// Those that `names` and `of` have in common, in the order of the former; or those that they have not.
QStringList filtered(const QStringList& names, const QStringList& of, bool inCommon) {
    QStringList found;
    for (const auto& name : names) {
        if (of.contains(name) == inCommon) found << name;
    }
    return found;
}

void compare(QStringList& wrong, const QString& what, const QString& planned, const QString& came) {
    if (planned != came) wrong << what + ": expected " + planned + "; came " + came;
}

void compareTrackers(QStringList& wrong, const Plan& plan, const Outcome& outcome) {
    auto came = filtered(outcome.trackers, kMuting, false);
    if (plan.leavesEarly) {
        const auto maybe = filtered(kWholeVideo, plan.trackers, false);
        came = filtered(came, maybe, false);
    }
    compare(wrong, "trackers", listText(filtered(plan.trackers, kMuting, false)), listText(came));
    compare(wrong, "trackers of muting", listText(filtered(plan.trackers, kMuting, true)),
            listText(filtered(outcome.trackers, kMuting, true)));
}

}  // namespace

const QList<Scenario>& allScenarios() {
    static const QList<Scenario> scenarios{
        {.zone = "rewarded-video",
         .title = "Seen to its end, twice",
         .plan = {.acts = {Act::watchStart, Act::mute, Act::unmute, Act::replay, Act::watchStart,
                           Act::closePage, Act::seeEnd},
                  // At the end of the video, and again when the page is closed.
                  .finished = {true, true},
                  .trackers = kMuting + kWholeVideo,
                  .donePercentage = 100}},
        {.zone = "skippable-video",
         .title = "Skipped",
         .plan = {.acts = {Act::watchStart, Act::skip, Act::closePage, Act::seeEnd},
                  .finished = {false},
                  .trackers = {"start", "skip", "complete"},
                  .leavesEarly = true,
                  .donePercentage = 0}},
        {.zone = "video",
         .title = "Downloaded first, and left before its end",
         .isCached = true,
         .plan = kVideoLeft},
        {.zone = "banner", .title = "Dismissed", .plan = kPageDismissed},
        // The page goes by itself, and nobody tells the library that the ad is over.
        {.zone = "banner",
         .title = "Ended by the page, then its window closed",
         .plan = {.acts = {Act::chooseDone, Act::closeWindow, Act::seeEnd}}},
        {.zone = "random",
         .title = "Whatever comes, left at once",
         .plan = kVideoLeft,
         .planForPage = kPageDismissed},
        {.zone = "expiring",
         .title = "Waited for until it has run out",
         .plan = {.acts = {Act::awaitExpiry, Act::showInVain}, .finalState = 2}},
        {.zone = "broken-video",
         .title = "A video that cannot be loaded counts as completed",
         .plan = {.acts = {Act::seeWindow, Act::seeEnd}, .finished = {true}}},
        {.zone = "no-fill", .title = "No ad", .answer = "noAdAvailable", .plan = kNothing},
        {.zone = "unsupported",
         .title = "No ad that can be shown",
         .answer = "noAdAvailable",
         .plan = kNothing},
    };
    return scenarios;
}

QStringList deviations(const Scenario& scenario, const Plan& plan, const Outcome& outcome) {
    QStringList wrong;
    compare(wrong, "the request's answer", scenario.answer,
            outcome.answer.isEmpty() ? "nothing" : outcome.answer);
    compare(wrong, "ad-show-finished", boolsText(plan.finished), boolsText(outcome.finished));
    compare(wrong, "the final state that is kept", numberText(plan.finalState),
            numberText(outcome.finalState));
    compare(wrong, "what is kept as done, in percent", numberText(plan.donePercentage),
            numberText(outcome.donePercentage));
    if (plan.finalState && outcome.isReady == plan.donePercentage.has_value())
        wrong << (outcome.isReady ? "the ad is done and still kept as ready"
                                  : "the ad is not kept as ready any more");
    if (outcome.ledgerIsKnown) compareTrackers(wrong, plan, outcome);
    return wrong;
}

}  // namespace demo
