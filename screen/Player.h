#pragma once

#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace velmora::screen {

class Player;

enum class PlayerStatus : int {
    unknown = 0,  ///< still loading
    readyToPlay = 1,
    failed = 2,  ///< for good: it plays nothing any more
};

class PlayerStatusObserver {
public:
    virtual ~PlayerStatusObserver() = default;

    virtual void playerStatusDidChange(Player& player) = 0;
};

/// Makes the players; a test puts its own in place of the real one.
class PlayerFactory {
public:
    virtual ~PlayerFactory() = default;

    [[nodiscard]] virtual std::shared_ptr<Player> makeWithUrl(const std::string& url) = 0;
    [[nodiscard]] virtual std::shared_ptr<Player> makeWithFile(const std::filesystem::path& file) = 0;
};

/// Plays one video. Main thread only, where everything it tells is told too; always held by a
/// `std::shared_ptr`.
///
/// It loads as soon as it is made, and says by its status how that ended: ready or failed, always one of
/// them, and never before the event loop has run. After ready it may still fail, when the source breaks off.
/// A player that nobody holds any more tells nothing.
class Player : public std::enable_shared_from_this<Player> {
public:
    using TimeObserver = std::function<void(double seconds)>;
    using EndObserver = std::function<void()>;
    using SeekCompletion = std::function<void(bool finished)>;

    /// Never null; what is no http, https or file URL fails.
    [[nodiscard]] static std::shared_ptr<Player> playerWithUrl(const std::string& url);
    [[nodiscard]] static std::shared_ptr<Player> playerWithFile(const std::filesystem::path& file);

    /// Null restores the real players.
    static void setFactory(std::shared_ptr<PlayerFactory> factory);

    virtual ~Player() = default;
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    [[nodiscard]] virtual PlayerStatus status() const = 0;

    /// Asked for while it still loads, it begins when it is ready; at the end it does nothing.
    virtual void play() = 0;
    virtual void pause() = 0;

    /// 0 while it does not play, 1 at the video's own speed. Setting one above 0 plays.
    [[nodiscard]] virtual double rate() const = 0;
    virtual void setRate(double rate) = 0;

    [[nodiscard]] virtual bool isMuted() const = 0;
    virtual void setMuted(bool muted) = 0;

    /// `completion` runs once, after this call has returned; `finished` is false when a later seek took the
    /// place of this one or the player is not ready.
    virtual void seek(double seconds, SeekCompletion completion) = 0;

    /// In seconds; not-a-number while unknown, and then never 0.
    [[nodiscard]] virtual double duration() const = 0;
    [[nodiscard]] virtual double currentTime() const = 0;

    /// A widget that shows the picture, as large as its shape allows and otherwise black, and nothing while
    /// there is none. It is the parent's; without its player it keeps the last picture.
    [[nodiscard]] virtual QWidget* makeLayer(QWidget* parent) = 0;

    /// While the video plays, `observer` is told whenever a multiple of `interval` seconds of the video's own
    /// time is reached, the latest only if several are; and also where the time is when playback starts,
    /// stops or jumps. The last one before the end carries the duration. It is held as long as the player
    /// lives.
    void addPeriodicTimeObserver(double interval, TimeObserver observer);

    /// Told whenever the video has played to its end. It is held as long as the player lives.
    void addEndObserver(EndObserver observer);

    /// Each registration counts: one made twice is told twice of each change. The observer is not held.
    void addStatusObserver(const std::shared_ptr<PlayerStatusObserver>& observer);
    /// Takes one registration away, if there is one. A change that is being told is told to the end.
    void removeStatusObserver(const PlayerStatusObserver& observer);

protected:
    Player() = default;

    void tellStatus();
    /// Time has passed, playing.
    void tellPassed(double seconds);
    /// Playback has started, stopped or jumped there.
    void tellJump(double seconds);
    void tellEnd();

    /// The next time after `seconds` at which an observer wants to be told; infinite for none.
    [[nodiscard]] double nextDue(double seconds) const;

private:
    struct Periodic {
        double interval;
        TimeObserver observer;
        double told = -std::numeric_limits<double>::infinity();  ///< the latest multiple
    };

    std::vector<std::shared_ptr<Periodic>> periodic_;
    std::vector<EndObserver> end_;
    std::vector<std::weak_ptr<PlayerStatusObserver>> status_;
};

}  // namespace velmora::screen
