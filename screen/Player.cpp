#include "screen/Player.h"

#include <algorithm>
#include <cmath>

namespace velmora::screen {

// An observer may release the player: each round holds it to its end, and goes over a copy.

void Player::addPeriodicTimeObserver(double interval, TimeObserver observer) {
    periodic_.push_back(std::make_shared<Periodic>(Periodic{interval, std::move(observer)}));
}

void Player::addEndObserver(EndObserver observer) { end_.push_back(std::move(observer)); }

void Player::addStatusObserver(const std::shared_ptr<PlayerStatusObserver>& observer) {
    status_.push_back(observer);
}

void Player::removeStatusObserver(const PlayerStatusObserver& observer) {
    const auto found = std::find_if(status_.begin(), status_.end(), [&](const auto& registration) {
        return registration.lock().get() == &observer;
    });
    if (found != status_.end()) status_.erase(found);
}

void Player::tellStatus() {
    const auto self = shared_from_this();
    std::erase_if(status_, [](const auto& registration) { return registration.expired(); });
    for (const auto& registration : std::vector(status_))
        if (const auto observer = registration.lock()) observer->playerStatusDidChange(*this);
}

void Player::tellPassed(double seconds) {
    const auto self = shared_from_this();
    for (const auto& periodic : std::vector(periodic_)) {
        const double multiple = std::floor(seconds / periodic->interval) * periodic->interval;
        if (multiple <= periodic->told) continue;
        periodic->told = multiple;
        periodic->observer(multiple);
    }
}

void Player::tellJump(double seconds) {
    const auto self = shared_from_this();
    for (const auto& periodic : std::vector(periodic_)) {
        periodic->told = std::floor(seconds / periodic->interval) * periodic->interval;
        periodic->observer(seconds);
    }
}

void Player::tellEnd() {
    const auto self = shared_from_this();
    for (const auto& observer : std::vector(end_)) observer();
}

double Player::nextDue(double seconds) const {
    double next = std::numeric_limits<double>::infinity();
    for (const auto& periodic : periodic_) {
        const double multiple = (std::floor(seconds / periodic->interval) + 1) * periodic->interval;
        next = std::min(next, multiple);
    }
    return next;
}

}  // namespace velmora::screen
