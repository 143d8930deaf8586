#pragma once

#include "screen/Player.h"

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <QPointer>
#include <QWidget>

namespace velmora::test {

/// A player that plays nothing: it writes down what it is told, and what happens to it is the test's word.
class ScriptedPlayer final : public screen::Player {
public:
    explicit ScriptedPlayer(std::string source);

    void become(screen::PlayerStatus status);
    /// A tick at that time.
    void tick(double seconds);
    void pass(double seconds);
    void reachEnd();
    /// Ends all seeks, in their order.
    void finishSeeks(bool finished);

    [[nodiscard]] screen::PlayerStatus status() const override { return status_; }
    void play() override;
    void pause() override;
    [[nodiscard]] double rate() const override { return rate_; }
    void setRate(double rate) override;
    [[nodiscard]] bool isMuted() const override { return isMuted_; }
    void setMuted(bool muted) override;
    void seek(double seconds, SeekCompletion completion) override;
    [[nodiscard]] double duration() const override { return length; }
    [[nodiscard]] double currentTime() const override { return time_; }
    [[nodiscard]] QWidget* makeLayer(QWidget* parent) override;

    using Player::nextDue;

    /// How often it was asked for that.
    [[nodiscard]] int count(const std::string& call) const;

    const std::string source;  ///< "url ..." or "file ..."
    double length = std::numeric_limits<double>::quiet_NaN();
    std::vector<std::string> calls;
    QPointer<QWidget> layer;  ///< the last one that was made

private:
    screen::PlayerStatus status_ = screen::PlayerStatus::unknown;
    double rate_ = 0;
    double time_ = 0;
    bool isMuted_ = false;
    std::vector<SeekCompletion> seeks_;
};

/// While it lives, every player that is made is a scripted one.
class UseScriptedPlayers {
public:
    UseScriptedPlayers();
    ~UseScriptedPlayers();
    UseScriptedPlayers(const UseScriptedPlayers&) = delete;
    UseScriptedPlayers& operator=(const UseScriptedPlayers&) = delete;

    [[nodiscard]] std::size_t made() const;
    /// How many of them still live.
    [[nodiscard]] std::size_t alive() const;
    /// The one that was made last; null when it lives no more.
    [[nodiscard]] std::shared_ptr<ScriptedPlayer> last() const;

private:
    class Factory;
    std::shared_ptr<Factory> factory_;
};

}  // namespace velmora::test
