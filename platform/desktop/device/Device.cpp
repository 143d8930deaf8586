#include "platform/Device.h"

#include "platform/Bundle.h"
#include "platform/Directories.h"
#include "platform/FileManager.h"
#include "platform/Immortal.h"
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include <glib.h>
#include <sys/utsname.h>

namespace velmora::platform {

namespace {

constexpr std::string_view kNoUuid = "00000000-0000-0000-0000-000000000000";

/// The first line of a small file; absent when it is missing or empty.
std::optional<std::string> lineOf(const std::filesystem::path& file) {
    std::string line;
    std::ifstream stream(file);
    if (!std::getline(stream, line) || line.empty()) return std::nullopt;
    return line;
}

using Uuid = std::array<guint8, 16>;

std::string upperCase(std::string_view text) {
    const std::unique_ptr<char, decltype(&g_free)> upper(
        g_ascii_strup(text.data(), static_cast<gssize>(text.size())), &g_free);
    return upper.get();
}

/// As RFC 9562 writes it, 4, in capitals.
std::string textOf(const Uuid& uuid) {
    std::string text;
    for (std::size_t at = 0; at < uuid.size(); ++at) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        if (at == 4 || at == 6 || at == 8 || at == 10) text += '-';
        text.append(1, digits[uuid[at] >> 4U]).append(1, digits[uuid[at] & 0xFU]);
    }
    return text;
}

/// Version 5 (RFC 9562, 5.5): always the same one of the same name space and name.
Uuid uuidOfName(const Uuid& space, std::string_view name) {
    const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> sha1(g_checksum_new(G_CHECKSUM_SHA1),
                                                                      &g_checksum_free);
    g_checksum_update(sha1.get(), space.data(), static_cast<gssize>(space.size()));
    g_checksum_update(sha1.get(), reinterpret_cast<const guchar*>(name.data()),
                      static_cast<gssize>(name.size()));
    std::array<guint8, 20> digest{};
    gsize size = digest.size();
    g_checksum_get_digest(sha1.get(), digest.data(), &size);
    Uuid uuid{};
    std::copy_n(digest.begin(), uuid.size(), uuid.begin());
    uuid[6] = static_cast<guint8>((uuid[6] & 0x0FU) | 0x50U);
    uuid[8] = static_cast<guint8>((uuid[8] & 0x3FU) | 0x80U);
    return uuid;
}

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
    static constexpr Uuid space{0x5a, 0x1f, 0x6c, 0x1e, 0x2b, 0x5d, 0x4c, 0x62,
                                0x9b, 0x0e, 0x3d, 0x6c, 0x8e, 0x41, 0x77, 0x2f};
    return textOf(uuidOfName(space, *machine + "\n" + Bundle::main().identifier().value_or(std::string())));
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
        auto uuid = upperCase(*stored);
        if (uuid.starts_with('{') && uuid.ends_with('}')) uuid = uuid.substr(1, uuid.size() - 2);
        if (g_uuid_string_is_valid(uuid.c_str()) != FALSE && uuid != kNoUuid) return uuid;
    }
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    const std::unique_ptr<char, decltype(&g_free)> random(g_uuid_string_random(), &g_free);
    const auto made = upperCase(random.get());
    if (!FileManager::write(file, made + "\n")) {
        log("The advertising identifier cannot be kept: " + file.string());
        return std::nullopt;
    }
    // Another process may have made one at the same moment: the file decides.
    return lineOf(file);
}

}  // namespace velmora::platform
