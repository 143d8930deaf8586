#include "platform/desktop/files/PartialFile.h"

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

/// A name of its own length, because that of the place may be as long as a name can be.
std::string temporaryNameBeside(const std::filesystem::path& place) {
    return (place.parent_path() / ".velmora-XXXXXX").string();
}

/// Gives an open file without a name a temporary one; empty when it cannot.
std::filesystem::path giveName(int descriptor, const std::filesystem::path& place) {
    const auto source = "/proc/self/fd/" + std::to_string(descriptor);
    auto name = temporaryNameBeside(place);
    // It makes a file where the link is to lie: between the two somebody else may take the name.
    const int taken = ::mkostemp(name.data(), O_CLOEXEC);
    if (taken < 0) return {};
    ::close(taken);
    ::unlink(name.c_str());
    if (::linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) return {};
    return name;
}

}  // namespace

PartialFile::PartialFile(std::filesystem::path place) : place_(std::move(place)) {
    open();
    if (descriptor_ < 0) fail("made");
}

PartialFile::~PartialFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void PartialFile::open() {
    constexpr mode_t forItsOwner = 0600;
    static const bool canBeNamedLater = ::access("/proc/self/fd", X_OK) == 0;
    if (place_.empty()) {
        errno = ENOENT;
        return;
    }
    const auto folder = place_.has_parent_path() ? place_.parent_path() : std::filesystem::path(".");
    if (canBeNamedLater) descriptor_ = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, forItsOwner);
    if (descriptor_ >= 0) return;
    auto name = temporaryNameBeside(place_);
    descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ >= 0) temporary_ = name;
}

bool PartialFile::append(std::string_view bytes) {
    while (descriptor_ >= 0 && !bytes.empty()) {
        const auto written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return fail("written");
        bytes.remove_prefix(static_cast<std::size_t>(written));
        written_ += written;
    }
    // The disk works while the rest arrives, so that little is left to flush in the end (bench-network).
    if (descriptor_ >= 0 && written_ - handedOver_ >= kHandOver) {
        ::sync_file_range(descriptor_, handedOver_, written_ - handedOver_, SYNC_FILE_RANGE_WRITE);
        handedOver_ = written_;
    }
    return descriptor_ >= 0;
}

bool PartialFile::publish() {
    if (descriptor_ < 0) return false;
    if (::fsync(descriptor_) != 0 || !moveIntoPlace()) return fail("published");
    temporary_.clear();
    ::close(std::exchange(descriptor_, -1));
    return true;
}

bool PartialFile::moveIntoPlace() {
    if (temporary_.empty()) {
        const auto source = "/proc/self/fd/" + std::to_string(descriptor_);
        if (::linkat(AT_FDCWD, source.c_str(), AT_FDCWD, place_.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
        // A link replaces nothing, as a renamed file does.
        if (errno != EEXIST) return false;
        temporary_ = giveName(descriptor_, place_);
    }
    return !temporary_.empty() && ::rename(temporary_.c_str(), place_.c_str()) == 0;
}

bool PartialFile::fail(const char* what) {
    log("A file cannot be " + std::string(what) + ": " + place_.string() + ": " + std::strerror(errno));
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
    return false;
}

}  // namespace velmora::platform
