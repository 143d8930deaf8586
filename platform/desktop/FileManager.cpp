#include "platform/FileManager.h"

#include "platform/Directories.h"
#include "platform/Log.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace velmora::platform {

namespace fs = std::filesystem;

namespace {

bool failed(const char* what, const fs::path& path) {
    log("A file cannot be " + std::string(what) + ": " + path.string() + ": " + std::strerror(errno));
    return false;
}

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const auto written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool flush(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool flushed = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return flushed;
}

}  // namespace

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
        // A name of its own length, because that of `path` may be as long as a name can be.
        auto temporary = (path.parent_path() / ".velmora-XXXXXX").string();
        const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
        if (descriptor < 0) return failed("made", path);
        const bool written = writeAll(descriptor, content) || failed("written", path);
        ::close(descriptor);
        if (written) return publish(temporary, path);
        ::unlink(temporary.c_str());
        return false;
    } catch (...) {
        return false;
    }
}

bool FileManager::publish(const fs::path& temporary, const fs::path& path) noexcept {
    try {
        if (flush(temporary) && ::rename(temporary.c_str(), path.c_str()) == 0) return true;
        failed("published", path);
        ::unlink(temporary.c_str());
        return false;
    } catch (...) {
        return false;
    }
}

}  // namespace velmora::platform
