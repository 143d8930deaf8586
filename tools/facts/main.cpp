// Prints what the library finds out about this device, as requests would carry it, and again whenever more
// comes: a line of JSON each time.

#include "device/GeoInfo.h"
#include "device/GeoInfoLocationIOS.h"
#include "platform/Json.h"
#include "tools/UserInfoGate.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

#include <QGuiApplication>
#include <QTimer>

namespace {

using namespace std::chrono_literals;
using velmora::VLUserExtraInfoModel;

constexpr auto kPause = 50ms;
constexpr auto kUsualPatience = 3000;

/// Prints the record as long as it changes.
class Facts {
public:
    void find() {
        const auto start = std::chrono::steady_clock::now();
        info_ = VLUserExtraInfoModel::getInstance();
        const auto taken = std::chrono::steady_clock::now() - start;
        milliseconds_ = std::chrono::duration<double, std::milli>(taken).count();
        printIfNew();
    }

    void printIfNew() {
        auto record = velmora::dictionaryOf(*info_);
        if (record == printed_) return;
        printed_ = record;
        const velmora::Dictionary line{{"userExtraInfo", std::move(record)}, {"milliseconds", milliseconds_}};
        std::cout << velmora::platform::writeJson(line).value_or("{}") << std::endl;
    }

    /// Whether nothing more is to be expected.
    [[nodiscard]] bool areComplete() const {
        if (!info_->geoInfo) return true;
        const auto place = info_->geoInfo->geoInfoLocation.get();
        return place->longitude.get().has_value();
    }

private:
    std::shared_ptr<VLUserExtraInfoModel> info_;
    velmora::Dictionary printed_;
    double milliseconds_ = 0;
};

}  // namespace

int main(int count, char** words) {
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr &&
        std::getenv("QT_QPA_PLATFORM") == nullptr)
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(count, words);
    const int patience = count > 1 ? std::atoi(words[1]) : kUsualPatience;
    velmora::VLUserExtraInfoModelGate::open();

    Facts facts;
    QTimer often;
    QObject::connect(&often, &QTimer::timeout, [&] {
        facts.printIfNew();
        if (facts.areComplete()) QGuiApplication::quit();
    });
    QTimer::singleShot(0, [&] {
        // The services that are started only now answer a little later.
        facts.find();
        often.start(kPause);
    });
    QTimer::singleShot(patience, &application, &QGuiApplication::quit);
    return QGuiApplication::exec();
}
