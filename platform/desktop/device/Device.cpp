#include "platform/Device.h"

#include "platform/Bundle.h"
#include "platform/Directories.h"
#include "platform/FileManager.h"
#include "platform/Immortal.h"
#include "platform/Log.h"

#include <fstream>

#include <QUuid>
#include <sys/utsname.h>

namespace velmora::platform {

namespace {

/// The first line of a small file; absent when it is missing or empty.
std::optional<std::string> lineOf(const std::filesystem::path& file) {
    std::string line;
    std::ifstream stream(file);
    if (!std::getline(stream, line) || line.empty()) return std::nullopt;
    return line;
}

std::string textOf(const QUuid& uuid) { return uuid.toString(QUuid::WithoutBraces).toUpper().toStdString(); }

std::optional<std::string> machineOfSystem() {
    utsname names{};
    if (::uname(&names) != 0) return std::nullopt;
    return std::string(names.machine);
}

std::optional<std::string> makeVendorIdentifier() {
    auto machine = lineOf("/etc/machine-id");
    if (!machine) machine = lineOf("/var/lib/dbus/machine-id");
    if (!machine) return std::nullopt;
    // Any name space that nobody else uses: it keeps these identifiers apart from others made of the same id.
    static constexpr QUuid space(0x5a1f6c1e, 0x2b5d, 0x4c62, 0x9b, 0x0e, 0x3d, 0x6c, 0x8e, 0x41, 0x77, 0x2f);
    const auto seed = *machine + "\n" + Bundle::main().identifier().value_or(std::string());
    return textOf(QUuid::createUuidV5(space, QByteArray::fromStdString(seed)));
}

}  // namespace

// Each request carries these two, and neither changes while the process runs.
std::optional<std::string> Device::machine() {
    static Immortal<std::optional<std::string>> machine(machineOfSystem());
    return *machine;
}

std::optional<std::string> Device::identifierForVendor() {
    static Immortal<std::optional<std::string>> identifier(makeVendorIdentifier());
    return *identifier;
}

std::optional<std::string> Device::advertisingIdentifier() {
    const auto file = configurationDirectory() / "advertising-id";
    if (auto stored = lineOf(file)) {
        const auto uuid = QUuid::fromString(QString::fromStdString(*stored));
        if (!uuid.isNull()) return textOf(uuid);
    }
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    const auto made = textOf(QUuid::createUuid());
    if (!FileManager::write(file, made + "\n")) {
        log("The advertising identifier cannot be kept: " + file.string());
        return std::nullopt;
    }
    // Another process may have made one at the same moment: the file decides.
    return lineOf(file);
}

}  // namespace velmora::platform
