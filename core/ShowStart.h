#pragma once

#include <memory>

namespace velmora {

class ShowEvents;
class VLAdShowOptions;
class VLAdSuggestion;
class VelmoraAd;

/// What begins the show of an ad, and what ends all of them. What shows says what that is, so that the
/// library has none of it in itself.
class ShowStart {
public:
    /// Begins on a thread of its own and returns before that. `suggestion` is that of the handle, null where
    /// it has none; `events` hears of everything that happens.
    using Function = void (*)(const std::shared_ptr<VelmoraAd>& ad,
                              const std::shared_ptr<VLAdSuggestion>& suggestion,
                              const std::shared_ptr<VLAdShowOptions>& options,
                              const std::shared_ptr<ShowEvents>& events);

    ShowStart() = delete;

    /// Both are called on any thread.
    static void set(Function function, void (*endAll)()) noexcept;

    /// Null where nothing can show.
    [[nodiscard]] static Function get() noexcept;

    /// Ends what is shown, without finishing it, and returns before that.
    static void endAll() noexcept;
};

}  // namespace velmora
