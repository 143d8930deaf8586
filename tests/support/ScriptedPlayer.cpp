#include "support/ScriptedPlayer.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace velmora::test {

using screen::Player;
using screen::PlayerStatus;

namespace {

std::string withNumber(const std::string& call, double number) {
    std::ostringstream text;
    text << call << ' ' << number;
    return text.str();
}

}  // namespace

ScriptedPlayer::ScriptedPlayer(std::string from) : source(std::move(from)) {}

void ScriptedPlayer::become(PlayerStatus status) {
    status_ = status;
    tellStatus();
}

void ScriptedPlayer::tick(double seconds) {
    time_ = seconds;
    tellJump(seconds);
}

void ScriptedPlayer::pass(double seconds) {
    time_ = seconds;
    tellPassed(seconds);
}

void ScriptedPlayer::reachEnd() { tellEnd(); }

void ScriptedPlayer::finishSeeks(bool finished) {
    for (const auto& completion : std::exchange(seeks_, {}))
        if (completion) completion(finished);
}

void ScriptedPlayer::play() {
    calls.emplace_back("play");
    rate_ = 1;
}

void ScriptedPlayer::pause() {
    calls.emplace_back("pause");
    rate_ = 0;
}

void ScriptedPlayer::setRate(double rate) {
    calls.push_back(withNumber("rate", rate));
    rate_ = rate;
}

void ScriptedPlayer::setMuted(bool muted) {
    calls.emplace_back(muted ? "mute" : "unmute");
    isMuted_ = muted;
}

void ScriptedPlayer::seek(double seconds, SeekCompletion completion) {
    calls.push_back(withNumber("seek", seconds));
    seeks_.push_back(std::move(completion));
}

QWidget* ScriptedPlayer::makeLayer(QWidget* parent) {
    layer = std::make_unique<QWidget>(parent).release();
    return layer;
}

int ScriptedPlayer::count(const std::string& call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
}

class UseScriptedPlayers::Factory final : public screen::PlayerFactory {
public:
    [[nodiscard]] std::shared_ptr<Player> makeWithUrl(const std::string& url) override {
        return make("url " + url);
    }

    [[nodiscard]] std::shared_ptr<Player> makeWithFile(const std::filesystem::path& file) override {
        return make("file " + file.string());
    }

    std::vector<std::weak_ptr<ScriptedPlayer>> players;

private:
    std::shared_ptr<Player> make(std::string source) {
        auto player = std::make_shared<ScriptedPlayer>(std::move(source));
        players.emplace_back(player);
        return player;
    }
};

UseScriptedPlayers::UseScriptedPlayers() : factory_(std::make_shared<Factory>()) {
    Player::setFactory(factory_);
}

UseScriptedPlayers::~UseScriptedPlayers() { Player::setFactory(nullptr); }

std::size_t UseScriptedPlayers::made() const { return factory_->players.size(); }

std::size_t UseScriptedPlayers::alive() const {
    return static_cast<std::size_t>(std::count_if(factory_->players.begin(), factory_->players.end(),
                                                  [](const auto& player) { return !player.expired(); }));
}

std::shared_ptr<ScriptedPlayer> UseScriptedPlayers::last() const {
    return factory_->players.empty() ? nullptr : factory_->players.back().lock();
}

}  // namespace velmora::test
