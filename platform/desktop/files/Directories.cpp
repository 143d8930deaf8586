#include "platform/Directories.h"

#include "platform/Bundle.h"
#include "platform/UrlText.h"

#include <array>
#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

std::filesystem::path homeDirectory() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "/";
}

/// What a variable of the environment says when it is an absolute path, else a folder of the user's home.
std::filesystem::path baseDirectory(const char* variable, const char* below) {
    if (const char* given = std::getenv(variable); given != nullptr && *given == '/') return given;
    return homeDirectory() / below;
}

/// The identifier as the name of one folder: separators, percent signs and zero bytes become %XX, and so do
/// leading dots, so that no two identifiers share one.
std::string folderName(std::string_view identifier) {
    std::string name;
    for (const char c : identifier) {
        const bool leadingDot = c == '.' && name.empty();
        if (c == '/' || c == '%' || c == '\0' || leadingDot) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            name += '%';
            name += digits[static_cast<unsigned char>(c) >> 4U];
            name += digits[static_cast<unsigned char>(c) & 15U];
        } else {
            name += c;
        }
    }
    return name.empty() ? "application" : name;
}

}  // namespace

std::filesystem::path applicationDataDirectory(std::string_view identifier) {
    return baseDirectory("XDG_DATA_HOME", ".local/share") / folderName(identifier) / "velmora";
}

std::filesystem::path applicationDataDirectory() {
    return applicationDataDirectory(Bundle::main().identifier().value_or(std::string()));
}

std::filesystem::path configurationDirectory() {
    return baseDirectory("XDG_CONFIG_HOME", ".config") / "velmora";
}

}  // namespace velmora::platform
