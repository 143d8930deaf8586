#pragma once

#include "screen/Player.h"

#include <memory>
#include <string>
#include <vector>

#include <QWidget>

namespace velmora {
class VLAVPlayerViewController;
}

namespace velmora::bench {

/// Processor time, in milliseconds.
struct Cost {
    [[nodiscard]] static Cost now();

    Cost operator-(const Cost& other) const { return {process - other.process, thread - other.thread}; }
    Cost operator/(double seconds) const { return {process / seconds, thread / seconds}; }

    double process;
    double thread;  ///< of the main thread alone
};

/// Shows the window over the whole screen.
void coverScreen(QWidget& window);

/// Whether anything but black is on the screen where the window is.
[[nodiscard]] bool hasPicture(const QWidget& window);

/// Our player with its layer only.
class PlayedLayer {
public:
    PlayedLayer() { coverScreen(window_); }

    void open(const std::string& file);

    [[nodiscard]] bool showsPicture() const { return hasPicture(window_); }
    [[nodiscard]] double position() const { return player_->currentTime(); }

private:
    QWidget window_;
    std::shared_ptr<screen::Player> player_;
};

/// Our whole screen, presented over a window of the application.
class PlayedScreen {
public:
    PlayedScreen();
    ~PlayedScreen();
    PlayedScreen(const PlayedScreen&) = delete;
    PlayedScreen& operator=(const PlayedScreen&) = delete;

    void open(const std::string& file);
    [[nodiscard]] double position() const;

private:
    QWidget host_;
    std::shared_ptr<VLAVPlayerViewController> controller_;
};

/// Makes the real players and knows which of them are alive.
class CountingPlayers final : public screen::PlayerFactory {
public:
    [[nodiscard]] std::shared_ptr<screen::Player> makeWithUrl(const std::string& url) override;
    [[nodiscard]] std::shared_ptr<screen::Player> makeWithFile(const std::filesystem::path& file) override;

    [[nodiscard]] int made() const { return static_cast<int>(players_.size()); }
    [[nodiscard]] int alive() const;

private:
    std::shared_ptr<screen::Player> note(std::shared_ptr<screen::Player> player);

    std::vector<std::weak_ptr<screen::Player>> players_;
};

}  // namespace velmora::bench
