#include "platform/desktop/PartialFile.h"

#include "platform/FileManager.h"
#include "platform/Log.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

constexpr off_t kHandOver = off_t{1024} * 1024;

}  // namespace

PartialFile::PartialFile(std::filesystem::path place) : place_(std::move(place)) {
    // A name of its own length, because that of the place may be as long as a name can be.
    auto name = (place_.parent_path() / ".velmora-XXXXXX").string();
    descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0) {
        fail("made");
    } else {
        temporary_ = name;
    }
}

PartialFile::~PartialFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void PartialFile::append(const char* bytes, std::size_t size) {
    while (descriptor_ >= 0 && size > 0) {
        const auto written = ::write(descriptor_, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return fail("written");
        bytes += written;
        size -= static_cast<std::size_t>(written);
        written_ += written;
    }
    // The disk works while the rest arrives, so that little is left to flush in the end (bench-network).
    if (descriptor_ >= 0 && written_ - handedOver_ >= kHandOver) {
        ::sync_file_range(descriptor_, handedOver_, written_ - handedOver_, SYNC_FILE_RANGE_WRITE);
        handedOver_ = written_;
    }
}

void PartialFile::publish() {
    if (descriptor_ < 0) return;
    ::close(std::exchange(descriptor_, -1));
    // It removes the temporary file and says so when it fails.
    static_cast<void>(FileManager::publish(std::exchange(temporary_, {}), place_));
}

void PartialFile::fail(const char* what) {
    log("A downloaded file cannot be " + std::string(what) + ": " + place_.string() + ": " +
        std::strerror(errno));
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

}  // namespace velmora::platform
