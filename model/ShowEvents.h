#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace velmora {

/// What happens in a video that there are trackers for (VAST 3.0, linear tracking events).
enum class TrackingEvent {
    start,
    firstQuartile,
    midpoint,
    thirdQuartile,
    complete,
    skip,
    mute,
    unmute,
};

/// Whole where they were counted, real where a player measured them: they are stored as they are.
using Seconds = std::variant<std::int64_t, double>;

/// What was seen of an ad that is over.
struct ShowFigures {
    std::optional<Seconds> doneSeconds;
    std::optional<std::int64_t> donePercentage;
    /// For the final state; absent when it is to stay as it is.
    std::optional<std::string> passedDuration;
};

/// What a show tells of itself as it happens. Who shows decides when; who is told keeps the books: the
/// trackers, the store, the application's callback. On the thread of the show.
class ShowEvents {
public:
    virtual ~ShowEvents() = default;

    /// Told whenever it happens; whether anything is sent then is for who is told.
    virtual void tracked(TrackingEvent event) = 0;
    /// The offset of a progress tracker has been reached, by its place in the list that the ad came with.
    virtual void trackedProgress(std::size_t place) = 0;

    /// The ad is on the screen.
    virtual void doing() = 0;
    /// So much of it has passed, in the words of the final state.
    virtual void passed(const std::string& duration) = 0;
    /// For the application's callback.
    virtual void finished(bool completed) = 0;
    /// At most once, and not for a video that could not be loaded.
    virtual void done(const ShowFigures& figures) = 0;
};

}  // namespace velmora
