#include "platform/FileManager.h"

#include "platform/Directories.h"
#include "platform/Log.h"
#include "platform/desktop/files/PartialFile.h"

#include <string>
#include <system_error>

namespace velmora::platform {

namespace fs = std::filesystem;

fs::path FileManager::documentsDirectory() {
    auto directory = applicationDataDirectory() / "Documents";
    std::error_code error;
    if (fs::create_directories(directory, error)) {
        fs::permissions(directory, fs::perms::owner_all, error);
    } else if (error) {
        log("The documents directory cannot be made: " + directory.string() + ": " + error.message());
    }
    return directory;
}

bool FileManager::fileExists(const fs::path& path) noexcept {
    std::error_code error;
    return fs::exists(path, error);
}

bool FileManager::isRegularFile(const fs::path& path) noexcept {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool FileManager::write(const fs::path& path, std::string_view content) noexcept {
    try {
        PartialFile file(path);
        return file.append(content) && file.publish();
    } catch (...) {
        return false;
    }
}

}  // namespace velmora::platform
