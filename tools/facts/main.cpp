// Prints what the library finds out about this device, as requests would carry it, and again whenever more
// comes: a line of JSON each time.

#include "device/GeoInfo.h"
#include "device/GeoInfoLocationIOS.h"
#include "platform/Json.h"
#include "tools/UserInfoGate.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

#include <CommandLine.h>
#include <QGuiApplication>
#include <QTimer>

namespace {

using namespace std::chrono_literals;
using velmora::VLUserExtraInfoModel;

constexpr auto kPause = 50ms;
constexpr auto kUsualPatience = 3000;
/// Services that are started only now, or are busy, answer a little later than the library waits.
constexpr auto kLateness = 500ms;

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

    void goOn() {
        if (!info_->geoInfo && isEarly()) return find();
        printIfNew();
    }

    /// Whether nothing more is to be expected.
    [[nodiscard]] bool areComplete() const {
        if (!info_->geoInfo) return !isEarly();
        return info_->geoInfo->geoInfoLocation.get()->longitude.get().has_value();
    }

private:
    [[nodiscard]] bool isEarly() const { return std::chrono::steady_clock::now() - start_ < kLateness; }

    void printIfNew() {
        auto record = velmora::dictionaryOf(*info_);
        if (record == printed_) return;
        printed_ = record;
        const velmora::Dictionary line{{"userExtraInfo", std::move(record)}, {"milliseconds", milliseconds_}};
        std::cout << velmora::platform::writeJson(line).value_or("{}") << std::endl;
    }

    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::shared_ptr<VLUserExtraInfoModel> info_;
    velmora::Dictionary printed_;
    double milliseconds_ = 0;
};

}  // namespace

int main(int count, char** words) {
    int patience = kUsualPatience;
    CLI::App program(
        "Prints what the library finds out about this device: a line of JSON at once, and again when more "
        "comes.",
        "velmora-facts");
    program.add_option("milliseconds", patience, "How long to wait for more.")->capture_default_str();
    if (const auto end = readCommandLine(program, count, words)) return *end;

    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr &&
        std::getenv("QT_QPA_PLATFORM") == nullptr)
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(count, words);
    velmora::VLUserExtraInfoModelGate::open();

    Facts facts;
    QTimer often;
    QObject::connect(&often, &QTimer::timeout, [&] {
        facts.goOn();
        if (facts.areComplete()) QGuiApplication::quit();
    });
    QTimer::singleShot(0, [&] {
        facts.find();
        often.start(kPause);
    });
    QTimer::singleShot(patience, &application, &QGuiApplication::quit);
    return QGuiApplication::exec();
}
