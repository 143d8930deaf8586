#include "screen/Player.h"

#include "platform/Immortal.h"
#include "platform/UrlText.h"
#include "screen/qt/player/QtPlayer.h"

#include <QString>

namespace velmora::screen {

namespace {

class QtPlayerFactory final : public PlayerFactory {
public:
    [[nodiscard]] std::shared_ptr<Player> makeWithUrl(const std::string& url) override {
        return std::make_shared<QtPlayer>(
            platform::isUrl(url) ? QUrl::fromEncoded(QByteArray::fromStdString(url)) : QUrl());
    }

    [[nodiscard]] std::shared_ptr<Player> makeWithFile(const std::filesystem::path& file) override {
        return std::make_shared<QtPlayer>(QUrl::fromLocalFile(QString::fromStdString(file.string())));
    }
};

std::shared_ptr<PlayerFactory>& factory() {
    static platform::Immortal<std::shared_ptr<PlayerFactory>> instance(std::make_shared<QtPlayerFactory>());
    return *instance;
}

}  // namespace

std::shared_ptr<Player> Player::playerWithUrl(const std::string& url) { return factory()->makeWithUrl(url); }

std::shared_ptr<Player> Player::playerWithFile(const std::filesystem::path& file) {
    return factory()->makeWithFile(file);
}

void Player::setFactory(std::shared_ptr<PlayerFactory> other) {
    factory() = other ? std::move(other) : std::make_shared<QtPlayerFactory>();
}

}  // namespace velmora::screen
