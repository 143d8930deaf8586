#pragma once

#include <optional>

#include <QList>
#include <QString>
#include <QStringList>

namespace demo {

/// What somebody in front of the screen does next, each when it can be done.
enum class Act {
    seeWindow,   ///< which may be gone again soon
    watchStart,  ///< until the video runs
    mute,
    unmute,
    skip,
    exit,
    closePage,
    dismissPage,
    replay,
    chooseDone,   ///< the page's own end
    closeWindow,  ///< with the desktop's means
    seeEnd,       ///< until the ad's window is gone
    awaitExpiry,
    showInVain,
};

/// How a showing goes, and what has to come of it.
struct Plan {
    QList<Act> acts;
    /// What the ad-show-finished callback says, call by call.
    QList<bool> finished = {};
    /// In the order of their arrival; muting apart, which goes by the viewer's finger.
    QStringList trackers = {};
    /// Whoever leaves early may have seen a part of the video, or not.
    bool leavesEarly = false;
    /// The state that is kept of the suggestion: 2 offered, 3 being shown. Absent where there is none.
    std::optional<int> finalState = 3;
    /// How much of it is kept as done, in percent. Absent when it is not done; the ad then stays among those
    /// that are ready.
    std::optional<int> donePercentage = {};
};

struct Scenario {
    QString zone;
    QString title;
    bool isCached = false;
    QString answer = "adAvailable";
    Plan plan = {};
    /// Where the zone offers pages as well as videos.
    std::optional<Plan> planForPage = {};
};

/// Every zone, in the order in which they run.
[[nodiscard]] const QList<Scenario>& allScenarios();

/// What came of a showing.
struct Outcome {
    QString answer;
    QList<bool> finished;
    bool ledgerIsKnown = false;
    QStringList trackers;
    std::optional<int> finalState;
    std::optional<int> donePercentage;
    bool isReady = false;
};

/// In words; none when all is as planned.
[[nodiscard]] QStringList deviations(const Scenario& scenario, const Plan& plan, const Outcome& outcome);

}  // namespace demo
